#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.26. The values are BCD: their hexadecimal digits are the decimal ones.
constexpr Field kFields[] = {
    {0x04, "Next Scheduled Power-on Month", nullptr, Kind::kByte, {.hex = true}},
    {0x05, "Next Scheduled Power-on Day-of-month", nullptr, Kind::kByte, {.hex = true}},
    {0x06, "Next Scheduled Power-on Hour", nullptr, Kind::kByte, {.hex = true}},
    {0x07, "Next Scheduled Power-on Minute", nullptr, Kind::kByte, {.hex = true}},
    {0x08, "Next Scheduled Power-on Second", nullptr, Kind::kByte, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CSystemPowerControls::kLayout("System Power Controls", "25",
                                                                   kFields);
