#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.22
constexpr Field kFields[] = {
    {"Type", "DeviceType", Kind::kByte},
    {"Interface", "Interface", Kind::kByte},
    {"Number of Buttons", "NumOfButtons", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CBuiltInPointingDevice::kLayout("Built-In Pointing Device",
                                                                     "21", kFields);
