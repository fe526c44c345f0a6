// How a wanted value becomes an attribute's: checked against its limits, and spelled as the
// firmware spells it.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <set>
#include <string_view>
#include <system_error>

#include "bytes/secure.h"
#include "bytes/text.h"
#include "bytes/utf16.h"
#include "client/attribute_value.h"

namespace mira::client {
namespace {

// Firmware has texts in Latin-1, too. The text so, unless it would not be shown the same then.
std::string ToLatin1(const std::string& utf8) {
  const std::string latin1 = bytes::Latin1OfUtf8(utf8).value_or(utf8);
  return ToUtf8(latin1) == utf8 ? latin1 : utf8;
}

// A value as a message quotes it: "20.0", "null".
std::string Quoted(const Json& value) {
  const bool is_text = value.is_string() || value.is_array() || BytesOfText(value);
  return "'" + (is_text ? Readable(value) : value.dump()) + "'";
}

// Whether the text is a number that would need more than 64 bits.
bool IsHuge(std::string_view text) {
  const std::optional<std::string_view> hex = bytes::WithoutHexPrefix(text);
  const std::string_view digits = hex.value_or(text);
  const auto is_digit = [&hex](char c) {
    return hex ? bytes::IsHexDigit(c) : c >= '0' && c <= '9';
  };
  return !digits.empty() && std::all_of(digits.begin(), digits.end(), is_digit) &&
         !bytes::ParseNumber(text);
}

// Why a value is none that an integer takes: the end of a sentence that begins with the value.
const char* WhyNoNumber(const Json& value) {
  constexpr double kBehindLargest = 18446744073709551616.0;  // 2^64
  constexpr const char* kNone = " is not a number.";
  constexpr const char* kTooLarge = " is too large.";
  const std::string text = value.is_string() ? value.get<std::string>() : value.dump();
  if (!value.is_string() && !value.is_number()) return kNone;
  if (IsHuge(text)) return kTooLarge;
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, number);
  if (last != end || error == std::errc::invalid_argument || std::isnan(number)) return kNone;
  if (text.starts_with('-')) return " is below 0.";
  const bool is_tiny = text.find("e-") != std::string::npos || text.find("E-") != std::string::npos;
  const bool is_out_of_range = error == std::errc::result_out_of_range;
  if (number >= kBehindLargest || (is_out_of_range && !is_tiny)) return kTooLarge;
  if (is_out_of_range || number != std::floor(number)) return " is not a whole number.";
  return " has a point or an exponent: write the number in digits alone.";
}

Error Broken(const Setting& setting, const std::string& message, const std::string& hint = "") {
  return Error(kInvalidValue, "invalid-value",
               setting.Title() + ": " + message + (hint.empty() ? "" : " " + hint),
               setting.Title());
}

// One value on its way into an attribute.
class Assignment {
 public:
  Assignment(const Attributes& attributes, const Setting& setting, const Json& value, Limits limits)
      : attributes_(attributes),
        setting_(setting),
        value_(value),
        is_checked_(limits == Limits::kCheck) {}

  void operator()(PLDM::Enumeration& target) const {
    std::list<std::uint8_t> indices;
    for (const std::string& part : Parts()) {
      const std::optional<std::size_t> place = PlaceOf(setting_.choices, part);
      const std::optional<std::uint64_t> number =
          is_checked_ ? std::nullopt : bytes::ParseNumber(part);
      const std::uint64_t index = place ? *place : number.value_or(kNoIndex);
      if (index > std::numeric_limits<std::uint8_t>::max()) throw NoChoice(part);
      indices.push_back(static_cast<std::uint8_t>(index));
    }
    target.CurrentIndices = indices;
  }

  void operator()(PLDM::String& target) const {
    const bool is_latin1 = ToUtf8(target.Value) != target.Value;
    // Bytes that are given say how the text is to be written.
    const std::string text =
        value_.is_string() && is_latin1 ? ToLatin1(Text()) : BytesOfText(value_).value_or(Text());
    CheckLength(target, text);
    target.Value = text;
  }

  void operator()(PLDM::Password& target) const {
    if (!value_.is_string()) Break("the value is not a text.");
    const auto& text = value_.get_ref<const std::string&>();
    CheckLength(target, text);
    bytes::Replace(target.Value, text);
  }

  void operator()(PLDM::Integer& target) const {
    const std::uint64_t number = Number();
    if (is_checked_) {
      const std::string value = std::to_string(number);
      if (number < target.LowerBound) Break(value + " is below the lower bound.", Takes());
      if (number > target.UpperBound) Break(value + " is above the upper bound.", Takes());
      if (target.ScalarIncrement != 0 &&
          (number - target.LowerBound) % target.ScalarIncrement != 0) {
        Break(value + " is between two steps.", Takes());
      }
    }
    target.Value = number;
  }

  void operator()(PLDM::BootConfigSetting& target) const {
    const std::vector<std::string> parts = Parts();
    std::list<std::string> sources;
    for (const std::string& part : parts) sources.push_back(Choice(part));
    if (is_checked_) {
      if (parts.size() < target.MinSources || parts.size() > target.MaxSources) {
        Break(std::to_string(parts.size()) + " sources are given.", Takes());
      }
    }
    target.OrderedSources = sources;
  }

