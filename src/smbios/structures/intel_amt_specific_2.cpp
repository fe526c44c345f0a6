#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2)
constexpr Field kFields[] = {
    {"AMT Signature", "AMTSignature", Kind::kCharacters},
    {"AMT Supported", "AMTSupported", Kind::kByte},
    {"AMT Enabled", "AMTEnabled", Kind::kByte},
    {"IDE Redirection Enabled", "IDERedirectionEnabled", Kind::kByte},
    {"SOL Enabled", "SOLEnabled", Kind::kByte},
    {"Network Enabled", "NetworkEnabled", Kind::kByte},
    {"Extended Data", "ExtendedData", Kind::kBytes, {.size = 7}},
};

}  // namespace

constinit const mira::smbios::Layout CIntelAMTSpecific_2::kLayout("Intel AMT Structure", "0x82",
                                                                  kFields);
