#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {"Present Reading Token", "PresentReadingToken", Kind::kWord},
    {"Reference Reading Token", "ReferenceReadingToken", Kind::kWord},
    {"Present Status Token", "PresentStatusToken", Kind::kWord},
    {"Upper Non-critical Threshold Token", "UppNonCritThresholdToken", Kind::kWord},
    {"Lower Non-critical Threshold Token", "LowNonCritThresholdToken", Kind::kWord},
    {"Upper Critical Threshold Token", "UppCritThresholdToken", Kind::kWord},
    {"Lower Critical Threshold Token", "LowCritThresholdToken", Kind::kWord},
    {"Re-enable Alerts Token", "ReEnableAlertsToken", Kind::kWord},
    {nullptr, nullptr, Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CProbeCustomization::kLayout("Probe Customization", "220",
                                                                  kFields);
