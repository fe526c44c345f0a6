#ifndef MIRA_CLIENT_STRUCTURE_MARKS_H_
#define MIRA_CLIENT_STRUCTURE_MARKS_H_

// What a reader of structures should know in addition to their values: see also
// CBIOSObject::AttributesBeyond().

#include <cstdint>
#include <set>

#include "smbios/table.h"

namespace mira::client {

// The handles that more than one structure has, against DSP0134 6.1.2.
std::set<std::uint16_t> RepeatedHandles(const smbios::Registry& objects);

}  // namespace mira::client

#endif  // MIRA_CLIENT_STRUCTURE_MARKS_H_
