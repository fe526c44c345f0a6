#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.33
constexpr Field kFields[] = {
    {0x04, nullptr, nullptr, Kind::kBytes, {.size = 6}},
    {0x0A, "Boot Status", nullptr, Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CSystemBootInfo::kLayout("System Boot Information", "32",
                                                              kFields);
