#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.8
constexpr Field kFields[] = {
    {"Socket Designation", "SocketDesignation", Kind::kString, {.rank = 1}},
    {"Cache Configuration", nullptr, Kind::kWord, {.hex = true}},
    {"Maximum Cache Size", "MaxCacheSize", Kind::kWord, {.rank = 2}},
    {"Installed Size", "InstalledSize", Kind::kWord, {.rank = 5}},
    {"Supported SRAM Type", nullptr, Kind::kWord, {.hex = true}},
    {"Current SRAM Type", nullptr, Kind::kWord, {.hex = true}},
    {"Cache Speed", "CacheSpeed", Kind::kByte, {.rank = 3}},
    {"Error Correction Type", nullptr, Kind::kByte},
    {"System Cache Type", "SystemCacheType", Kind::kByte, {.rank = 4}},
    {"Associativity", nullptr, Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CCacheInfo::kLayout("Cache Information", "7", kFields);
