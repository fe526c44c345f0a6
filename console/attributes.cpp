#include "console/attributes.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "callif/password.h"

namespace mira::console {
namespace {

using PLDM::WritableForm;

struct TypeRow {
  PLDM::ATTRIBUTE_TYPE type;
  const char* name;
};
constexpr TypeRow kTypes[] = {
    {PLDM::BIOSEnumeration, "enumeration"},
    {PLDM::BIOSString, "string"},
    {PLDM::BIOSPassword, "password"},
    {PLDM::BIOSInteger, "integer"},
    {PLDM::BIOSBootConfigSetting, "boot-config"},
    {PLDM::BIOSCollection, "collection"},
    {PLDM::BIOSConfigSet, "config-set"},
};

// Calls `visit` with the object as what it is.
template <typename Visit>
void VisitAs(PLDM::Attribute& attribute, Visit visit) {
  switch (WritableForm(attribute.Type)) {
    case PLDM::BIOSEnumeration:
      return visit(static_cast<PLDM::Enumeration&>(attribute));
    case PLDM::BIOSString:
      return visit(static_cast<PLDM::String&>(attribute));
    case PLDM::BIOSPassword:
      return visit(static_cast<PLDM::Password&>(attribute));
    case PLDM::BIOSInteger:
      return visit(static_cast<PLDM::Integer&>(attribute));
    case PLDM::BIOSBootConfigSetting:
      return visit(static_cast<PLDM::BootConfigSetting&>(attribute));
    case PLDM::BIOSCollection:
      return visit(static_cast<PLDM::Collection&>(attribute));
    case PLDM::BIOSConfigSet:
      return visit(static_cast<PLDM::ConfigSet&>(attribute));
    default:
      return;
  }
}

template <typename... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

std::string Joined(const std::vector<std::string>& texts, const char* separator) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : separator) + text;
  return joined;
}

std::optional<std::uint64_t> ParseUnsigned(std::string_view text) {
  const bool is_hex = text.starts_with("0x") || text.starts_with("0X");
  if (is_hex) text.remove_prefix(2);
  std::uint64_t value = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value, is_hex ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// Firmware has texts in Latin-1, too. The text so, unless it would not be shown the same then.
std::string ToLatin1(const std::string& utf8) {
  std::string latin1;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if (byte < 0x80 || i + 1 == utf8.size()) {
      latin1 += utf8[i];
    } else {
      const auto next = static_cast<unsigned char>(utf8[++i]);
      latin1 += static_cast<char>((byte & 0x03) << 6 | (next & 0x3F));
    }
  }
  return ToUtf8(latin1) == utf8 ? latin1 : utf8;
}

struct ModeRow {
  const char* name;
  std::uint32_t PLDM::BootConfigSetting::*member;
};
constexpr ModeRow kModes[] = {
    {"bootConfigType", &PLDM::BootConfigSetting::BootConfigType},
    {"failThroughMode", &PLDM::BootConfigSetting::FailThroughMode},
};

std::string_view WithoutSuffix(std::string_view choice) {
  return choice.substr(0, choice.find('['));
}

// The place of a choice by its whole text, or by its name without suffix if only one has it.
std::optional<std::size_t> PlaceOf(const std::vector<std::string>& choices, std::string_view text) {
  const auto place = [&choices](auto found) {
    return static_cast<std::size_t>(found - choices.begin());
  };
  const auto exact = std::find(choices.begin(), choices.end(), text);
  if (exact != choices.end()) return place(exact);
  const auto has_name = [text](const std::string& c) { return WithoutSuffix(c) == text; };
  const auto found = std::find_if(choices.begin(), choices.end(), has_name);
  if (found == choices.end() || std::count_if(found, choices.end(), has_name) != 1) {
    return std::nullopt;
  }
  return place(found);
}

// One element stands for itself.
Json OneOrList(const Json& list) { return list.size() == 1 ? list[0] : list; }

CommandError Broken(const Setting& setting, const std::string& message, const std::string& hint) {
  return CommandError(kInvalidValue, "invalid-value", setting.Title() + ": " + message,
                      setting.Title(), hint);
}

// One value on its way into an attribute.
class Assignment {
 public:
  using HandleFinder = std::function<std::optional<std::uint16_t>(const std::string&)>;
  Assignment(const Setting& setting, const Json& value, Limits limits, HandleFinder find_handle)
      : setting_(setting),
        value_(value),
        is_checked_(limits == Limits::kCheck),
        find_handle_(std::move(find_handle)) {}

