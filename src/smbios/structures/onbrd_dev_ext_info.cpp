#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.42
constexpr Field kFields[] = {
    {0x04, "Reference Designation", "ReferenceDesignation", Kind::kString},
    {0x05, "Device Type", "DeviceType", Kind::kByte},
    {0x06, "Device Type Instance", "DeviceTypeInstance", Kind::kByte},
    {0x07, "Segment Group Number", "SegmentGroupNumber", Kind::kWord},
    {0x09, "Bus Number", "BusNumber", Kind::kByte},
    {0x0A, "Device/Function Number", "DeviceOrFunctionNumber", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout COnbrdDevExtInfo::kLayout(
    "On-Board Device Extended Information", "41", kFields);
