#include "smbios/layout.h"
#include "smbios/structures/mapped_address.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::HasExtendedAddresses;
using mira::smbios::Kind;
using mira::smbios::kStartingAddress;

// DSP0134 7.21. Addresses that their fields cannot hold stand in the extended ones, in bytes.
constexpr Field kFields[] = {
    {kStartingAddress, "Starting Address", nullptr, Kind::kDWord},
    {0x08, "Ending Address", nullptr, Kind::kDWord},
    {0x0C, "Memory Device Handle", nullptr, Kind::kWord},
    {0x0E, "Memory Array Mapped Address Handle", nullptr, Kind::kWord},
    {0x10, "Partition Row Position", nullptr, Kind::kByte},
    {0x11, "Interleave Position", nullptr, Kind::kByte},
    {0x12, "Interleaved Data Depth", nullptr, Kind::kByte},
    {0x13, "Extended Starting Address", nullptr, Kind::kQWord, {.shown = HasExtendedAddresses}},
    {0x1B, "Extended Ending Address", nullptr, Kind::kQWord, {.shown = HasExtendedAddresses}},
};

}  // namespace

constinit const mira::smbios::Layout CMemDevMapAddr::kLayout("Memory Device Mapped Address", "20",
                                                             kFields);
