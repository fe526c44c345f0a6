#include "client/snapshot/other_identity.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bytes/text.h"
#include "client/boot.h"
#include "client/snapshot/identity_values.h"
#include "client/snapshot/redact_path.h"

namespace mira::client {
namespace {

// Another text of the same form, which follows from its number alone. It begins as the old one does
// not: with the number's digits from the end on.
std::string OtherText(const std::string& text, std::size_t number) {
  constexpr std::string_view kLetters = "ABCDEFGHJKLMNPQRSTUVWXYZ";
  std::string other = text;
  std::size_t rest = number;
  for (auto c = other.rbegin(); c != other.rend(); ++c) {
    if (*c >= '0' && *c <= '9') {
      *c = static_cast<char>('0' + rest % 10);
      rest /= 10;
    } else if (bytes::Lower(*c) != *c) {
      *c = kLetters[rest % kLetters.size()];
      rest /= kLetters.size();
    } else if (*c >= 'a' && *c <= 'z') {
      *c = bytes::Lower(kLetters[rest % kLetters.size()]);
      rest /= kLetters.size();
    }
  }
  return other;
}

std::string HexOf(const std::string& text, bool is_wide) {
  std::string hex;
  for (const char c : text) {
    hex += bytes::HexText(bytes::AsBytes(std::string_view(&c, 1)));
    if (is_wide) hex += "00";
  }
  return hex;
}

// The bytes of a UUID's text, in the order in which SMBIOS and device paths have them.
std::string UuidHex(const std::string& text) {
  std::string digits;
  for (const char c : text) {
    if (bytes::IsHexDigit(c)) digits += bytes::Lower(c);
  }
  constexpr std::size_t kDigits = 32;
  if (digits.size() != kDigits) return "";
  constexpr std::size_t kOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  std::string hex;
  for (const std::size_t byte : kOrder) hex += digits.substr(2 * byte, 2);
  return hex;
}

// Pairs of old and new, for texts and for hexadecimal bytes; the longest first.
using Replacements = std::vector<std::pair<std::string, std::string>>;

void ReplaceAll(std::string& text, const Replacements& replacements, std::size_t step) {
  for (std::size_t at = 0; at < text.size();) {
    const auto found = std::find_if(replacements.begin(), replacements.end(), [&](const auto& r) {
      return text.compare(at, r.first.size(), r.first) == 0;
    });
    if (found == replacements.end()) {
      at += step;
      continue;
    }
    text.replace(at, found->first.size(), found->second);
    at += found->second.size();
  }
}

class OtherIdentity {
 public:
  explicit OtherIdentity(const Json& subjects) {
    constexpr std::size_t kShortest = 4;  // shorter ones stand everywhere by chance
    std::size_t number = 0;
    const IdentityValues identity(subjects);
    for (const std::string& value : identity.All()) {
      if (value.size() < kShortest) continue;
      Add(value, OtherText(value, ++number));
    }
    AddPaths(subjects);
    for (Replacements* const list : {&texts_, &bytes_}) {
      std::stable_sort(list->begin(), list->end(), [](const auto& a, const auto& b) {
        return a.first.size() > b.first.size();
      });
    }
  }

  void Apply(Json& value, const std::string& key) const {
    if (value.is_structured()) {
      for (auto& [name, part] : value.items()) Apply(part, value.is_array() ? key : name);
    } else if (value.is_string()) {
      auto& text = value.get_ref<std::string&>();
      const bool is_hex = key == "bytes" || key == "table" || key == "optionalData";
      ReplaceAll(text, is_hex ? bytes_ : texts_, is_hex ? 2 : 1);
    }
  }

 private:
  // Those that stand in bytes alone: a byte that marks them as made up, and a number.
  void AddPaths(const Json& subjects) {
    const auto boot = subjects.find(kBootSubject);
    if (boot == subjects.end() || !boot->contains("value")) return;
    std::set<std::vector<std::uint8_t>> seen;
    for (const Json& list : boot->at("value").at("lists")) {
      for (const Json& option : list.value("options", Json::array())) {
        for (const devicepath::Path& path : BootOptionFromJson(option).paths) {
          for (const auto& id : PathIdentifiers(path.bytes)) {
            // One of zeros alone is none.
            const auto is_first = [&id](std::uint8_t byte) { return byte == id.front(); };
            if (!std::all_of(id.begin(), id.end(), is_first)) seen.insert(id);
          }
        }
      }
    }
    std::uint8_t number = 0;
    for (const auto& id : seen) {
      std::vector<std::uint8_t> other(id.size(), 0);
      other.front() = 2;
      other.back() = ++number;
      bytes_.emplace_back(bytes::HexText(id), bytes::HexText(other));
    }
  }

  void Add(const std::string& old_text, const std::string& new_text) {
    texts_.emplace_back(old_text, new_text);
    for (const bool is_wide : {false, true}) {
      bytes_.emplace_back(HexOf(old_text, is_wide), HexOf(new_text, is_wide));
    }
    if (std::string uuid = UuidHex(old_text); !uuid.empty()) {
      bytes_.emplace_back(std::move(uuid), UuidHex(new_text));
    }
    const std::string mac = MacDigits(old_text);
    if (mac.empty()) return;
    // In paths, in the other common form, and as bytes.
    const std::string other = MacDigits(new_text);
    bytes_.emplace_back(mac, other);
    texts_.emplace_back(mac, other);
    texts_.emplace_back(WithColons(mac), WithColons(other));
  }

  static std::string MacDigits(const std::string& text) {
    constexpr std::size_t kDigits = 12;
    std::string digits;
    for (const char c : text) {
      if (bytes::IsHexDigit(c)) digits += bytes::Lower(c);
    }
    const bool is_mac = digits.size() == kDigits &&
                        (text.size() == kDigits || text.size() == kDigits + kDigits / 2 - 1);
    return is_mac ? digits : "";
  }
  static std::string WithColons(const std::string& digits) {
    std::string text;
    for (std::size_t i = 0; i < digits.size(); i += 2) {
      text += (i > 0 ? ":" : "") + digits.substr(i, 2);
    }
    return text;
  }

  Replacements texts_;
  Replacements bytes_;
};

}  // namespace

Snapshot WithOtherIdentity(const Snapshot& snapshot) {
  Json document = snapshot.Document();
  OtherIdentity(document.at("subjects")).Apply(document, "");
  return Snapshot(std::move(document));
}

}  // namespace mira::client
