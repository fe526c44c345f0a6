#ifndef MIRA_SIM_SMBIOS_TABLES_H_
#define MIRA_SIM_SMBIOS_TABLES_H_

#include <cstdint>
#include <vector>

#include "sim/profile.h"

namespace mira::sim {

// The SMBIOS table of the machine that the profile describes, as the firmware table service returns
// it.
std::vector<std::uint8_t> BuildFirmwareTable(const Profile& profile);

}  // namespace mira::sim

#endif  // MIRA_SIM_SMBIOS_TABLES_H_
