#ifndef MIRA_SMBIOS_STRUCTURE_COPY_H_
#define MIRA_SMBIOS_STRUCTURE_COPY_H_

// The one way for hosts to make the bytes that a structure object takes over.
//
//   CBIOSObject* object = new CBIOSObject(mira::smbios::CopyStructure(bytes));

#include <cstddef>

#include "bytes/reader.h"
#include "platform/api.h"

namespace mira::smbios {

// Structure objects get a bare pointer and read their whole layout whatever the structure's length.
// The copy is therefore followed by this many zero bytes: enough for a length of 255 that is
// not there (no field ends farther from the start, DSP0134 6.1.2), and behind it for string number
// 255 of a set whose strings are all missing.
inline constexpr std::size_t kStructureSlack = 512;

// A copy of `structure` (formatted area and string set) and the zero bytes behind it, made with
// new[]; the caller, or the structure object made from it, owns it. A structure below 4 bytes is
// filled up with zeros. Throws std::bad_alloc.
MIRA_API unsigned char* CopyStructure(bytes::ByteSpan structure);

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_STRUCTURE_COPY_H_
