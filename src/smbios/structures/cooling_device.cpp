#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.28. Early structures end before the description.
constexpr Field kFields[] = {
    {"Temperature Probe Handle", nullptr, Kind::kWord},
    {"Device Type and Status", "DeviceType&Status", Kind::kByte, {.hex = true, .rank = 1}},
    {"Cooling Unit Group", "CoolingUnitGroup", Kind::kByte, {.rank = 2}},
    {"OEM-defined", "OEMSpecific", Kind::kDWord, {.rank = 5}},
    {"Nominal Speed", "NominalSpeed", Kind::kWord, {.rank = 3}},
    {"Description", "Description", Kind::kString, {.min_length = 13, .rank = 4}},
};

}  // namespace

constinit const mira::smbios::Layout CCoolingDevice::kLayout("Cooling Device", "27", kFields);
