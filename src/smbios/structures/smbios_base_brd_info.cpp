#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.3
constexpr Field kFields[] = {
    {"Manufacturer", "Manufacturer", Kind::kString},
    {"Product", "Product", Kind::kString},
    {"Version", "Version", Kind::kString},
    {"Serial Number", "SerialNumber", Kind::kString},
    {"Asset Tag", "AssetTag", Kind::kString},
    {"Feature Flags", nullptr, Kind::kByte, {.hex = true}},
    {"Location in Chassis", nullptr, Kind::kString},
    {"Chassis Handle", nullptr, Kind::kWord},
    {"Board Type", nullptr, Kind::kByte},
    {"Number of Contained Object Handles", nullptr, Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CSMBIOSBaseBrdInfo::kLayout("SMBIOS Base Board Information",
                                                                 "2", kFields);
