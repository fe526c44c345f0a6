#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {0x04, "Manufacturer", "Manufacturer", Kind::kString},
    {0x05, "Version", "Version", Kind::kString},
    {0x06, "Shadow State", "ShadowState", Kind::kByte},
    {0x07, "Characteristics", "Characteristics", Kind::kWord, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CBuiltInVideoBIOS::kLayout("Built-In Video BIOS", "216",
                                                                kFields);
