#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {0x04, "OEM Info", "OEMInfo", Kind::kByte},
    {0x05, "Zero", "Zero", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CEFI_MISC_OEM::kLayout("EFI Miscellaneous OEM Type", "136",
                                                            kFields);
