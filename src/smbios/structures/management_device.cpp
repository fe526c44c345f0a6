#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.35. The key of the address type repeats that of the type, on purpose.
constexpr Field kFields[] = {
    {"Description", "Description", Kind::kString},
    {"Type", "Type", Kind::kByte},
    {"Address", "Address", Kind::kDWord},
    {"Address Type", "Type", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CManagementDevice::kLayout("Management Device", "34", kFields);
