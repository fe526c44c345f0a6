#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.22
constexpr Field kFields[] = {
    {0x04, "Type", "DeviceType", Kind::kByte},
    {0x05, "Interface", "Interface", Kind::kByte},
    {0x06, "Number of Buttons", "NumOfButtons", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CBuiltInPointingDevice::kLayout("Built-In Pointing Device",
                                                                     "21", kFields);
