#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.10
constexpr Field kFields[] = {
    {0x04, "Slot Designation", "SlotDesignation", Kind::kString},
    {0x05, "Slot Type", "SlotType", Kind::kByte},
    {0x06, "Slot Data Bus Width", "SlotDataBusWidth", Kind::kByte},
    {0x07, "Current Usage", "CurrentUsage", Kind::kByte},
    {0x08, "Slot Length", "SlotLength", Kind::kByte},
    {0x09, "Slot ID", "SlotID", Kind::kWord},
    {0x0B, "Slot Characteristics 1", "SlotCharacteristics1", Kind::kByte, {.hex = true}},
    {0x0C, "Slot Characteristics 2", "SlotCharacteristics2", Kind::kByte, {.hex = true}},
    {0x0D, "Segment Group Number", "SegmentGroupNumber", Kind::kWord},
    {0x0F, "Bus Number", "BusNumber", Kind::kByte},
    {0x10, "Device/Function Number", "DevOrFuncNumber", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CSystemSlots::kLayout("System Slots", "9", kFields);