  void operator()(PLDM::Enumeration& target) const {
    std::list<std::uint8_t> indices;
    for (const std::string& part : Parts()) {
      const std::optional<std::size_t> place = PlaceOf(setting_.choices, part);
      const std::optional<std::uint64_t> number = is_checked_ ? std::nullopt : ParseUnsigned(part);
      const std::uint64_t index = place ? *place : number.value_or(kNoIndex);
      if (index > std::numeric_limits<std::uint8_t>::max()) throw NoChoice(part);
      indices.push_back(static_cast<std::uint8_t>(index));
    }
    target.CurrentIndices = indices;
  }

  void operator()(PLDM::String& target) const {
    const bool is_latin1 = ToUtf8(target.Value) != target.Value;
    const std::string text = is_latin1 ? ToLatin1(Text()) : Text();
    CheckLength(target, text);
    target.Value = text;
  }

  void operator()(PLDM::Password& target) const {
    CheckLength(target, Text());
    bytes::SecureString text(Text());
    bytes::Wipe(target.Value);
    target.Value = text.str();
  }

  void operator()(PLDM::Integer& target) const {
    std::optional<std::uint64_t> number;
    if (value_.is_number_unsigned()) number = value_.get<std::uint64_t>();
    if (value_.is_string()) number = ParseUnsigned(value_.get_ref<const std::string&>());
    if (!number) throw Broken(setting_, "'" + ValueText(value_) + "' is no number.", Range(target));
    if (is_checked_) {
      const std::string value = std::to_string(*number);
      if (*number < target.LowerBound) Break(value + " is below the lower bound.", Range(target));
      if (*number > target.UpperBound) Break(value + " is above the upper bound.", Range(target));
      if (target.ScalarIncrement != 0 &&
          (*number - target.LowerBound) % target.ScalarIncrement != 0) {
        Break(value + " is between two steps.", Range(target));
      }
    }
    target.Value = *number;
  }

  void operator()(PLDM::BootConfigSetting& target) const {
    const std::vector<std::string> parts = Parts();
    std::list<std::string> sources;
    for (const std::string& part : parts) sources.push_back(RawChoice(part));
    if (is_checked_) {
      if (parts.size() < target.MinSources || parts.size() > target.MaxSources) {
        Break(std::to_string(parts.size()) + " sources are given.",
              "It takes " + LimitsText(setting_) + ".");
      }
    }
    target.OrderedSources = sources;
  }

  void operator()(PLDM::Collection& target) const {
    std::list<std::uint16_t> members;
    for (const std::string& part : Parts()) {
      const std::optional<std::uint16_t> handle = find_handle_(part);
      if (!handle) Break("there is no attribute '" + part + "'.", "Its members are attributes.");
      members.push_back(*handle);
    }
    target.Members = members;
  }

  void operator()(PLDM::ConfigSet& target) const {
    if (!value_.is_string()) Break("the value is no text.");
    target.SelectedMember = RawChoice(value_.get_ref<const std::string&>());
  }

 private:
  static constexpr std::uint64_t kNoIndex = std::numeric_limits<std::uint64_t>::max();

  [[noreturn]] void Break(const std::string& message, const std::string& hint = "") const {
    throw Broken(setting_, message, hint);
  }

  CommandError NoChoice(const std::string& text) const {
    return Broken(setting_, "'" + text + "' is none of its values.",
                  "They are: " + Joined(setting_.choices, ", ") + ".");
  }

  // A choice as the firmware spells it; where limits are ignored, any text.
  std::string RawChoice(const std::string& text) const {
    const std::optional<std::size_t> place = PlaceOf(setting_.choices, text);
    if (!place && is_checked_) throw NoChoice(text);
    return place ? setting_.raw_choices[*place] : text;
  }

  std::string Range(const PLDM::Integer&) const { return "It takes " + LimitsText(setting_) + "."; }

