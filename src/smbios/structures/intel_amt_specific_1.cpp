#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {0x04, "Description", "Description", Kind::kString},
    {0x05, "Version", "Version", Kind::kString},
    {0x06, "System ID", "SystemID", Kind::kByte},
    {0x07, "Attributes", "Attributes", Kind::kByte, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CIntelAMTSpecific_1::kLayout("Intel AMT Structure", "0x81",
                                                                  kFields);
