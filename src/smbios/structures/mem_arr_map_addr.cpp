#include "smbios/layout.h"
#include "smbios/structures/mapped_address.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::HasExtendedAddresses;
using mira::smbios::Kind;
using mira::smbios::kStartingAddress;

// DSP0134 7.20. Addresses that their fields cannot hold stand in the extended ones, in bytes.
constexpr Field kFields[] = {
    {kStartingAddress, "Starting Address", nullptr, Kind::kDWord},
    {0x08, "Ending Address", nullptr, Kind::kDWord},
    {0x0C, "Memory Array Handle", nullptr, Kind::kWord},
    {0x0E, "Partition Width", nullptr, Kind::kByte},
    {0x0F, "Extended Starting Address", nullptr, Kind::kQWord, {.shown = HasExtendedAddresses}},
    {0x17, "Extended Ending Address", nullptr, Kind::kQWord, {.shown = HasExtendedAddresses}},
};

}  // namespace

constinit const mira::smbios::Layout CMemArrMapAddr::kLayout("Memory Array Mapped Address", "19",
                                                             kFields);
