#include "client/attribute_value.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>

#include "bytes/text.h"

namespace mira::client {
namespace {

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

// One element stands for itself.
Json OneOrList(const Json& list) { return list.size() == 1 ? list[0] : list; }

template <typename Texts>
Json TextsJson(const Texts& texts) {
  Json list = Json::array();
  for (const std::string& text : texts) list.push_back(TextJson(text));
  return list;
}

Json Chosen(const Json& item, std::initializer_list<const char*> keys) {
  Json chosen = Json::object();
  for (const char* const key : keys) {
    if (item.contains(key)) chosen[key] = item[key];
  }
  return chosen;
}

}  // namespace

const char* TypeName(PLDM::ATTRIBUTE_TYPE type) {
  for (const TypeRow& row : kTypes) {
    if (row.type == PLDM::WritableForm(type)) return row.name;
  }
  return "unknown";
}

PLDM::ATTRIBUTE_TYPE TypeOfName(const std::string& name, bool is_read_only) {
  constexpr std::uint32_t kNone = 0x7F;
  const auto* const row = std::find_if(std::begin(kTypes), std::end(kTypes),
                                       [&name](const TypeRow& r) { return r.name == name; });
  const std::uint32_t type = row != std::end(kTypes) ? row->type : kNone;
  return static_cast<PLDM::ATTRIBUTE_TYPE>(is_read_only ? type | PLDM::kReadOnlyBit : type);
}

Json ValueJson(const Attributes& attributes, const Setting& setting) {
  Json value;
  VisitAs(*setting.attribute,
          Overloaded{
              [&](const PLDM::Enumeration& a) {
                Json names = Json::array();
                for (const std::uint8_t index : a.CurrentIndices) {
                  // What stands for no possible value is shown as the number that it is.
                  names.push_back(index < setting.choices.size() ? TextJson(setting.choices[index])
                                                                 : Json(index));
                }
                value = OneOrList(names);
              },
              [&](const PLDM::String& a) { value = TextJson(a.Value); },
              [](const PLDM::Password&) {},
              [&](const PLDM::Integer& a) { value = NumberJson(a.Value); },
              [&](const PLDM::BootConfigSetting& a) { value = TextsJson(a.OrderedSources); },
              [&](const PLDM::Collection& a) {
                value = Json::array();
                for (const std::uint16_t handle : a.Members) {
                  const AttributeEntry* const member = attributes.FindHandle(handle);
                  value.push_back(member != nullptr && !member->name.empty() ? Json(member->name)
                                                                             : Json(handle));
                }
              },
              [&](const PLDM::ConfigSet& a) { value = TextJson(a.SelectedMember); },
          });
  return value;
}

Json ModesJson(const Setting& setting) {
  Json modes = Json::object();
  VisitAs(*setting.attribute, Overloaded{[&modes](const PLDM::BootConfigSetting& a) {
                                           for (const ModeRow& row : kBootModes) {
                                             modes[row.name] = a.*row.member;
                                           }
                                         },
                                         [](const PLDM::Attribute&) {}});
  return modes;
}

Json DefaultJson(const Setting& setting) {
  if (setting.defaults.empty()) return nullptr;
  const PLDM::ATTRIBUTE_TYPE type = PLDM::WritableForm(setting.entry->type);
  if (type == PLDM::BIOSEnumeration) return OneOrList(TextsJson(setting.defaults));
  const std::string& text = setting.defaults.front();
  if (type != PLDM::BIOSInteger) return TextJson(text);
  const auto number = bytes::ParseDigits(text, 10);
  return number ? NumberJson(*number) : Json();
}

Json LimitsJson(const Setting& setting) {
  const Json choices = TextsJson(setting.choices);
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
                limits = {{"lowerBound", NumberJson(a.LowerBound)},
                          {"upperBound", NumberJson(a.UpperBound)},
                          {"increment", a.ScalarIncrement}};
              },
              [&](const PLDM::BootConfigSetting& a) {
                limits = {{"minSources", a.MinSources},
                          {"maxSources", a.MaxSources},
                          {"possibleSources", choices}};
              },
              [&](const PLDM::Collection& a) { limits["collection"] = TextJson(a.CollectionName); },
              [&](const PLDM::ConfigSet&) { limits["members"] = choices; },
          });
  return limits;
}

