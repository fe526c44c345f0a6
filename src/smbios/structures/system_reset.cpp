#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.24
constexpr Field kFields[] = {
    {0x04, "Capabilities", "Capabilities", Kind::kByte, {.hex = true}},
    {0x05, "Reset Count", "ResetCount", Kind::kWord},
    {0x07, "Reset Limit", "ResetLimit", Kind::kWord},
    {0x09, "Timer Interval", "TimerInterval", Kind::kWord},
    {0x0B, "Timeout", "Timeout", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CSystemReset::kLayout("System Reset", "23", kFields);