  void operator()(PLDM::Collection& target) const {
    std::list<std::uint16_t> members;
    for (const std::string& part : Parts()) {
      const AttributeEntry* member = attributes_.FindName(part);
      if (member == nullptr) {
        if (const auto handle = bytes::ParseNumber(part)) member = attributes_.FindHandle(*handle);
      }
      if (member == nullptr) {
        Break("there is no attribute '" + part + "'.", "Its members are attributes.");
      }
      members.push_back(member->handle);
    }
    target.Members = members;
  }

  void operator()(PLDM::ConfigSet& target) const { target.SelectedMember = Choice(Text()); }

 private:
  static constexpr std::uint64_t kNoIndex = std::numeric_limits<std::uint64_t>::max();

  [[noreturn]] void Break(const std::string& message, const std::string& hint = "") const {
    throw Broken(setting_, message, hint);
  }

  std::string Takes() const { return "It takes " + LimitsText(LimitsJson(setting_)) + "."; }

  Error NoChoice(const std::string& text) const {
    std::string choices;
    Json list = Json::array();
    for (const std::string& choice : setting_.choices) {
      choices += (choices.empty() ? "" : ", ") + ToUtf8(choice);
      list.push_back(TextJson(choice));
    }
    return Broken(setting_, "'" + ToUtf8(text) + "' is not one of its values.",
                  "They are: " + choices + ".")
        .With("choices", std::move(list));
  }

  // A choice as the firmware spells it; where limits are ignored, any text.
  std::string Choice(const std::string& text) const {
    const std::optional<std::size_t> place = PlaceOf(setting_.choices, text);
    if (!place && is_checked_) throw NoChoice(text);
    return place ? setting_.choices[*place] : text;
  }

  // Several names: a list, or a text with commas unless a choice is called so. None may be twice,
  // with its suffix or without.
  std::vector<std::string> Parts() const {
    std::vector<std::string> parts;
    if (value_.is_array()) {
      for (const Json& part : value_) {
        const auto text = part.is_number_unsigned() ? part.dump() : BytesOfText(part);
        if (!text) Break(Quoted(part) + " is not a text.");
        parts.push_back(*text);
      }
    } else {
      const std::string text = value_.is_number_unsigned() ? value_.dump() : Text();
      parts = PlaceOf(setting_.choices, text) ? std::vector<std::string>{text} : Split(text);
    }
    if (!is_checked_) return parts;
    std::set<std::string> seen;
    for (const std::string& part : parts) {
      const std::optional<std::size_t> place = PlaceOf(setting_.choices, part);
      if (!seen.insert(place ? setting_.choices[*place] : part).second) {
        Break("'" + ToUtf8(part) + "' is given twice.");
      }
    }
    return parts;
  }

  static std::vector<std::string> Split(std::string_view text) {
    std::vector<std::string> parts;
    while (!text.empty()) {
      const std::size_t comma = std::min(text.find(','), text.size());
      std::string_view part = text.substr(0, comma);
      text.remove_prefix(std::min(comma + 1, text.size()));
      while (part.starts_with(' ')) part.remove_prefix(1);
      while (part.ends_with(' ')) part.remove_suffix(1);
      parts.emplace_back(part);
    }
    return parts;
  }

  std::string Text() const {
    const auto text = BytesOfText(value_);
    if (!text) Break(Quoted(value_) + " is not a text.");
    return *text;
  }

  std::uint64_t Number() const {
    if (value_.is_number_unsigned()) return value_.get<std::uint64_t>();
    if (value_.is_string()) {
      if (const auto number = bytes::ParseNumber(value_.get_ref<const std::string&>())) {
        return *number;
      }
    }
    Break(Quoted(value_) + WhyNoNumber(value_), Takes());
  }

  // The text is a secret in some attributes, so no message quotes it.
  template <typename Target>
  void CheckLength(const Target& target, const std::string& text) const {
    if (text.size() > std::numeric_limits<std::uint16_t>::max()) {
      Break("the value is longer than any.", Takes());
    }
    if (is_checked_ && (text.size() < target.MinLength || text.size() > target.MaxLength)) {
      Break("the value has " + std::to_string(text.size()) + " characters.", Takes());
    }
  }

  const Attributes& attributes_;
  const Setting& setting_;
  const Json& value_;
  const bool is_checked_;
};

}  // namespace

void Assign(const Attributes& attributes, Setting& setting, const Json& value, Limits limits) {
  VisitAs(*setting.attribute, Assignment(attributes, setting, value, limits));
}

void AssignModes(Setting& setting, const Json& modes) {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint8_t>::max();
  const auto assign = [&](PLDM::BootConfigSetting& target) {
    for (const ModeRow& row : kBootModes) {
      const auto mode = modes.find(row.name);
      if (mode == modes.end()) continue;
      if (!mode->is_number_unsigned() || mode->get<std::uint64_t>() > kLargest) {
        throw Broken(setting, std::string(row.name) + " takes a whole number from 0 to 255.");
      }
      target.*row.member = mode->get<std::uint32_t>();
    }
  };
  VisitAs(*setting.attribute, Overloaded{assign, [](const PLDM::Attribute&) {}});
}

}  // namespace mira::client
