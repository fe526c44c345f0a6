#include "smbios/structures/mapped_address.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::HasExtendedAddresses;
using mira::smbios::Kind;

// DSP0134 7.20. Addresses that their fields cannot hold stand in the extended ones, in bytes.
constexpr Field kFields[] = {
    {"Starting Address", nullptr, Kind::kDWord},
    {"Ending Address", nullptr, Kind::kDWord},
    {"Memory Array Handle", nullptr, Kind::kWord},
    {"Partition Width", nullptr, Kind::kByte},
    {"Extended Starting Address", nullptr, Kind::kQWord, {.shown = HasExtendedAddresses}},
    {"Extended Ending Address", nullptr, Kind::kQWord, {.shown = HasExtendedAddresses}},
};

}  // namespace

constinit const mira::smbios::Layout CMemArrMapAddr::kLayout("Memory Array Mapped Address", "19",
                                                             kFields);
