#ifndef MIRA_SMBIOS_STRUCTURES_PROBE_FIELDS_H_
#define MIRA_SMBIOS_STRUCTURES_PROBE_FIELDS_H_

#include "smbios/layout.h"

namespace mira::smbios {

// The three probes have one layout (DSP0134 7.27, 7.29, 7.30).
inline constexpr Field kProbeFields[] = {
    {0x04, "Description", "Description", Kind::kString},
    {0x05, "Location and Status", "Location&Status", Kind::kByte, {.hex = true}},
    {0x06, "Maximum Value", "MaxValue", Kind::kWord},
    {0x08, "Minimum Value", "MinValue", Kind::kWord},
    {0x0A, "Resolution", "Resolution", Kind::kWord},
    {0x0C, "Tolerance", "Tolerance", Kind::kWord},
    {0x0E, "Accuracy", "Accuracy", Kind::kWord},
    {0x10, "OEM-defined", "OEMDefined", Kind::kDWord},
    {0x14, "Nominal Value", nullptr, Kind::kWord},
};

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_STRUCTURES_PROBE_FIELDS_H_
