#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {"Base I/O Address", "BaseIOAddress", Kind::kWord},
    {"IRQ", "IRQ", Kind::kByte},
    {"Connector Type", "ConnectorType", Kind::kByte},
    {"Capabilities", "Capabilities", Kind::kWord, {.hex = true}},
    {"Max Speed", "MaxSpeed", Kind::kByte},
    {"Security Settings", "SecuritySettings", Kind::kByte, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CSerialPort::kLayout("Serial Port", "210", kFields);