std::string LimitsText(const Json& limits) {
  const auto choices = [&limits](const char* key) {
    std::string text;
    for (const Json& choice : limits.at(key))
      text += (text.empty() ? "" : " | ") + Readable(choice);
    return text;
  };
  const auto range = [&limits](const char* lower, const char* upper) {
    return Readable(limits.at(lower)) + " to " + Readable(limits.at(upper));
  };
  if (limits.contains("possibleValues")) return choices("possibleValues");
  if (limits.contains("members")) return choices("members");
  if (limits.contains("collection")) return "attributes";
  if (limits.contains("maxLength")) return range("minLength", "maxLength") + " characters";
  if (limits.contains("maxSources")) {
    return range("minSources", "maxSources") + " of " + choices("possibleSources");
  }
  if (!limits.contains("upperBound")) return "";
  const auto increment = limits.at("increment").get<std::uint32_t>();
  return range("lowerBound", "upperBound") +
         (increment > 1 ? ", in steps of " + std::to_string(increment) : "");
}

Json NameJson(const Setting& setting) {
  return {{"handle", setting.entry->handle},
          {"name", TextJson(setting.attribute->Name)},
          {"suffix", TextJson(setting.attribute->Suffix)}};
}

Json StoredJson(const Attributes& attributes, const Setting& setting) {
  Json json = NameJson(setting);
  json["type"] = TypeName(setting.entry->type);
  json["readOnly"] = setting.entry->IsReadOnly();
  json["value"] = ValueJson(attributes, setting);
  json.update(ModesJson(setting));
  return json;
}

Json ToJson(Attributes& attributes, const Setting& live) {
  Json json = StoredJson(attributes, live);
  json["default"] = DefaultJson(live);
  const std::optional<Setting> at_boot = attributes.TryReadAtBoot(*live.entry);
  json["atBoot"] = at_boot ? ValueJson(attributes, *at_boot) : Json();
  bool is_pending = at_boot && json["atBoot"] != json["value"];
  if (at_boot) {
    const Json modes = ModesJson(*at_boot);
    for (const auto& [name, mode] : modes.items()) {
      json[name + "AtBoot"] = mode;
      is_pending = is_pending || mode != json[name];
    }
  }
  json["restartPending"] = is_pending;
  const auto& attribute = *live.attribute;
  if (!attribute.DisplayText.empty()) json["displayName"] = ToUtf8(attribute.DisplayText);
  if (!attribute.HelpText.empty()) json["help"] = ToUtf8(attribute.HelpText);
  json.update(LimitsJson(live));
  return json;
}

Json ReadStored(Attributes& attributes, const AttributeEntry& entry) {
  const KeptAttribute* const kept = attributes.Kept(entry);
  if (kept == nullptr) return StoredJson(attributes, attributes.ReadLive(entry));
  return Chosen(kept->item, {"handle", "name", "suffix", "type", "readOnly", "value",
                             "bootConfigType", "failThroughMode"});
}

Json ReadItem(Attributes& attributes, const AttributeEntry& entry) {
  const KeptAttribute* const kept = attributes.Kept(entry);
  return kept != nullptr ? kept->item : ToJson(attributes, attributes.ReadLive(entry));
}

Json ReadDifference(Attributes& attributes, const AttributeEntry& entry) {
  if (const KeptAttribute* const kept = attributes.Kept(entry)) {
    if (kept->at_boot_problem) throw *kept->at_boot_problem;
    return Chosen(kept->item, {"handle", "name", "suffix", "atBoot", "value", "bootConfigType",
                               "failThroughMode", "bootConfigTypeAtBoot", "failThroughModeAtBoot"});
  }
  const Setting live = attributes.ReadLive(entry);
  const Setting start = attributes.ReadAtBoot(entry);
  Json item = NameJson(live);
  item["atBoot"] = ValueJson(attributes, start);
  item["value"] = ValueJson(attributes, live);
  item.update(ModesJson(live));
  const Json modes_at_boot = ModesJson(start);
  for (const auto& [name, mode] : modes_at_boot.items()) item[name + "AtBoot"] = mode;
  return item;
}

}  // namespace mira::client
