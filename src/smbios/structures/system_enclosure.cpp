#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
// DSP0134 7.4
constexpr Field kFields[] = {
    {0x04, "Manufacturer", "Manufacturer", Kind::kString, {.rank = 1}},
    {0x05, "Type", "ChassisType", Kind::kByte, {.rank = 2}},
    {0x06, "Version", "Version", Kind::kString, {.rank = 3}},
    {0x07, "Serial Number", "SerialNumber", Kind::kString, {.rank = 5}},
    {0x08, "Asset Tag Number", "AssetTagNumber", Kind::kString, {.rank = 4}},
    {0x09, "Boot-up State", nullptr, Kind::kByte},
    {0x0A, "Power Supply State", nullptr, Kind::kByte},
    {0x0B, "Thermal State", nullptr, Kind::kByte},
    {0x0C, "Security Status", nullptr, Kind::kByte},
    {0x0D, "OEM-defined", nullptr, Kind::kDWord},
    {0x11, "Height", nullptr, Kind::kByte},
    {0x12, "Number of Power Cords", nullptr, Kind::kByte},
    {0x13, "Contained Element Count", nullptr, Kind::kByte},
    {0x14, "Contained Element Record Length", nullptr, Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CSystemEnclosure::kLayout(
    "System Enclosure", "3", kFields,
    {.note = "Contained Elements is not being displayed - change source code if needed..."});
