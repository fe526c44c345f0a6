#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {"Description", "Description", Kind::kString},
    {"Version", "Version", Kind::kString},
    {"System ID", "SystemID", Kind::kByte},
    {"Attributes", "Attributes", Kind::kByte, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CIntelAMTSpecific_1::kLayout("Intel AMT Structure", "0x81",
                                                                  kFields);
