#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.40
constexpr Field kFields[] = {
    {0x04, "Power Unit Group", nullptr, Kind::kByte},
    {0x05, "Location", "Location", Kind::kString},
    {0x06, "Device Name", "DeviceName", Kind::kString},
    {0x07, "Manufacturer", "Manufacturer", Kind::kString},
    {0x08, "Serial Number", "SerialNumber", Kind::kString},
    {0x09, "Asset Tag Number", "AssetTagNumber", Kind::kString},
    {0x0A, "Model Part Number", "ModelPartNumber", Kind::kString},
    {0x0B, "Revision Level", "RevisionLevel", Kind::kString},
    {0x0C, "Max Power Capacity", "MaxPowerCapacity", Kind::kWord},
    {0x0E,
     "Power Supply Characteristics",
     "PowerSupplyCharacteristics",
     Kind::kWord,
     {.hex = true}},
    {0x10, "Input Voltage Probe Handle", "InputVoltageProbeHandle", Kind::kWord},
    {0x12, "Cooling Device Handle", "CoolingDeviceHandle", Kind::kWord},
    {0x14, "Input Current Probe Handle", "InputCurrentProbeHandle", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CSystemPowerSupply::kLayout("System Power Supply", "39",
                                                                 kFields);
