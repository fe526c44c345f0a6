#ifndef MIRA_SIM_SMBIOS_DEVICES_H_
#define MIRA_SIM_SMBIOS_DEVICES_H_

#include "sim/profile.h"
#include "sim/smbios_builder.h"

namespace mira::sim {

// The structures of memory, and those of pointing device, battery, probes and other devices.
void AddMemory(SmbiosTable& table);
void AddDevices(SmbiosTable& table, const Profile& p);

}  // namespace mira::sim

#endif  // MIRA_SIM_SMBIOS_DEVICES_H_
