#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.37
constexpr Field kFields[] = {
    {0x04, "Lower Threshold - Non-critical", "NonCritLowThreshold", Kind::kWord},
    {0x06, "Upper Threshold - Non-critical", "NonCritUppThreshold", Kind::kWord},
    {0x08, "Lower Threshold - Critical", "CritLowThreshold", Kind::kWord},
    {0x0A, "Upper Threshold - Critical", "CritUppThreshold", Kind::kWord},
    {0x0C, "Lower Threshold - Non-recoverable", "NonRecoverableLowThreshold", Kind::kWord},
    {0x0E, "Upper Threshold - Non-recoverable", "NonRecoverableUppThreshold", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CMgmtDevThresholdData::kLayout(
    "Management Device Threshold Data", "36", kFields);
