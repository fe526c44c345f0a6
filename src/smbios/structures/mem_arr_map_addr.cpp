#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.20
constexpr Field kFields[] = {
    {"Starting Address", nullptr, Kind::kDWord},
    {"Ending Address", nullptr, Kind::kDWord},
    {"Memory Array Handle", nullptr, Kind::kWord},
    {"Partition Width", nullptr, Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CMemArrMapAddr::kLayout("Memory Array Mapped Address", "19",
                                                             kFields);
