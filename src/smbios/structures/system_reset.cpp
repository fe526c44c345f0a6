#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.24
constexpr Field kFields[] = {
    {"Capabilities", "Capabilities", Kind::kByte, {.hex = true}},
    {"Reset Count", "ResetCount", Kind::kWord},
    {"Reset Limit", "ResetLimit", Kind::kWord},
    {"Timer Interval", "TimerInterval", Kind::kWord},
    {"Timeout", "Timeout", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CSystemReset::kLayout("System Reset", "23", kFields);
