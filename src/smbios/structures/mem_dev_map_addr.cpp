#include "smbios/structures/mapped_address.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::HasExtendedAddresses;
using mira::smbios::Kind;

// DSP0134 7.21. Addresses that their fields cannot hold stand in the extended ones, in bytes.
constexpr Field kFields[] = {
    {"Starting Address", nullptr, Kind::kDWord},
    {"Ending Address", nullptr, Kind::kDWord},
    {"Memory Device Handle", nullptr, Kind::kWord},
    {"Memory Array Mapped Address Handle", nullptr, Kind::kWord},
    {"Partition Row Position", nullptr, Kind::kByte},
    {"Interleave Position", nullptr, Kind::kByte},
    {"Interleaved Data Depth", nullptr, Kind::kByte},
    {"Extended Starting Address", nullptr, Kind::kQWord, {.shown = HasExtendedAddresses}},
    {"Extended Ending Address", nullptr, Kind::kQWord, {.shown = HasExtendedAddresses}},
};

}  // namespace

constinit const mira::smbios::Layout CMemDevMapAddr::kLayout("Memory Device Mapped Address", "20",
                                                             kFields);
