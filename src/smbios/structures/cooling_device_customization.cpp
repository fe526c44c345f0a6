#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {0x04, "Fan Control Flags", "FanControlFlags", Kind::kByte, {.hex = true}},
    {0x05, "Conversion Factor", "ConversionFactor", Kind::kWord},
    {0x07, "Present Speed Token", "PresentSpeedToken", Kind::kWord},
    {0x09, "Present Status Token", "PresentStatusToken", Kind::kWord},
    {0x0B, "Upper Non-critical Threshold Token", "UppNonCritThresholdToken", Kind::kWord},
    {0x0D, "Lower Non-critical Threshold Token", "LowNonCritThresholdToken", Kind::kWord},
    {0x0F, "Upper Critical Threshold Token", "UppCritThresholdToken", Kind::kWord},
    {0x11, "Lower Critical Threshold Token", "LowCritThresholdToken", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CCoolingDeviceCustomization::kLayout(
    "Cooling Device Customization", "221", kFields);
