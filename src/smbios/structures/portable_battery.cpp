#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.23
constexpr Field kFields[] = {
    {"Location", "Location", Kind::kString},
    {"Manufacturer", "Manufacturer", Kind::kString},
    {"Manufacture Date", "ManufactureDate", Kind::kString},
    {"Serial Number", "SerialNumber", Kind::kString},
    {"Device Name", "DeviceName", Kind::kString},
    {"Device Chemistry", "DeviceChemistry", Kind::kByte},
    {"Design Capacity", "DesignCapacity", Kind::kWord},
    {"Design Voltage", "DesignVoltage", Kind::kWord},
    {"SBDS Version Number", "SBDS", Kind::kString},
    {"Maximum Error in Battery Data", nullptr, Kind::kByte},
    {"SBDS Serial Number", "SBDSSerialNumber", Kind::kWord},
    {"SBDS Manufacture Date", "SBDSManufactureDate", Kind::kWord},
    {"SBDS Device Chemistry", "SBDSDeviceChemistry", Kind::kString},
    {"Design Capacity Multiplier", "Number", Kind::kByte},
    {"OEM-specific", "ePPID", Kind::kDWord},
};

}  // namespace

constinit const mira::smbios::Layout CPortableBattery::kLayout("Portable Battery", "22", kFields);
