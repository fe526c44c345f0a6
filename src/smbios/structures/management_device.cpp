#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.35. The key of the address type repeats that of the type, on purpose.
constexpr Field kFields[] = {
    {0x04, "Description", "Description", Kind::kString},
    {0x05, "Type", "Type", Kind::kByte},
    {0x06, "Address", "Address", Kind::kDWord},
    {0x0A, "Address Type", "Type", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CManagementDevice::kLayout("Management Device", "34", kFields);
