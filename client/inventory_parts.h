#ifndef MIRA_CLIENT_INVENTORY_PARTS_H_
#define MIRA_CLIENT_INVENTORY_PARTS_H_

// What reads one structure each into the inventory's values.

#include "client/inventory.h"
#include "client/smbios_file.h"
#include "client/structure_fields.h"

namespace mira::client {

BiosInfo ReadBios(const StructureFields& fields);
SystemInfo ReadSystem(const StructureFields& fields, SmbiosVersion version);
BoardInfo ReadBoard(const StructureFields& fields);
ChassisInfo ReadChassis(const StructureFields& fields);
ProcessorInfo ReadProcessor(const StructureFields& fields);
CacheInfo ReadCache(const StructureFields& fields);
MemoryArray ReadMemoryArray(const StructureFields& fields);
MemorySlot ReadMemorySlot(const StructureFields& fields);
ExpansionSlot ReadExpansionSlot(const StructureFields& fields);
Port ReadPort(const StructureFields& fields);
PortableBattery ReadPortableBattery(const StructureFields& fields);
TpmInfo ReadTpm(const StructureFields& fields);
FirmwareComponent ReadFirmwareComponent(const StructureFields& fields);

// The name of a processor family (DSP0134 7.5.2); nothing for a code that the standard lacks.
const char* StandardFamilyName(std::uint16_t family);

}  // namespace mira::client

#endif  // MIRA_CLIENT_INVENTORY_PARTS_H_