  // Several names: a list, or a text with commas unless a choice is called so. None may be twice.
  std::vector<std::string> Parts() const {
    std::vector<std::string> parts;
    if (value_.is_array()) {
      for (const Json& part : value_) {
        if (!part.is_string() && !part.is_number_unsigned()) Break("a part is no text.");
        parts.push_back(ValueText(part));
      }
    } else if (value_.is_string() || value_.is_number_unsigned()) {
      const std::string text = ValueText(value_);
      parts = PlaceOf(setting_.choices, text) ? std::vector<std::string>{text} : Split(text);
    } else {
      Break("the value is neither a text nor a list.");
    }
    std::set<std::string_view> seen;
    for (const std::string& part : parts) {
      if (is_checked_ && !seen.insert(part).second) Break("'" + part + "' is given twice.");
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

  const std::string& Text() const {
    if (!value_.is_string()) Break("the value is no text.");
    return value_.get_ref<const std::string&>();
  }

  // The text is a secret in some attributes, so no message quotes it.
  template <typename Target>
  void CheckLength(const Target& target, const std::string& text) const {
    const std::string hint = "It takes " + LimitsText(setting_) + ".";
    if (text.size() > std::numeric_limits<std::uint16_t>::max()) {
      Break("the value is longer than any.", hint);
    }
    if (is_checked_ && (text.size() < target.MinLength || text.size() > target.MaxLength)) {
      Break("the value has " + std::to_string(text.size()) + " characters.", hint);
    }
  }

  const Setting& setting_;
  const Json& value_;
  const bool is_checked_;
  const HandleFinder find_handle_;
};

}  // namespace

std::string Setting::Title() const {
  const std::string name = ToUtf8(attribute->Name) + ToUtf8(attribute->Suffix);
  return name.empty() ? Hex(entry->handle, 4) : name;
}

Attributes::Attributes(Context& context, Texts texts)
    : context_(context), progress_(context), mira_(context.Ready(true, texts == Texts::kAll)) {
  if (!mira_.IsPLDMSupported()) {
    throw CommandError(kNotSupported, "no-attributes", "This machine has no BIOS attributes.", "",
                       "'mira info' lists the command classes that the firmware announces; "
                       "attributes need class 5.");
  }
  std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>> names;
  std::list<std::pair<std::uint16_t, PLDM::ATTRIBUTE_TYPE>> handles;
  mira_.GetAttributeNamesAndTypes(names);
  mira_.GetAttributeHandlesAndTypes(handles);
  auto name = names.begin();
  for (const auto& [handle, type] : handles) {
    entries_.push_back({handle, type, ToUtf8((name++)->first)});
  }
  progress_.Clear();
}

const AttributeEntry* Attributes::FindHandle(std::uint64_t handle) const {
  const auto found =
      std::lower_bound(entries_.begin(), entries_.end(), handle,
                       [](const AttributeEntry& e, std::uint64_t h) { return e.handle < h; });
  return found != entries_.end() && found->handle == handle ? &*found : nullptr;
}

// Of several attributes of one name the last is the one that the library knows by it.
const AttributeEntry* Attributes::FindName(const std::string& name) const {
  const auto found = std::find_if(entries_.rbegin(), entries_.rend(),
                                  [&name](const AttributeEntry& e) { return e.name == name; });
  return found != entries_.rend() ? &*found : nullptr;
}

// The tables alone mostly tell it; an attribute without a value in them is asked for.
std::string Attributes::FullName(const AttributeEntry& entry) {
  for (const auto read : {&Attributes::ReadAtBoot, &Attributes::ReadLive}) {
    try {
      return (this->*read)(entry).Title();
    } catch (const CommandError&) {
    }
  }
  return "";
}

const AttributeEntry& Attributes::Find(const std::string& text, std::uint64_t handle) {
  const AttributeEntry* const entry = FindHandle(handle);
  if (entry != nullptr && text.starts_with(entry->name) && FullName(*entry) == text) return *entry;
  return Find(text);
}

const AttributeEntry& Attributes::Find(const std::string& text) {
  if (const AttributeEntry* const entry = text.empty() ? nullptr : FindName(text)) return *entry;
  const std::string_view name = WithoutSuffix(text);
  for (const AttributeEntry& entry : entries_) {
    if (name.size() < text.size() && entry.name == name && FullName(entry) == text) {
      return entry;
    }
  }
  const std::optional<std::uint64_t> handle = ParseUnsigned(text);
  const AttributeEntry* const entry = handle ? FindHandle(*handle) : nullptr;
  if (entry != nullptr) return *entry;
  std::vector<std::string> names;
  for (const AttributeEntry& e : entries_) names.push_back(e.name);
  throw CommandError(kNotFound, "attribute-not-found", "There is no attribute '" + text + "'.",
                     text, Suggest(text, names, "'mira attr list' lists them."));
}

Setting Attributes::Read(const AttributeEntry& entry, Status (CMiraIntf::*read)(PLDM::Attribute&)) {
  Setting setting;
  setting.entry = &entry;
  setting.attribute = PLDM::MakeAttribute(entry.type);
  setting.attribute->Handle = entry.handle;
  const Status status = (mira_.*read)(*setting.attribute);
  if (status != STATUS_SUCCESS) {
    const std::string title = entry.name.empty() ? Hex(entry.handle, 4) : entry.name;
    const StatusText& text = Explain(status);
    throw CommandError(text.exit_status, text.name, title + ": " + text.meaning, title, text.hint);
  }
  std::list<std::string> names;
  mira_.GetPossibleValues(entry.handle, names);
  setting.raw_choices.assign(names.begin(), names.end());
  for (const std::string& name : names) setting.choices.push_back(ToUtf8(name));
  return setting;
}

Setting Attributes::ReadLive(const AttributeEntry& entry) {
  return Read(entry, &CMiraIntf::GetAttributeValue);
}

Setting Attributes::ReadAtBoot(const AttributeEntry& entry) {
  return Read(entry, &CMiraIntf::GetAttributeValueAtBoot);
}

bool Attributes::IsRestartPending(const Setting& live) {
  try {
    const Setting at_boot = ReadAtBoot(*live.entry);
    return Value(live) != Value(at_boot) || Modes(live) != Modes(at_boot);
  } catch (const CommandError&) {
    return false;
  }
}

void Attributes::Write(Setting& setting, unsigned int security_key) {
  // The handle alone names it: a name may belong to several. A read-only attribute goes out as if
  // it could be written; whether it can is the firmware's to say.
  const std::string name = std::exchange(setting.attribute->Name, "");
  setting.attribute->Type = WritableForm(setting.attribute->Type);
  const Status status =
      mira_.SetAttributeValue(*setting.attribute, "", PwdInfo::PWD_NONE, security_key);
  setting.attribute->Name = name;
  if (status == STATUS_SUCCESS) return;
  const StatusText& text = Explain(status);
  std::string message = text.meaning;
  for (const std::string& line : context_.TakeDiagnostics()) message += " (" + line + ")";
  const std::string title =
      setting.entry->name.empty() ? Hex(setting.entry->handle, 4) : setting.entry->name;
  throw CommandError(text.exit_status, text.name, title + ": " + message, title, text.hint);
}

Json Attributes::Value(const Setting& setting) const {
  Json value;
  VisitAs(*setting.attribute,
          Overloaded{
              [&](const PLDM::Enumeration& a) {
                Json names = Json::array();
                for (const std::uint8_t index : a.CurrentIndices) {
                  // What stands for no possible value is shown as the number that it is.
                  names.push_back(index < setting.choices.size() ? Json(setting.choices[index])
                                                                 : Json(index));
                }
                value = OneOrList(names);
              },
              [&](const PLDM::String& a) { value = ToUtf8(a.Value); },
              [&](const PLDM::Password&) {},
              [&](const PLDM::Integer& a) { value = a.Value; },
              [&](const PLDM::BootConfigSetting& a) {
                value = Json::array();
                for (const std::string& name : a.OrderedSources) value.push_back(ToUtf8(name));
              },
              [&](const PLDM::Collection& a) {
                value = Json::array();
                for (const std::uint16_t handle : a.Members) {
                  const AttributeEntry* const member = FindHandle(handle);
                  value.push_back(member != nullptr && !member->name.empty() ? Json(member->name)
                                                                             : Json(handle));
                }
              },
              [&](const PLDM::ConfigSet& a) { value = ToUtf8(a.SelectedMember); },
          });
  return value;
}

Json Attributes::Modes(const Setting& setting) const {
  Json modes = Json::object();
  VisitAs(*setting.attribute, Overloaded{[&modes](const PLDM::BootConfigSetting& a) {
                                           for (const ModeRow& row : kModes)
                                             modes[row.name] = a.*row.member;
                                         },
                                         [](const PLDM::Attribute&) {}});
  return modes;
}

Json Attributes::Default(const Setting& setting) {
  Json value;
  std::string text;
  VisitAs(*setting.attribute,
          Overloaded{
              [&](const PLDM::Enumeration& a) {
                Json names = Json::array();
                for (const std::string& name : a.DefaultValues) {
                  const std::string shown = ToUtf8(name);
                  const std::optional<std::size_t> place = PlaceOf(setting.choices, shown);
                  names.push_back(place ? setting.choices[*place] : shown);
                }
                value = OneOrList(names);
              },
              [&](const PLDM::String& a) {
                if (mira_.GetAttributeDefault(a.Handle, text) == STATUS_SUCCESS) {
                  value = ToUtf8(text);
                }
              },
              [&](const PLDM::Integer& a) {
                if (mira_.GetAttributeDefault(a.Handle, text) == STATUS_SUCCESS) {
                  if (const auto number = ParseUnsigned(text)) value = *number;
                }
              },
              [](const PLDM::Attribute&) {},
          });
  return value;
}

void Attributes::Assign(Setting& setting, const Json& value, Limits limits) const {
  const auto find_handle = [this](const std::string& text) -> std::optional<std::uint16_t> {
    const AttributeEntry* entry = FindName(text);
    if (entry == nullptr) {
      if (const auto handle = ParseUnsigned(text)) entry = FindHandle(*handle);
    }
    return entry != nullptr ? std::optional(entry->handle) : std::nullopt;
  };
  VisitAs(*setting.attribute, Assignment(setting, value, limits, find_handle));
}

void Attributes::AssignModes(Setting& setting, const Json& modes) const {
  constexpr std::uint64_t kLargest = std::numeric_limits<std::uint8_t>::max();
  VisitAs(*setting.attribute,
          Overloaded{[&](PLDM::BootConfigSetting& target) {
                       for (const ModeRow& row : kModes) {
                         const auto mode = modes.find(row.name);
                         if (mode == modes.end()) continue;
                         if (!mode->is_number_unsigned() || mode->get<std::uint64_t>() > kLargest) {
                           throw Broken(setting, std::string(row.name) + " is no such number.",
                                        "It takes 0 to 255.");
                         }
                         target.*row.member = mode->get<std::uint32_t>();
                       }
                     },
                     [](const PLDM::Attribute&) {}});
}

const char* TypeName(PLDM::ATTRIBUTE_TYPE type) {
  for (const TypeRow& row : kTypes) {
    if (row.type == WritableForm(type)) return row.name;
  }
  return "unknown";
}

Json NameJson(const Setting& setting) {
  return {{"handle", setting.entry->handle},
          {"name", setting.entry->name},
          {"suffix", ToUtf8(setting.attribute->Suffix)}};
}

Json Identity(const Setting& setting) {
  Json identity = NameJson(setting);
  identity["type"] = TypeName(setting.entry->type);
  identity["readOnly"] = setting.entry->IsReadOnly();
  return identity;
}

Json LimitsJson(const Setting& setting) {
  const Json choices = setting.choices;
  Json limits = Json::object();
  const auto text = [&limits](const auto& a) {
    limits = {{"minLength", a.MinLength}, {"maxLength", a.MaxLength}};
  };
  VisitAs(*setting.attribute,
          Overloaded{
              [&](const PLDM::Enumeration&) { limits["possibleValues"] = choices; },
              [&](const PLDM::String& a) { text(a); },
              [&](const PLDM::Password& a) { text(a); },
              [&](const PLDM::Integer& a) {
                limits = {{"lowerBound", a.LowerBound},
                          {"upperBound", a.UpperBound},
                          {"increment", a.ScalarIncrement}};
              },
              [&](const PLDM::BootConfigSetting& a) {
                limits = {{"minSources", a.MinSources},
                          {"maxSources", a.MaxSources},
                          {"possibleSources", choices}};
              },
              [&](const PLDM::Collection& a) { limits["collection"] = ToUtf8(a.CollectionName); },
              [&](const PLDM::ConfigSet&) { limits["members"] = choices; },
          });
  return limits;
}

std::string LimitsText(const Setting& setting) {
  const std::string choices = Joined(setting.choices, " | ");
  std::string limits;
  const auto range = [&limits](std::uint64_t lower, std::uint64_t upper) {
    limits = std::to_string(lower) + " to " + std::to_string(upper);
  };
  VisitAs(*setting.attribute, Overloaded{
                                  [&](const PLDM::String& a) {
                                    range(a.MinLength, a.MaxLength);
                                    limits += " characters";
                                  },
                                  [&](const PLDM::Password& a) {
                                    range(a.MinLength, a.MaxLength);
                                    limits += " characters";
                                  },
                                  [&](const PLDM::Integer& a) {
                                    range(a.LowerBound, a.UpperBound);
                                    if (a.ScalarIncrement > 1) {
                                      limits +=
                                          ", in steps of " + std::to_string(a.ScalarIncrement);
                                    }
                                  },
                                  [&](const PLDM::BootConfigSetting& a) {
                                    range(a.MinSources, a.MaxSources);
                                    limits += " of " + choices;
                                  },
                                  [&](const PLDM::Collection&) { limits = "attributes"; },
                                  [&](const PLDM::Attribute&) { limits = choices; },
                              });
  return limits;
}

std::string ValueText(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_null()) return "(not shown)";
  if (!value.is_array()) return value.dump();
  std::string text;
  for (const Json& part : value) text += (text.empty() ? "" : ", ") + ValueText(part);
  return text;
}

std::string ValueText(const Json& value, const Json& modes) {
  std::string text = ValueText(value);
  for (const auto& [name, mode] : modes.items()) text += "; " + name + " " + mode.dump();
  return text;
}

}  // namespace mira::console
