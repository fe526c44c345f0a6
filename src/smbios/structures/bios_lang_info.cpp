#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.14
constexpr Field kFields[] = {
    {"Installable Languages", nullptr, Kind::kByte},
    {"Flags", nullptr, Kind::kByte, {.hex = true}},
    {nullptr, nullptr, Kind::kBytes, {.size = 15}},
    {"Current Language", "CurrentLang", Kind::kString},
};

}  // namespace

constinit const mira::smbios::Layout CBIOSLangInfo::kLayout("BIOS Language Information", "13",
                                                            kFields);
