#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.8
constexpr Field kFields[] = {
    {0x04, "Socket Designation", "SocketDesignation", Kind::kString, {.rank = 1}},
    {0x05, "Cache Configuration", nullptr, Kind::kWord, {.hex = true}},
    {0x07, "Maximum Cache Size", "MaxCacheSize", Kind::kWord, {.rank = 2}},
    {0x09, "Installed Size", "InstalledSize", Kind::kWord, {.rank = 5}},
    {0x0B, "Supported SRAM Type", nullptr, Kind::kWord, {.hex = true}},
    {0x0D, "Current SRAM Type", nullptr, Kind::kWord, {.hex = true}},
    {0x0F, "Cache Speed", "CacheSpeed", Kind::kByte, {.rank = 3}},
    {0x10, "Error Correction Type", nullptr, Kind::kByte},
    {0x11, "System Cache Type", "SystemCacheType", Kind::kByte, {.rank = 4}},
    {0x12, "Associativity", nullptr, Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CCacheInfo::kLayout("Cache Information", "7", kFields);
