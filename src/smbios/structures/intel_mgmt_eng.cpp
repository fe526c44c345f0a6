#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
// Four words: major, minor, hotfix, build.
bool Version(const mira::smbios::StructureView&, const mira::smbios::Value& value,
             mira::smbios::TextOut& out) {
  for (int shift = 0; shift < 64; shift += 16) {
    if (shift > 0) out << '.';
    out << mira::smbios::Decimal(value.number >> shift & 0xFFFF);
  }
  return true;
}

// Vendor structure (DSP0134 6.1.2), found in forms of other lengths, too
constexpr Field kFields[] = {
    {0x04, "CPU Capability", "CPUCapability", Kind::kDWord, {.hex = true}},
    {0x08, "Intel MEBX Version", "IntelMEBXVersion", Kind::kQWord, {.text = Version}},
    {0x10, "PCH Capability", "PCHCapability", Kind::kQWord, {.hex = true}},
    {0x18,
     "Intel Management Engine Capability 1",
     "IntelManagementEngineCapability1",
     Kind::kDWord,
     {.hex = true}},
    {0x1C,
     "Intel Management Engine Capability 2",
     "IntelManagementEngineCapability2",
     Kind::kDWord,
     {.hex = true}},
    {0x20,
     "Intel Management Engine Capability 3",
     "IntelManagementEngineCapability3",
     Kind::kDWord,
     {.hex = true}},
    {0x24,
     "Intel Management Engine Platform Configuration State",
     "IntelManagementEnginePlatformConfigurationState",
     Kind::kDWord,
     {.hex = true}},
    {0x28, "Network Device LAN 1", "NetworkDeviceLAN1", Kind::kDWord, {.hex = true}},
    {0x2C, "Network Device LAN 2", "NetworkDeviceLAN2", Kind::kDWord, {.hex = true}},
    {0x30, "Network Device LAN 3", "NetworkDeviceLAN3", Kind::kDWord, {.hex = true}},
    {0x34, "BIOS Security Capabilities", "BIOSSecurityCapabilities", Kind::kDWord, {.hex = true}},
    {0x38, "Structure Identifier", "StructureIdentifier", Kind::kCharacters},
    {0x3C, nullptr, nullptr, Kind::kDWord},
};

}  // namespace

constinit const mira::smbios::Layout CIntelMgmtEng::kLayout("Intel Management Engine Structure",
                                                            "0x83", kFields);
