#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.10
constexpr Field kFields[] = {
    {"Slot Designation", "SlotDesignation", Kind::kString},
    {"Slot Type", "SlotType", Kind::kByte},
    {"Slot Data Bus Width", "SlotDataBusWidth", Kind::kByte},
    {"Current Usage", "CurrentUsage", Kind::kByte},
    {"Slot Length", "SlotLength", Kind::kByte},
    {"Slot ID", "SlotID", Kind::kWord},
    {"Slot Characteristics 1", "SlotCharacteristics1", Kind::kByte, {.hex = true}},
    {"Slot Characteristics 2", "SlotCharacteristics2", Kind::kByte, {.hex = true}},
    {"Segment Group Number", "SegmentGroupNumber", Kind::kWord},
    {"Bus Number", "BusNumber", Kind::kByte},
    {"Device/Function Number", "DevOrFuncNumber", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CSystemSlots::kLayout("System Slots", "9", kFields);
