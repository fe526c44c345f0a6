#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {0x04, "Revision", "Revision", Kind::kWord},
    {0x06, "System Id", "SystemId", Kind::kByte},
    {0x07, "Hardware Revision", "HardwareRevision", Kind::kByte},
    {0x08, "Extended System Id", "ExtendedSystemId", Kind::kWord},
    {0x0A, "Manufacture Date", "ManufactureDate", Kind::kString},
    {0x0B, "Ownership Date", "OwnershipDate", Kind::kString},
    {0x0C, "System Revision", "SystemRevision", Kind::kByte},
    {0x0D, "System Family", "SystemFamily", Kind::kByte},
    {0x0E, "System Properties", "SystemProperties", Kind::kWord, {.hex = true}},
};

}  // namespace

constinit const mira::smbios::Layout CRevisionsIds::kLayout("Revisions & Ids", "208", kFields);
