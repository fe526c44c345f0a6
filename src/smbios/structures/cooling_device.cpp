#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.28. Early structures end before the description.
constexpr Field kFields[] = {
    {0x04, "Temperature Probe Handle", nullptr, Kind::kWord},
    {0x06, "Device Type and Status", "DeviceType&Status", Kind::kByte, {.hex = true, .rank = 1}},
    {0x07, "Cooling Unit Group", "CoolingUnitGroup", Kind::kByte, {.rank = 2}},
    {0x08, "OEM-defined", "OEMSpecific", Kind::kDWord, {.rank = 5}},
    {0x0C, "Nominal Speed", "NominalSpeed", Kind::kWord, {.rank = 3}},
    {0x0E, "Description", "Description", Kind::kString, {.min_length = 13, .rank = 4}},
};

}  // namespace

constinit const mira::smbios::Layout CCoolingDevice::kLayout("Cooling Device", "27", kFields);
