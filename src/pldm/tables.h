#ifndef MIRA_PLDM_TABLES_H_
#define MIRA_PLDM_TABLES_H_

// What the firmware's BIOS tables (DSP0247) hold: attributes, their values, and the strings that
// name them, each found by handle or name.
//
//   Tables tables;
//   ParseStringTable(strings, tables);
//   ParseAttributeTable(attributes, tables);
//   const auto handle = tables.HandleOf("WakeOnLan");
//   const IntPLDMAttribute* found = handle ? tables.FindAttribute(*handle) : nullptr;

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "pldm/attribute.h"
#include "pldm/handle_index.h"
#include "pldm/name_index.h"

namespace mira::pldm {

// Lists of handles and of indices. These are strings of numbers, because those keep a list as short
// as most are inside themselves.
using Handles = std::u16string;
using Indices = std::u8string;

// An entry of the attribute table. A read-only type keeps its mark.
struct IntPLDMAttribute {
  IntPLDMAttribute() = default;
  IntPLDMAttribute(const IntPLDMAttribute&) = delete;
  IntPLDMAttribute& operator=(const IntPLDMAttribute&) = delete;
  virtual ~IntPLDMAttribute() = default;
  std::uint16_t handle = 0;
  PLDM::ATTRIBUTE_TYPE type = PLDM::BIOSUnknownType;
  std::uint16_t name_handle = 0;
};

struct IntBIOSEnumeration : IntPLDMAttribute {
  Handles possible_handles;  // strings
  Indices default_indices;   // into possible_handles
};

struct IntBIOSString : IntPLDMAttribute {
  std::uint8_t string_type = 0;
  std::uint16_t min_length = 0;
  std::uint16_t max_length = 0;
  std::string default_text;
};

struct IntBIOSPassword : IntPLDMAttribute {
  ~IntBIOSPassword() override;
  std::uint8_t string_type = 0;
  std::uint16_t min_length = 0;
  std::uint16_t max_length = 0;
  std::string default_text;
};

struct IntBIOSInteger : IntPLDMAttribute {
  std::uint64_t lower_bound = 0;
  std::uint64_t upper_bound = 0;
  std::uint32_t scalar_increment = 0;
  std::uint64_t default_value = 0;
};

struct IntBIOSBootConfigSetting : IntPLDMAttribute {
  std::uint8_t boot_config_type = 0;
  std::uint8_t supported_modes = 0;  // ordered and fail-through
  std::uint8_t min_sources = 0;
  std::uint8_t max_sources = 0;
  Handles possible_handles;  // strings
};

struct IntBIOSCollection : IntPLDMAttribute {
  std::uint16_t collection_name_handle = 0;
  std::uint8_t max_attributes = 0;
  std::uint8_t collection_type = 0;
};

struct IntBIOSConfigSet : IntPLDMAttribute {
  Handles member_handles;  // strings
};

// An entry of the attribute value table.
struct IntPLDMAttributeValue {
  IntPLDMAttributeValue() = default;
  IntPLDMAttributeValue(const IntPLDMAttributeValue&) = delete;
  IntPLDMAttributeValue& operator=(const IntPLDMAttributeValue&) = delete;
  virtual ~IntPLDMAttributeValue() = default;
  std::uint16_t handle = 0;
  PLDM::ATTRIBUTE_TYPE type = PLDM::BIOSUnknownType;
};

struct IntBIOSEnumerationValue : IntPLDMAttributeValue {
  Indices indices;
};

struct IntBIOSStringValue : IntPLDMAttributeValue {
  std::string text;
};

struct IntBIOSPasswordValue : IntPLDMAttributeValue {
  ~IntBIOSPasswordValue() override;
  std::string text;
};

struct IntBIOSIntegerValue : IntPLDMAttributeValue {
  std::uint64_t value = 0;
};

struct IntBIOSBootConfigSettingValue : IntPLDMAttributeValue {
  std::uint8_t boot_config_type = 0;
  std::uint8_t fail_through_mode = 0;
  Indices ordered_indices;
};

struct IntBIOSCollectionValue : IntPLDMAttributeValue {
  Handles members;  // attribute handles
};

struct IntBIOSConfigSetValue : IntPLDMAttributeValue {
  std::uint8_t index = 0;
};

// The strings among which the value of an attribute chooses by index: an enumeration's possible
// values, a boot order's sources, a config set's members. Empty for other types.
std::span<const char16_t> Choices(const IntPLDMAttribute& attribute);

// A string of the string table, split at its first "[". Stays until the next string is added.
struct BiosString {
  std::string_view text;
  std::string_view suffix;  // from the "[" on
};

class Tables {
 public:
  // Each of these replaces what the handle, or the name, stood for.
  void AddString(std::uint16_t handle, std::string_view whole);
  // Also finds the attribute by name from now on, if its name is in the string table.
  void AddAttribute(std::unique_ptr<IntPLDMAttribute> attribute);
  void AddValue(std::unique_ptr<IntPLDMAttributeValue> value);

  // Nothing where there is none.
  std::optional<BiosString> FindString(std::uint16_t handle) const;
  const IntPLDMAttribute* FindAttribute(std::uint16_t handle) const;
  const IntPLDMAttributeValue* FindValue(std::uint16_t handle) const;
  // Of the attribute of that name.
  std::optional<std::uint16_t> HandleOf(std::string_view name) const;
  // The text of a string; empty where there is none.
  std::string_view Text(std::uint16_t handle) const;
  // In ascending order of handles.
  std::vector<const IntPLDMAttribute*> Attributes() const;

  // String handle to text, as the firmware keeps it.
  using WideIndex = std::unordered_map<std::uint16_t, std::u16string>;
  WideIndex display_strings;
  WideIndex help_strings;

 private:
  // The place of a string in characters_, which only grows.
  struct Place {
    std::uint32_t offset = 0;
    std::uint16_t length = 0;
    std::uint16_t bracket = 0;
    explicit operator bool() const { return offset != 0; }
  };

  std::string characters_ = std::string(1, '\0');  // so that no string begins at 0
  HandleIndex<Place> strings_;
  NameIndex handles_;
  HandleIndex<std::unique_ptr<IntPLDMAttribute>> attributes_;
  HandleIndex<std::unique_ptr<IntPLDMAttributeValue>> values_;
};

}  // namespace mira::pldm

#endif  // MIRA_PLDM_TABLES_H_
