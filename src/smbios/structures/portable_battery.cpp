#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.23
constexpr Field kFields[] = {
    {0x04, "Location", "Location", Kind::kString},
    {0x05, "Manufacturer", "Manufacturer", Kind::kString},
    {0x06, "Manufacture Date", "ManufactureDate", Kind::kString},
    {0x07, "Serial Number", "SerialNumber", Kind::kString},
    {0x08, "Device Name", "DeviceName", Kind::kString},
    {0x09, "Device Chemistry", "DeviceChemistry", Kind::kByte},
    {0x0A, "Design Capacity", "DesignCapacity", Kind::kWord},
    {0x0C, "Design Voltage", "DesignVoltage", Kind::kWord},
    {0x0E, "SBDS Version Number", "SBDS", Kind::kString},
    {0x0F, "Maximum Error in Battery Data", nullptr, Kind::kByte},
    {0x10, "SBDS Serial Number", "SBDSSerialNumber", Kind::kWord},
    {0x12, "SBDS Manufacture Date", "SBDSManufactureDate", Kind::kWord},
    {0x14, "SBDS Device Chemistry", "SBDSDeviceChemistry", Kind::kString},
    {0x15, "Design Capacity Multiplier", "Number", Kind::kByte},
    {0x16, "OEM-specific", "ePPID", Kind::kDWord},
};

}  // namespace

constinit const mira::smbios::Layout CPortableBattery::kLayout("Portable Battery", "22", kFields);
