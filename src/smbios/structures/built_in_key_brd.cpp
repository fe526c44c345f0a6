#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2); widths by the fields' meaning, as no machine with one was at
// hand
constexpr Field kFields[] = {
    {0x04, "Layout", "Layout", Kind::kByte},
    {0x05, "Type", "Type", Kind::kByte},
    {0x06, "Connector Type", "ConnectorType", Kind::kByte},
    {0x07, "Security Settings", "SecuritySettings", Kind::kByte, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CBuiltInKeyBrd::kLayout("Built-In Key Board", "217", kFields);
