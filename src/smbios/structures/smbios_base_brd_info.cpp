#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.3
constexpr Field kFields[] = {
    {0x04, "Manufacturer", "Manufacturer", Kind::kString},
    {0x05, "Product", "Product", Kind::kString},
    {0x06, "Version", "Version", Kind::kString},
    {0x07, "Serial Number", "SerialNumber", Kind::kString},
    {0x08, "Asset Tag", "AssetTag", Kind::kString},
    {0x09, "Feature Flags", nullptr, Kind::kByte, {.hex = true}},
    {0x0A, "Location in Chassis", nullptr, Kind::kString},
    {0x0B, "Chassis Handle", nullptr, Kind::kWord},
    {0x0D, "Board Type", nullptr, Kind::kByte},
    {0x0E, "Number of Contained Object Handles", nullptr, Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CSMBIOSBaseBrdInfo::kLayout("SMBIOS Base Board Information",
                                                                 "2", kFields);
