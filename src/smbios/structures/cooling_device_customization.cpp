#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {"Fan Control Flags", "FanControlFlags", Kind::kByte, {.hex = true}},
    {"Conversion Factor", "ConversionFactor", Kind::kWord},
    {"Present Speed Token", "PresentSpeedToken", Kind::kWord},
    {"Present Status Token", "PresentStatusToken", Kind::kWord},
    {"Upper Non-critical Threshold Token", "UppNonCritThresholdToken", Kind::kWord},
    {"Lower Non-critical Threshold Token", "LowNonCritThresholdToken", Kind::kWord},
    {"Upper Critical Threshold Token", "UppCritThresholdToken", Kind::kWord},
    {"Lower Critical Threshold Token", "LowCritThresholdToken", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CCoolingDeviceCustomization::kLayout(
    "Cooling Device Customization", "221", kFields);
