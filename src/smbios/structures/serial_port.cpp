#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {0x04, "Base I/O Address", "BaseIOAddress", Kind::kWord},
    {0x06, "IRQ", "IRQ", Kind::kByte},
    {0x07, "Connector Type", "ConnectorType", Kind::kByte},
    {0x08, "Capabilities", "Capabilities", Kind::kWord, {.hex = true}},
    {0x0A, "Max Speed", "MaxSpeed", Kind::kByte},
    {0x0B, "Security Settings", "SecuritySettings", Kind::kByte, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CSerialPort::kLayout("Serial Port", "210", kFields);
