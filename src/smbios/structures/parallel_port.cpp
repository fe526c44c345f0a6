#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2); widths by the fields' meaning, as no machine with one was at
// hand
constexpr Field kFields[] = {
    {"Base I/O Address", "BaseIOAddress", Kind::kWord},
    {"IRQ", "IRQ", Kind::kByte},
    {"Connector Type", "ConnectorType", Kind::kByte},
    {"Connector Pin Out", "ConnectorPinOut", Kind::kByte},
    {"Capabilities", "Capabilities", Kind::kWord, {.hex = true}},
    {"Security Settings", "SecuritySettings", Kind::kByte, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CParallelPort::kLayout("Parallel Port", "209", kFields);
