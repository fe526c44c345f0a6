#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {0x04, "AMT Signature", "AMTSignature", Kind::kCharacters},
    {0x08, "AMT Supported", "AMTSupported", Kind::kByte},
    {0x09, "AMT Enabled", "AMTEnabled", Kind::kByte},
    {0x0A, "IDE Redirection Enabled", "IDERedirectionEnabled", Kind::kByte},
    {0x0B, "SOL Enabled", "SOLEnabled", Kind::kByte},
    {0x0C, "Network Enabled", "NetworkEnabled", Kind::kByte},
    {0x0D, "Extended Data", "ExtendedData", Kind::kBytes, {.size = 7}},
};

}  // namespace

constinit const mira::smbios::Layout CIntelAMTSpecific_2::kLayout("Intel AMT Structure", "0x82",
                                                                  kFields);
