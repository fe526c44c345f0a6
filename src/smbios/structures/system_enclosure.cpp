#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
// DSP0134 7.4
constexpr Field kFields[] = {
    {"Manufacturer", "Manufacturer", Kind::kString, {.rank = 1}},
    {"Type", "ChassisType", Kind::kByte, {.rank = 2}},
    {"Version", "Version", Kind::kString, {.rank = 3}},
    {"Serial Number", "SerialNumber", Kind::kString, {.rank = 5}},
    {"Asset Tag Number", "AssetTagNumber", Kind::kString, {.rank = 4}},
    {"Boot-up State", nullptr, Kind::kByte},
    {"Power Supply State", nullptr, Kind::kByte},
    {"Thermal State", nullptr, Kind::kByte},
    {"Security Status", nullptr, Kind::kByte},
    {"OEM-defined", nullptr, Kind::kDWord},
    {"Height", nullptr, Kind::kByte},
    {"Number of Power Cords", nullptr, Kind::kByte},
    {"Contained Element Count", nullptr, Kind::kByte},
    {"Contained Element Record Length", nullptr, Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CSystemEnclosure::kLayout(
    "System Enclosure", "3", kFields,
    {.note = "Contained Elements is not being displayed - change source code if needed..."});
