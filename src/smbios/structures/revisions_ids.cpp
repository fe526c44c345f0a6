#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {"Revision", "Revision", Kind::kWord},
    {"System Id", "SystemId", Kind::kByte},
    {"Hardware Revision", "HardwareRevision", Kind::kByte},
    {"Extended System Id", "ExtendedSystemId", Kind::kWord},
    {"Manufacture Date", "ManufactureDate", Kind::kString},
    {"Ownership Date", "OwnershipDate", Kind::kString},
    {"System Revision", "SystemRevision", Kind::kByte},
    {"System Family", "SystemFamily", Kind::kByte},
    {"System Properties", "SystemProperties", Kind::kWord, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CRevisionsIds::kLayout("Revisions & Ids", "208", kFields);
