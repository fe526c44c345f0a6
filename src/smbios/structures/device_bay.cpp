#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2); widths by the fields' meaning, as no machine with one was at
// hand
constexpr Field kFields[] = {
    {"Device Bay Type", "DeviceBayType", Kind::kByte},
    {"Location", "Location", Kind::kByte},
    {"Devices Supported", "DevicesSupported", Kind::kByte, {.hex = true}},
    {"Device Currently Attached", "DeviceCurrentlyAttached", Kind::kByte},
    {"Hardware Version Number", "HardwareVersionNumber", Kind::kString},
    {"Device Firmware Version", "DeviceFirmwareVersion", Kind::kString},
    {"Controller Firmware Version", "ControllerFirmwareVersion", Kind::kString},
};

}  // namespace

constinit const mira::smbios::Layout CDeviceBay::kLayout("Device Bay", "219", kFields);
