#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.36
constexpr Field kFields[] = {
    {0x04, "Description", "Description", Kind::kString},
    {0x05, "Management Device Handle", "DeviceHandle", Kind::kWord},
    {0x07, "Component Handle", "ComponentHandle", Kind::kWord},
    {0x09, "Threshold Handle", "ThresholdHanlde", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CMgmtDeviceComponent::kLayout("Management Device Component",
                                                                   "35", kFields);
