#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.42
constexpr Field kFields[] = {
    {"Reference Designation", "ReferenceDesignation", Kind::kString},
    {"Device Type", "DeviceType", Kind::kByte},
    {"Device Type Instance", "DeviceTypeInstance", Kind::kByte},
    {"Segment Group Number", "SegmentGroupNumber", Kind::kWord},
    {"Bus Number", "BusNumber", Kind::kByte},
    {"Device/Function Number", "DeviceOrFunctionNumber", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout COnbrdDevExtInfo::kLayout(
    "On-Board Device Extended Information", "41", kFields);
