#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {0x04, "Present Reading Token", "PresentReadingToken", Kind::kWord},
    {0x06, "Reference Reading Token", "ReferenceReadingToken", Kind::kWord},
    {0x08, "Present Status Token", "PresentStatusToken", Kind::kWord},
    {0x0A, "Upper Non-critical Threshold Token", "UppNonCritThresholdToken", Kind::kWord},
    {0x0C, "Lower Non-critical Threshold Token", "LowNonCritThresholdToken", Kind::kWord},
    {0x0E, "Upper Critical Threshold Token", "UppCritThresholdToken", Kind::kWord},
    {0x10, "Lower Critical Threshold Token", "LowCritThresholdToken", Kind::kWord},
    {0x12, "Re-enable Alerts Token", "ReEnableAlertsToken", Kind::kWord},
    {0x14, nullptr, nullptr, Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CProbeCustomization::kLayout("Probe Customization", "220",
                                                                  kFields);
