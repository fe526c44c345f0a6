#ifndef MIRA_CLIENT_ATTRIBUTE_VALUE_H_
#define MIRA_CLIENT_ATTRIBUTE_VALUE_H_

// What an attribute is and has, as JSON.

#include <string>

#include "client/attributes.h"

namespace mira::client {

// Calls `visit` with the object as what it is.
template <typename Visit>
void VisitAs(PLDM::Attribute& attribute, Visit visit) {
  switch (PLDM::WritableForm(attribute.Type)) {
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

// What a boot order has in addition to its sources.
struct ModeRow {
  const char* name;
  std::uint32_t PLDM::BootConfigSetting::*member;
};
inline constexpr ModeRow kBootModes[] = {
    {"bootConfigType", &PLDM::BootConfigSetting::BootConfigType},
    {"failThroughMode", &PLDM::BootConfigSetting::FailThroughMode},
};

// "enumeration", "string", …
const char* TypeName(PLDM::ATTRIBUTE_TYPE type);
// The type of such a name; one that no attribute has for "unknown".
PLDM::ATTRIBUTE_TYPE TypeOfName(const std::string& name, bool is_read_only);

// The value: a text, a number or a list, as the type has it; null for passwords.
Json ValueJson(const Attributes& attributes, const Setting& setting);
// {"bootConfigType", "failThroughMode"} of a boot order; {} for other types.
Json ModesJson(const Setting& setting);
// The default; null for types that have none, and for passwords.
Json DefaultJson(const Setting& setting);
// {"possibleValues"}, {"minLength", "maxLength"}, …
Json LimitsJson(const Setting& setting);
// "Disabled | Enabled", "0 to 100, in steps of 5", …, from what LimitsJson gives.
std::string LimitsText(const Json& limits);

// {"handle", "name", "suffix"}
Json NameJson(const Setting& setting);
// What a file keeps: the same with {"type", "readOnly", "value"} and the modes.
Json StoredJson(const Attributes& attributes, const Setting& setting);
// All about it: the same with {"default", "atBoot", "restartPending"}, the modes at boot and the
// limits; display and help texts where they were fetched.
Json ToJson(Attributes& attributes, const Setting& live);

// The same of an attribute of the machine or of a snapshot, whichever it is. Throw Error where it
// cannot be read.
Json ReadStored(Attributes& attributes, const AttributeEntry& entry);
Json ReadItem(Attributes& attributes, const AttributeEntry& entry);
// NameJson with {"atBoot", "value"}, the modes and the modes at boot.
Json ReadDifference(Attributes& attributes, const AttributeEntry& entry);

}  // namespace mira::client

#endif  // MIRA_CLIENT_ATTRIBUTE_VALUE_H_
