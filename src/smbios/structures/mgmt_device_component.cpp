#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.36
constexpr Field kFields[] = {
    {"Description", "Description", Kind::kString},
    {"Management Device Handle", "DeviceHandle", Kind::kWord},
    {"Component Handle", "ComponentHandle", Kind::kWord},
    {"Threshold Handle", "ThresholdHanlde", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CMgmtDeviceComponent::kLayout("Management Device Component",
                                                                   "35", kFields);
