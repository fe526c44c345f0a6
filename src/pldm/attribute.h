#ifndef MIRA_PLDM_ATTRIBUTE_H_
#define MIRA_PLDM_ATTRIBUTE_H_

// A BIOS attribute as callers see it: make the object of the attribute's type, name it, and let the
// facade fill it, or set its value and let the facade write it.
//
//   PLDM::Enumeration attribute;
//   attribute.Type = mira.GetAttributeType(handle);  // read-only types have a form of their own
//   attribute.Name = "WakeOnLan";                    // or attribute.Handle = handle;
//   if (mira.GetAttributeValue(attribute) == STATUS_SUCCESS) Use(attribute.CurrentIndices);

#include <cstdint>
#include <list>
#include <memory>
#include <string>

#include "platform/api.h"

namespace PLDM {

// The attribute types of DSP0247.
enum ATTRIBUTE_TYPE : std::uint32_t {
  BIOSEnumeration = 0,
  BIOSString = 1,
  BIOSPassword = 2,
  BIOSInteger = 3,
  BIOSBootConfigSetting = 4,
  BIOSCollection = 5,
  BIOSConfigSet = 6,
  BIOSEnumerationReadOnly = 128,
  BIOSStringReadOnly = 129,
  BIOSPasswordReadOnly = 130,
  BIOSIntegerReadOnly = 131,
  BIOSBootConfigSettingReadOnly = 132,
  BIOSCollectionReadOnly = 133,
  BIOSConfigSetReadOnly = 134,
  // The answer for a handle that no attribute has.
  BIOSUnknownType = 255,
};

inline constexpr std::uint32_t kReadOnlyBit = 0x80;

constexpr bool IsKnown(ATTRIBUTE_TYPE type) { return (type & ~kReadOnlyBit) <= BIOSConfigSet; }
constexpr bool IsReadOnly(ATTRIBUTE_TYPE type) {
  return IsKnown(type) && (type & kReadOnlyBit) != 0;
}
// The type without its read-only mark.
constexpr ATTRIBUTE_TYPE WritableForm(ATTRIBUTE_TYPE type) {
  return IsKnown(type) ? static_cast<ATTRIBUTE_TYPE>(type & ~kReadOnlyBit) : type;
}

// What attributes of all types have. A name wins over a handle; empty texts where the firmware
// gives none.
struct MIRA_API Attribute {
  Attribute() = default;
  explicit Attribute(ATTRIBUTE_TYPE type) : Type(type) {}
  Attribute(const Attribute&) = default;
  Attribute& operator=(const Attribute&) = default;
  virtual ~Attribute();

  std::uint16_t Handle = 0;
  ATTRIBUTE_TYPE Type = BIOSUnknownType;
  std::string Name;
  std::string Suffix;  // from the "[" on that the firmware puts behind some names
  std::wstring DisplayText;
  std::wstring HelpText;
};

struct MIRA_API Enumeration : Attribute {
  Enumeration() : Attribute(BIOSEnumeration) {}
  ~Enumeration() override;

  std::list<std::string> PossibleValues;
  // Of the possible values that have a suffix, the name followed by it.
  std::list<std::string> SuffixedValues;
  std::list<std::string> DefaultValues;
  std::list<std::uint8_t> CurrentIndices;  // into PossibleValues
  // As DefaultValues, but tells apart values that differ in their suffixes alone. Into
  // PossibleValues; an index that no value has is left out.
  std::list<std::uint8_t> DefaultIndices;
};

// Lengths are in characters.
struct MIRA_API String : Attribute {
  String() : Attribute(BIOSString) {}
  ~String() override;

  std::uint16_t MinLength = 0;
  std::uint16_t MaxLength = 0;
  std::string Value;
};

// Wipes its value when it ends.
struct MIRA_API Password : Attribute {
  Password() : Attribute(BIOSPassword) {}
  Password(const Password&) = default;
  Password& operator=(const Password& other);
  ~Password() override;

  std::uint16_t MinLength = 0;
  std::uint16_t MaxLength = 0;
  std::string Value;
};

struct MIRA_API Integer : Attribute {
  Integer() : Attribute(BIOSInteger) {}
  ~Integer() override;

  std::uint64_t LowerBound = 0;
  std::uint64_t UpperBound = 0;
  std::uint32_t ScalarIncrement = 0;
  std::uint64_t Value = 0;
};

struct MIRA_API BootConfigSetting : Attribute {
  BootConfigSetting() : Attribute(BIOSBootConfigSetting) {}
  ~BootConfigSetting() override;

  std::uint32_t BootConfigType = 0;
  std::uint32_t FailThroughMode = 0;
  std::uint8_t MinSources = 0;
  std::uint8_t MaxSources = 0;
  // In boot order. A write sends each source as its place among the attribute's possible sources,
  // which it finds through the attribute of the source's name.
  std::list<std::string> OrderedSources;
};

struct MIRA_API Collection : Attribute {
  Collection() : Attribute(BIOSCollection) {}
  ~Collection() override;

  std::string CollectionName;
  std::uint8_t CollectionType = 0;
  std::list<std::uint16_t> Members;  // attribute handles
};

struct MIRA_API ConfigSet : Attribute {
  ConfigSet() : Attribute(BIOSConfigSet) {}
  ~ConfigSet() override;

  std::string SelectedMember;
};

// A new object of the class that belongs to the type, with the type set; null for an unknown type.
MIRA_API std::unique_ptr<Attribute> MakeAttribute(ATTRIBUTE_TYPE type);

}  // namespace PLDM

#endif  // MIRA_PLDM_ATTRIBUTE_H_
