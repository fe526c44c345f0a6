#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

bool IsExtended(const mira::smbios::StructureView& s) { return s.DWord(4) == 0xFFFFFFFF; }

// DSP0134 7.21. Addresses that their fields cannot hold stand in the extended ones, in bytes.
constexpr Field kFields[] = {
    {"Starting Address", nullptr, Kind::kDWord},
    {"Ending Address", nullptr, Kind::kDWord},
    {"Memory Device Handle", nullptr, Kind::kWord},
    {"Memory Array Mapped Address Handle", nullptr, Kind::kWord},
    {"Partition Row Position", nullptr, Kind::kByte},
    {"Interleave Position", nullptr, Kind::kByte},
    {"Interleaved Data Depth", nullptr, Kind::kByte},
    {"Extended Starting Address", nullptr, Kind::kQWord, {.shown = IsExtended}},
    {"Extended Ending Address", nullptr, Kind::kQWord, {.shown = IsExtended}},
};

}  // namespace

constinit const mira::smbios::Layout CMemDevMapAddr::kLayout("Memory Device Mapped Address", "20",
                                                             kFields);
