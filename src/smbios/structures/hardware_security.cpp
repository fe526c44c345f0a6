#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.25
constexpr Field kFields[] = {
    {0x04, "Hardware Security Settings", "HardwareSecuritySettings", Kind::kByte, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CHardwareSecurity::kLayout("Hardware Security", "24", kFields);
