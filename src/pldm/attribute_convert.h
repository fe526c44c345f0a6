#ifndef MIRA_PLDM_ATTRIBUTE_CONVERT_H_
#define MIRA_PLDM_ATTRIBUTE_CONVERT_H_

// Between what the tables hold and what callers see.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "pldm/attribute.h"
#include "pldm/tables.h"

namespace mira::pldm {

// Whether the object is of the class that its type names; every object of a type that does not
// exist is.
bool IsOfItsType(const PLDM::Attribute& attribute);

// Moves attribute and value into the caller's record, but for the base's handle and type. An index
// that points past its list gives an empty name. False when the three are not of one type.
bool Fill(const IntPLDMAttribute& attribute, const IntPLDMAttributeValue& value,
          const Tables& tables, PLDM::Attribute& out);
// The fields of the base: names and texts.
void FillNames(const IntPLDMAttribute& attribute, const Tables& tables, PLDM::Attribute& out);

// The value of a caller's record of a writable type, as it is written; null when a field of it does
// not fit. The handle is the caller's.
std::unique_ptr<IntPLDMAttributeValue> ToValue(const PLDM::Attribute& attribute,
                                               const Tables& tables);

// The text of the attribute's choice at that place; nothing when it has none there, or the string
// is missing.
std::optional<std::string_view> ChoiceText(const IntPLDMAttribute* attribute, std::size_t index,
                                           const Tables& tables);

}  // namespace mira::pldm

#endif  // MIRA_PLDM_ATTRIBUTE_CONVERT_H_
