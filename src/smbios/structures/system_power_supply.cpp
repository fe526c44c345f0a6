#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.40
constexpr Field kFields[] = {
    {"Power Unit Group", nullptr, Kind::kByte},
    {"Location", "Location", Kind::kString},
    {"Device Name", "DeviceName", Kind::kString},
    {"Manufacturer", "Manufacturer", Kind::kString},
    {"Serial Number", "SerialNumber", Kind::kString},
    {"Asset Tag Number", "AssetTagNumber", Kind::kString},
    {"Model Part Number", "ModelPartNumber", Kind::kString},
    {"Revision Level", "RevisionLevel", Kind::kString},
    {"Max Power Capacity", "MaxPowerCapacity", Kind::kWord},
    {"Power Supply Characteristics", "PowerSupplyCharacteristics", Kind::kWord, {.hex = true}},
    {"Input Voltage Probe Handle", "InputVoltageProbeHandle", Kind::kWord},
    {"Cooling Device Handle", "CoolingDeviceHandle", Kind::kWord},
    {"Input Current Probe Handle", "InputCurrentProbeHandle", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CSystemPowerSupply::kLayout("System Power Supply", "39",
                                                                 kFields);
