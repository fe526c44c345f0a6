#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.37
constexpr Field kFields[] = {
    {"Lower Threshold - Non-critical", "NonCritLowThreshold", Kind::kWord},
    {"Upper Threshold - Non-critical", "NonCritUppThreshold", Kind::kWord},
    {"Lower Threshold - Critical", "CritLowThreshold", Kind::kWord},
    {"Upper Threshold - Critical", "CritUppThreshold", Kind::kWord},
    {"Lower Threshold - Non-recoverable", "NonRecoverableLowThreshold", Kind::kWord},
    {"Upper Threshold - Non-recoverable", "NonRecoverableUppThreshold", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CMgmtDevThresholdData::kLayout(
    "Management Device Threshold Data", "36", kFields);
