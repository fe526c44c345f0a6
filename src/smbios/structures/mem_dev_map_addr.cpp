#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.21
constexpr Field kFields[] = {
    {"Starting Address", nullptr, Kind::kDWord},
    {"Ending Address", nullptr, Kind::kDWord},
    {"Memory Device Handle", nullptr, Kind::kWord},
    {"Memory Array Mapped Address Handle", nullptr, Kind::kWord},
    {"Partition Row Position", nullptr, Kind::kByte},
    {"Interleave Position", nullptr, Kind::kByte},
    {"Interleaved Data Depth", nullptr, Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CMemDevMapAddr::kLayout("Memory Device Mapped Address", "20",
                                                             kFields);
