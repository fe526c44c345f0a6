#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.15
constexpr Field kFields[] = {
    {0x04, "Group Name", "GroupName", Kind::kString},
};
constexpr Field kItems[] = {
    {0x00, "Item Type", nullptr, Kind::kByte},
    {0x01, "Item Handle", nullptr, Kind::kWord},
};

}  // namespace

// The closing line is shorter than the banner, on purpose.
constinit const mira::smbios::Layout CGroupAssociations::kLayout("Group Associations", "14",
                                                                 kFields,
                                                                 {.items = kItems, .closing = 99});
