#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.14
constexpr Field kFields[] = {
    {0x04, "Installable Languages", nullptr, Kind::kByte},
    {0x05, "Flags", nullptr, Kind::kByte, {.hex = true}},
    {0x06, nullptr, nullptr, Kind::kBytes, {.size = 15}},
    {0x15, "Current Language", "CurrentLang", Kind::kString},
};

}  // namespace

constinit const mira::smbios::Layout CBIOSLangInfo::kLayout("BIOS Language Information", "13",
                                                            kFields);
