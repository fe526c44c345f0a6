#ifndef MIRA_SMBIOS_STRUCTURE_FACTORY_H_
#define MIRA_SMBIOS_STRUCTURE_FACTORY_H_

// Which class a structure type has, written down once.

#include <memory>

#include "bytes/reader.h"
#include "platform/api.h"
#include "platform/com_ptr.h"
#include "smbios/bios_object.h"

namespace mira::smbios {

// The object of the class for the type in raw[0]; it owns `raw`. The connection goes to the calling
// interface alone and may be empty.
CBIOSObject* MakeObject(std::unique_ptr<unsigned char[]> raw, CComPtr<IWbemServices>& services);

// The same of a structure's bytes, which are copied into one of the blocks. Null when the object
// needs bytes of its own: it needs a connection, too, or its structure is long.
CBIOSObject* MakeObject(bytes::ByteSpan structure, StructureBlocks& blocks);

// The name of the class that a type has, "CBIOSObject" for types without one.
MIRA_API const char* ClassName(unsigned char type);

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_STRUCTURE_FACTORY_H_
