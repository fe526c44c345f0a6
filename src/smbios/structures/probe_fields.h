#ifndef MIRA_SMBIOS_STRUCTURES_PROBE_FIELDS_H_
#define MIRA_SMBIOS_STRUCTURES_PROBE_FIELDS_H_

#include "smbios/layout.h"

namespace mira::smbios {

// The three probes have one layout (DSP0134 7.27, 7.29, 7.30).
inline constexpr Field kProbeFields[] = {
    {"Description", "Description", Kind::kString},
    {"Location and Status", "Location&Status", Kind::kByte, {.hex = true}},
    {"Maximum Value", "MaxValue", Kind::kWord},
    {"Minimum Value", "MinValue", Kind::kWord},
    {"Resolution", "Resolution", Kind::kWord},
    {"Tolerance", "Tolerance", Kind::kWord},
    {"Accuracy", "Accuracy", Kind::kWord},
    {"OEM-defined", "OEMDefined", Kind::kDWord},
    {"Nominal Value", nullptr, Kind::kWord},
};

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_STRUCTURES_PROBE_FIELDS_H_
