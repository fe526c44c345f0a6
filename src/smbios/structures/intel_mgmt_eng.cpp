#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;
// Four words: major, minor, hotfix, build.
bool Version(const mira::smbios::StructureView&, const mira::smbios::Value& value,
             std::string& out) {
  for (int shift = 0; shift < 64; shift += 16) {
    if (shift > 0) out += '.';
    mira::smbios::AppendDecimal(out, value.number >> shift & 0xFFFF);
  }
  return true;
}

// Vendor structure (DSP0134 6.1.2), found in forms of other lengths, too
constexpr Field kFields[] = {
    {"CPU Capability", "CPUCapability", Kind::kDWord, {.hex = true}},
    {"Intel MEBX Version", "IntelMEBXVersion", Kind::kQWord, {.text = Version}},
    {"PCH Capability", "PCHCapability", Kind::kQWord, {.hex = true}},
    {"Intel Management Engine Capability 1",
     "IntelManagementEngineCapability1",
     Kind::kDWord,
     {.hex = true}},
    {"Intel Management Engine Capability 2",
     "IntelManagementEngineCapability2",
     Kind::kDWord,
     {.hex = true}},
    {"Intel Management Engine Capability 3",
     "IntelManagementEngineCapability3",
     Kind::kDWord,
     {.hex = true}},
    {"Intel Management Engine Platform Configuration State",
     "IntelManagementEnginePlatformConfigurationState",
     Kind::kDWord,
     {.hex = true}},
    {"Network Device LAN 1", "NetworkDeviceLAN1", Kind::kDWord, {.hex = true}},
    {"Network Device LAN 2", "NetworkDeviceLAN2", Kind::kDWord, {.hex = true}},
    {"Network Device LAN 3", "NetworkDeviceLAN3", Kind::kDWord, {.hex = true}},
    {"BIOS Security Capabilities", "BIOSSecurityCapabilities", Kind::kDWord, {.hex = true}},
    {"Structure Identifier", "StructureIdentifier", Kind::kCharacters},
    {nullptr, nullptr, Kind::kDWord},
};

}  // namespace

constinit const mira::smbios::Layout CIntelMgmtEng::kLayout("Intel Management Engine Structure",
                                                            "0x83", kFields);
