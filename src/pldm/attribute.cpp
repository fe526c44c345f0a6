#include "pldm/attribute.h"

#include "bytes/secure.h"

namespace PLDM {

Attribute::~Attribute() = default;
Enumeration::~Enumeration() = default;
String::~String() = default;
Integer::~Integer() = default;
BootConfigSetting::~BootConfigSetting() = default;
Collection::~Collection() = default;
ConfigSet::~ConfigSet() = default;

Password::~Password() { mira::bytes::Wipe(Value); }

Password& Password::operator=(const Password& other) {
  if (this == &other) return *this;
  Attribute::operator=(other);
  MinLength = other.MinLength;
  MaxLength = other.MaxLength;
  // Plain assignment could give the old text's memory back unwiped.
  mira::bytes::Wipe(Value);
  Value = other.Value;
  return *this;
}

std::unique_ptr<Attribute> MakeAttribute(ATTRIBUTE_TYPE type) {
  std::unique_ptr<Attribute> attribute;
  switch (WritableForm(type)) {
    case BIOSEnumeration:
      attribute = std::make_unique<Enumeration>();
      break;
    case BIOSString:
      attribute = std::make_unique<String>();
      break;
    case BIOSPassword:
      attribute = std::make_unique<Password>();
      break;
    case BIOSInteger:
      attribute = std::make_unique<Integer>();
      break;
    case BIOSBootConfigSetting:
      attribute = std::make_unique<BootConfigSetting>();
      break;
    case BIOSCollection:
      attribute = std::make_unique<Collection>();
      break;
    case BIOSConfigSet:
      attribute = std::make_unique<ConfigSet>();
      break;
    default:
      return nullptr;
  }
  attribute->Type = type;
  return attribute;
}

}  // namespace PLDM
