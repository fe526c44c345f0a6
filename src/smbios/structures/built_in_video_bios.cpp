#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {"Manufacturer", "Manufacturer", Kind::kString},
    {"Version", "Version", Kind::kString},
    {"Shadow State", "ShadowState", Kind::kByte},
    {"Characteristics", "Characteristics", Kind::kWord, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CBuiltInVideoBIOS::kLayout("Built-In Video BIOS", "216",
                                                                kFields);
