#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2); widths by the fields' meaning, as no machine with one was at
// hand
constexpr Field kFields[] = {
    {0x04, "Device Bay Type", "DeviceBayType", Kind::kByte},
    {0x05, "Location", "Location", Kind::kByte},
    {0x06, "Devices Supported", "DevicesSupported", Kind::kByte, {.hex = true}},
    {0x07, "Device Currently Attached", "DeviceCurrentlyAttached", Kind::kByte},
    {0x08, "Hardware Version Number", "HardwareVersionNumber", Kind::kString},
    {0x09, "Device Firmware Version", "DeviceFirmwareVersion", Kind::kString},
    {0x0A, "Controller Firmware Version", "ControllerFirmwareVersion", Kind::kString},
};

}  // namespace

constinit const mira::smbios::Layout CDeviceBay::kLayout("Device Bay", "219", kFields);
