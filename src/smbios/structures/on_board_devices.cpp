#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.11
constexpr Field kItems[] = {
    {0x00, "Device Type", "Type", Kind::kByte},
    {0x01, "Description String", "Description", Kind::kString},
};

}  // namespace

constinit const mira::smbios::Layout COnBoardDevices::kLayout("OnBoard Devices Inforamtion", "10",
                                                              {}, {.items = kItems});
