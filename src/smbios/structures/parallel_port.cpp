#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2); widths by the fields' meaning, as no machine with one was at
// hand
constexpr Field kFields[] = {
    {0x04, "Base I/O Address", "BaseIOAddress", Kind::kWord},
    {0x06, "IRQ", "IRQ", Kind::kByte},
    {0x07, "Connector Type", "ConnectorType", Kind::kByte},
    {0x08, "Connector Pin Out", "ConnectorPinOut", Kind::kByte},
    {0x09, "Capabilities", "Capabilities", Kind::kWord, {.hex = true}},
    {0x0B, "Security Settings", "SecuritySettings", Kind::kByte, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CParallelPort::kLayout("Parallel Port", "209", kFields);
