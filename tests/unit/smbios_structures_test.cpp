// What each structure class publishes and shows: keys, order, spelling, widths, units.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <list>
#include <memory>
#include <numeric>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "sim/smbios_builder.h"
#include "smbios/structure_copy.h"
#include "smbios/structure_factory.h"
#include "smbios/structures/structures.h"
#include "smbios/table.h"

namespace mira::smbios {
namespace {

using sim::Structure;
using Pairs = std::list<std::pair<std::string, std::string>>;
using Object = std::unique_ptr<CBIOSObject, CBIOSObject::Deleter>;

// The object that the registry makes of a structure.
Object Make(const Structure& structure) {
  std::vector<std::uint8_t> bytes = structure.Build();
  bytes.pop_back();  // the copy ends with the NUL of the last string
  CComPtr<IWbemServices> none;
  return Object(MakeObject(std::unique_ptr<unsigned char[]>(CopyStructure(bytes)), none));
}

std::string Dump(const CBIOSObject& object) {
  std::ostringstream out;
  object.Display(out);
  return out.str();
}

std::string Dashes(std::size_t count) { return std::string(count, '-'); }

std::string Banner(const std::string& title) {
  return Dashes(36) + " " + title + " " + Dashes(36) + "\n";
}

TEST(Structures, PublishTheirKeysInOrder) {
  struct Case {
    Structure structure;
    Pairs pairs;
  };
  const Case cases[] = {
      {Structure(0, 1)
           .Str("V")
           .Str("1")
           .Word(0xE000)
           .Str("D")
           .Byte(1)
           .QWord(0)
           .Word(0)
           .Byte(2)
           .Byte(15)
           .Word(0),
       {{"Vendor", "V"}, {"BIOSVersion", "1"}, {"BIOSReleaseDate", "D"}, {"BIOSRelease", "2.15"}}},
      {Structure(2, 1).Str("M").Str("P").Str("V").Str("S").Str("A"),
       {{"Manufacturer", "M"},
        {"Product", "P"},
        {"Version", "V"},
        {"SerialNumber", "S"},
        {"AssetTag", "A"}}},
      {Structure(3, 1).Str("M").Byte(0x8A).Str("V").Str("S").Str("A"),
       {{"Manufacturer", "M"},
        {"ChassisType", "138"},
        {"Version", "V"},
        {"AssetTagNumber", "A"},
        {"SerialNumber", "S"}}},
      {Structure(7, 1)
           .Str("L1")
           .Word(0x180)
           .Word(64)
           .Word(32)
           .Word(2)
           .Word(4)
           .Byte(9)
           .Byte(5)
           .Byte(3)
           .Byte(7),
       {{"SocketDesignation", "L1"},
        {"MaxCacheSize", "64"},
        {"CacheSpeed", "9"},
        {"SystemCacheType", "3"},
        {"InstalledSize", "32"}}},
      {Structure(8, 1).Str("J1").Byte(1).Str("USB").Byte(18).Byte(16),
       {{"IntRefDesignator", "J1"},
        {"IntConnectorType", "1"},
        {"ExtRefDesignator", "USB"},
        {"ExtConnectorType", "18"},
        {"PortType", "16"}}},
      {Structure(9, 1)
           .Str("S1")
           .Byte(1)
           .Byte(2)
           .Byte(3)
           .Byte(4)
           .Word(0x105)
           .Byte(0x16)
           .Byte(7)
           .Word(0x108)
           .Byte(9)
           .Byte(10),
       {{"SlotDesignation", "S1"},
        {"SlotType", "1"},
        {"SlotDataBusWidth", "2"},
        {"CurrentUsage", "3"},
        {"SlotLength", "4"},
        {"SlotID", "261"},
        {"SlotCharacteristics1", "22"},
        {"SlotCharacteristics2", "7"},
        {"SegmentGroupNumber", "264"},
        {"BusNumber", "9"},
        {"DevOrFuncNumber", "10"}}},
      {Structure(10, 1).Byte(0x83).Str("Video").Byte(5).Str("LAN"),
       {{"Type", "131"}, {"Description", "Video"}, {"Type", "5"}, {"Description", "LAN"}}},
      {Structure(10, 1), {}},
      {Structure(11, 1).Byte(3).ExtraString("a").ExtraString("b"),
       {{"String", "a"}, {"String", "b"}, {"String", ""}}},
      {Structure(12, 1).Byte(1).ExtraString("x"), {}},
      {Structure(13, 1).Byte(1).Byte(0).Bytes(std::vector<std::uint8_t>(15)).Str("en"),
       {{"CurrentLang", "en"}}},
      {Structure(14, 1).Str("G").Byte(1).Word(2), {{"GroupName", "G"}}},
      {Structure(15, 1).Word(1), {}},
      {Structure(16, 1).Byte(3).Byte(4).Byte(5).DWord(0x10000).Word(0xFFFE).Word(2),
       {{"Location", "3"},
        {"MemoryCapacity", "65536"},
        {"NumMemDevices", "2"},
        {"Use", "4"},
        {"MemErrCorrection", "5"}}},
      {Structure(19, 1).DWord(1).DWord(2).Word(3).Byte(4), {}},
      {Structure(20, 1).DWord(1), {}},
      {Structure(21, 1).Byte(7).Byte(4).Byte(2),
       {{"DeviceType", "7"}, {"Interface", "4"}, {"NumOfButtons", "2"}}},
      {Structure(22, 1)
           .Str("L")
           .Str("M")
           .Str("D")
           .Str("S")
           .Str("N")
           .Byte(2)
           .Word(600)
           .Word(700)
           .Str("1.0")
           .Byte(1)
           .Word(0xC21)
           .Word(0x5A2B)
           .Str("LiP")
           .Byte(10)
           .DWord(0x12345),
       {{"Location", "L"},
        {"Manufacturer", "M"},
        {"ManufactureDate", "D"},
        {"SerialNumber", "S"},
        {"DeviceName", "N"},
        {"DeviceChemistry", "2"},
        {"DesignCapacity", "600"},
        {"DesignVoltage", "700"},
        {"SBDS", "1.0"},
        {"SBDSSerialNumber", "3105"},
        {"SBDSManufactureDate", "23083"},
        {"SBDSDeviceChemistry", "LiP"},
        {"Number", "10"},
        {"ePPID", "74565"}}},
      {Structure(23, 1).Byte(0x21).Word(1).Word(2).Word(3).Word(0xFFFF),
       {{"Capabilities", "33"},
        {"ResetCount", "1"},
        {"ResetLimit", "2"},
        {"TimerInterval", "3"},
        {"Timeout", "65535"}}},
      {Structure(24, 1).Byte(0x91), {{"HardwareSecuritySettings", "145"}}},
      {Structure(25, 1).Byte(1).Byte(2).Byte(3).Byte(4).Byte(5), {}},
      {Structure(26, 1).Str("V").Byte(0x63).Word(5).Word(1).Word(2).Word(3).Word(4).DWord(6).Word(
           7),
       {{"Description", "V"},
        {"Location&Status", "99"},
        {"MaxValue", "5"},
        {"MinValue", "1"},
        {"Resolution", "2"},
        {"Tolerance", "3"},
        {"Accuracy", "4"},
        {"OEMDefined", "6"}}},
      {Structure(27, 1).Word(9).Byte(0x63).Byte(1).DWord(0xDD).Word(4200).Str("Fan"),
       {{"DeviceType&Status", "99"},
        {"CoolingUnitGroup", "1"},
        {"NominalSpeed", "4200"},
        {"Description", "Fan"},
        {"OEMSpecific", "221"}}},
      {Structure(32, 1).Bytes(std::vector<std::uint8_t>(6)).Byte(0), {}},
      {Structure(34, 1).Str("D").Byte(4).DWord(0x100000).Byte(3),
       {{"Description", "D"}, {"Type", "4"}, {"Address", "1048576"}, {"Type", "3"}}},
      {Structure(35, 1).Str("D").Word(1).Word(2).Word(3),
       {{"Description", "D"},
        {"DeviceHandle", "1"},
        {"ComponentHandle", "2"},
        {"ThresholdHanlde", "3"}}},
      {Structure(36, 1).Word(1).Word(2).Word(3).Word(4).Word(5).Word(6),
       {{"NonCritLowThreshold", "1"},
        {"NonCritUppThreshold", "2"},
        {"CritLowThreshold", "3"},
        {"CritUppThreshold", "4"},
        {"NonRecoverableLowThreshold", "5"},
        {"NonRecoverableUppThreshold", "6"}}},
      {Structure(39, 1)
           .Byte(1)
           .Str("L")
           .Str("N")
           .Str("M")
           .Str("S")
           .Str("A")
           .Str("P")
           .Str("R")
           .Word(90)
           .Word(0x10)
           .Word(1)
           .Word(2)
           .Word(3),
       {{"Location", "L"},
        {"DeviceName", "N"},
        {"Manufacturer", "M"},
        {"SerialNumber", "S"},
        {"AssetTagNumber", "A"},
        {"ModelPartNumber", "P"},
        {"RevisionLevel", "R"},
        {"MaxPowerCapacity", "90"},
        {"PowerSupplyCharacteristics", "16"},
        {"InputVoltageProbeHandle", "1"},
        {"CoolingDeviceHandle", "2"},
        {"InputCurrentProbeHandle", "3"}}},
      {Structure(41, 1).Str("Video").Byte(0x83).Byte(1).Word(0).Byte(2).Byte(0x10),
       {{"ReferenceDesignation", "Video"},
        {"DeviceType", "131"},
        {"DeviceTypeInstance", "1"},
        {"SegmentGroupNumber", "0"},
        {"BusNumber", "2"},
        {"DeviceOrFunctionNumber", "16"}}},
      {Structure(129, 1).Str("D").Str("V").Byte(1).Byte(0xF0),
       {{"Description", "D"}, {"Version", "V"}, {"SystemID", "1"}, {"Attributes", "240"}}},
      {Structure(130, 1)
           .DWord(0x544D4124)
           .Byte(1)
           .Byte(0)
           .Byte(1)
           .Byte(1)
           .Byte(1)
           .Bytes(std::vector<std::uint8_t>{0, 0xA5, 0x14, 2, 0, 0, 0}),
       {{"AMTSignature", "$AMT"},
        {"AMTSupported", "1"},
        {"AMTEnabled", "0"},
        {"IDERedirectionEnabled", "1"},
        {"SOLEnabled", "1"},
        {"NetworkEnabled", "1"},
        {"ExtendedData", "0 a5 14 2 0 0 0"}}},
      {Structure(131, 1)
           .DWord(1)
           .QWord(0x0004000300020001)
           .QWord(2)
           .DWord(3)
           .DWord(4)
           .DWord(5)
           .DWord(6)
           .DWord(7)
           .DWord(8)
           .DWord(9)
           .DWord(10)
           .DWord(0x6F725076)
           .DWord(0),
       {{"CPUCapability", "1"},
        {"IntelMEBXVersion", "1.2.3.4"},
        {"PCHCapability", "2"},
        {"IntelManagementEngineCapability1", "3"},
        {"IntelManagementEngineCapability2", "4"},
        {"IntelManagementEngineCapability3", "5"},
        {"IntelManagementEnginePlatformConfigurationState", "6"},
        {"NetworkDeviceLAN1", "7"},
        {"NetworkDeviceLAN2", "8"},
        {"NetworkDeviceLAN3", "9"},
        {"BIOSSecurityCapabilities", "10"},
        {"StructureIdentifier", "vPro"}}},
      {Structure(136, 1).Byte(9).Byte(0), {{"OEMInfo", "9"}, {"Zero", "0"}}},
      {Structure(176, 1).Word(0x200), {{"VideoProcDieTemp", "512"}}},
      {Structure(177, 1).Word(3).Word(16).Word(0).Word(0x8000),
       {{"Flags0", "3"}, {"Flags1", "16"}, {"Flags2", "0"}, {"Flags3", "32768"}}},
      {Structure(178, 1).Word(1).Word(2).Word(3).Word(4).Word(5),
       {{"Key", "1"}, {"Code", "2"}, {"ey", "3"}, {"ode", "4"}}},
      {Structure(178, 1).QWord(0).QWord(0).DWord(0x00060005),
       {{"Key", "0"},
        {"Code", "0"},
        {"ey", "0"},
        {"ode", "0"},
        {"y", "0"},
        {"de", "0"},
        {"", "0"},
        {"e", "0"},
        {"", "5"},
        {"", "6"}}},
      {Structure(208, 1)
           .Word(0x100)
           .Byte(2)
           .Byte(3)
           .Word(0xA3D)
           .Str("D")
           .Str("O")
           .Byte(5)
           .Byte(6)
           .Word(7),
       {{"Revision", "256"},
        {"SystemId", "2"},
        {"HardwareRevision", "3"},
        {"ExtendedSystemId", "2621"},
        {"ManufactureDate", "D"},
        {"OwnershipDate", "O"},
        {"SystemRevision", "5"},
        {"SystemFamily", "6"},
        {"SystemProperties", "7"}}},
      {Structure(209, 1).Word(0x378).Byte(7).Byte(1).Byte(2).Word(3).Byte(4),
       {{"BaseIOAddress", "888"},
        {"IRQ", "7"},
        {"ConnectorType", "1"},
        {"ConnectorPinOut", "2"},
        {"Capabilities", "3"},
        {"SecuritySettings", "4"}}},
      {Structure(210, 1).Word(0x3F8).Byte(4).Byte(1).Word(2).Byte(3).Byte(5),
       {{"BaseIOAddress", "1016"},
        {"IRQ", "4"},
        {"ConnectorType", "1"},
        {"Capabilities", "2"},
        {"MaxSpeed", "3"},
        {"SecuritySettings", "5"}}},
      {Structure(213, 1).QWord(0), {}},
      {Structure(214, 1).QWord(0), {}},
      {Structure(216, 1).Str("M").Str("V").Byte(1).Word(0x102),
       {{"Manufacturer", "M"}, {"Version", "V"}, {"ShadowState", "1"}, {"Characteristics", "258"}}},
      {Structure(217, 1).Byte(1).Byte(2).Byte(3).Byte(4),
       {{"Layout", "1"}, {"Type", "2"}, {"ConnectorType", "3"}, {"SecuritySettings", "4"}}},
      {Structure(219, 1).Byte(1).Byte(2).Byte(3).Byte(4).Str("H").Str("D").Str("C"),
       {{"DeviceBayType", "1"},
        {"Location", "2"},
        {"DevicesSupported", "3"},
        {"DeviceCurrentlyAttached", "4"},
        {"HardwareVersionNumber", "H"},
        {"DeviceFirmwareVersion", "D"},
        {"ControllerFirmwareVersion", "C"}}},
      {Structure(220, 1).Word(1).Word(2).Word(3).Word(4).Word(5).Word(6).Word(7).Word(8).Word(0),
       {{"PresentReadingToken", "1"},
        {"ReferenceReadingToken", "2"},
        {"PresentStatusToken", "3"},
        {"UppNonCritThresholdToken", "4"},
        {"LowNonCritThresholdToken", "5"},
        {"UppCritThresholdToken", "6"},
        {"LowCritThresholdToken", "7"},
        {"ReEnableAlertsToken", "8"}}},
      {Structure(221, 1).Byte(1).Word(2).Word(3).Word(4).Word(5).Word(6).Word(7).Word(8),
       {{"FanControlFlags", "1"},
        {"ConversionFactor", "2"},
        {"PresentSpeedToken", "3"},
        {"PresentStatusToken", "4"},
        {"UppNonCritThresholdToken", "5"},
        {"LowNonCritThresholdToken", "6"},
        {"UppCritThresholdToken", "7"},
        {"LowCritThresholdToken", "8"}}},
      {Structure(222, 1)
           .Word(1)
           .Word(2)
           .Bytes(std::vector<std::uint8_t>{0x26, 3, 0x14, 0x23, 0x59})
           .Byte(4)
           .Word(5),
       {{"MinSize", "1"},
        {"CompletionCode", "2"},
        {"LastUpdate", "26/03/14 23:59"},
        {"CurrentBootFeatureFlags", "4"},
        {"Characteristics", "5"}}},
      {Structure(5, 1).Byte(1), {}},
  };
  for (const Case& c : cases) {
    const Object object = Make(c.structure);
    SCOPED_TRACE(static_cast<int>(object->getType()));
    AttributeMap attributes = {{1, {{"stale", "pair"}}}};
    object->GetAttributes(attributes);
    EXPECT_EQ(attributes, (AttributeMap{{1, c.pairs}}));
  }
}

Structure MemoryDevice(std::uint16_t size, std::uint8_t form, std::uint8_t type,
                       std::uint32_t extended) {
  return Structure(17, 0x1100)
      .Word(0x1000)
      .Word(0xFFFE)
      .Word(72)
      .Word(64)
      .Word(size)
      .Byte(form)
      .Byte(1)
      .Str("DIMM A")
      .Str("BANK 0")
      .Byte(type)
      .Word(0x4080)
      .Word(2400)
      .Str("M")
      .Str("S")
      .Str("T")
      .Str("P")
      .Byte(0x1F)
      .DWord(extended)
      .Word(2133);
}

TEST(MemoryDevice, ShowsItsSizeInOneOfTwoPlaces) {
  const std::string head = Banner("Memory Device : Type 17") +
                           "Type : 11\nLength : 22\nHandle : 1100\n"
                           "Memeory Array Handle : 4096\n"
                           "Memeory Error Information Handle : 65534\n"
                           "Total Width : 72\nData Width : 64\n";
  const std::string middle =
      "Form Factor : Row if Chips\nDevice Set : 1\nDevice Locator : DIMM A\n"
      "Bank Locator : BANK 0\nMemory Type : FALSH\nType Detail : 4080\nSpeed : 2400MHz\n"
      "Manufacturer ID : M\nDIMM Serial Number : S\nAsset Tag : T\nPart Number : P\n"
      "Attributes : 1f\n";
  const std::string tail = "Configured Memory Clock Speed : 2133MHz\n" + Dashes(97) + "\n";
  EXPECT_EQ(Dump(*Make(MemoryDevice(0x8200, 11, 9, 7))), head + "Size : 512KB\n" + middle + tail);
  EXPECT_EQ(Dump(*Make(MemoryDevice(0x7FFF, 11, 9, 0x80008000))),
            head + middle + "Size : 2147516416MB\n" + tail);

  const Pairs expected = {
      {"TotalWidth", "72"},   {"DataWidth", "64"},       {"Size", "32768 MB"},
      {"FormFactor", "DIMM"}, {"BankLocator", "BANK 0"}, {"MemoryType", "DDR4"},
      {"Speed", "2400MHz"},   {"ManufacturerID", "M"},   {"DIMMSerialNumber", "S"},
      {"AssetTag", "T"},      {"PartNumber", "P"},       {"DeviceLocator", "DIMM A"},
      {"ClockSpeed", "2133"}};
  EXPECT_EQ(Make(MemoryDevice(0x7FFF, 9, 26, 32768))->OwnAttributes(), expected);
}

TEST(MemoryDevice, NamesWhatItKnows) {
  const std::vector<std::string> forms = {
      "Unknown",          "Other", "Unknown", "SIMM",         "SIP",  "Chip",   "DIP",   "ZIP",
      "Proprietary Card", "DIMM",  "TSOP",    "Row if Chips", "RIMM", "SODIMM", "SRIMM", "FB-DIMM",
      "Unknown"};
  const std::vector<std::string> types = {
      "Unknown", "Other", "Unknown", "DRAM",   "EDRAMr",       "VRAM",   "SRAM",   "RAM",
      "ROM",     "FALSH", "EEPROM",  "FEPROM", "EPROM",        "CDRAM",  "3DRAM",  "SDRAM",
      "SGRAM",   "RDRAM", "DDR",     "DDR2",   "DDR2 FB-DIMM", "",       "",       "",
      "DDR3",    "FBD2",  "DDR4",    "LPDDR",  "LPDDR2",       "LPDDR3", "LPDDR4", "Unknown"};
  const auto value = [](const Object& object, const std::string& key) {
    for (const auto& [k, v] : object->OwnAttributes()) {
      if (k == key) return v;
    }
    return std::string("(missing)");
  };
  for (std::size_t i = 0; i < types.size(); ++i) {
    const auto code = static_cast<std::uint8_t>(i);
    const Object object = Make(MemoryDevice(1, code, code, 0));
    EXPECT_EQ(value(object, "MemoryType"), types[i]) << i;
    EXPECT_EQ(value(object, "FormFactor"), i < forms.size() ? forms[i] : "Unknown") << i;
  }
  EXPECT_EQ(value(Make(MemoryDevice(1, 255, 255, 0)), "MemoryType"), "Unknown");
}

Structure Processor(std::uint8_t family, std::uint16_t family2, std::uint16_t characteristics) {
  return Structure(4, 1)
      .Str("U1")
      .Byte(3)
      .Byte(family)
      .Str("M")
      .QWord(0x8000000000000001)
      .Str("V")
      .Byte(137)
      .Word(100)
      .Word(2600)
      .Word(2450)
      .Byte(65)
      .Byte(1)
      .Word(7)
      .Word(8)
      .Word(9)
      .Str("S")
      .Str("A")
      .Str("P")
      .Byte(4)
      .Byte(3)
      .Byte(8)
      .Word(characteristics)
      .Word(family2);
}

TEST(Processor, NamesItsFamilyByTheSecondField) {
  const Pairs expected = {{"SocketDesignation", "U1"},
                          {"ProcessorFamily", "254"},
                          {"ProcessorType", "Intel(R) Core(TM) i7 processor"},
                          {"Manufacturer", "M"},
                          {"ProcessorId", "9223372036854775809"},
                          {"ProcessorVersion", "V"},
                          {"ExternalClock", "100MHz"},
                          {"MaximumClockSpeed", "2.6GHz"},
                          {"CurrentClockSpeed", "2.45GHz"},
                          {"SerialNumber", "S"},
                          {"AssetTag", "A"},
                          {"PartNumber", "P"},
                          {"Status", "65"},
                          {"CoreCount", "4"},
                          {"64BitTechnology", "Yes(Intel EM64T)"},
                          {"HTCapable", "No"},
                          {"ProcessorL1Cache", "7"},
                          {"ProcessorL2Cache", "8"},
                          {"ProcessorL3Cache", "9"},
                          {"ProcessorUpgrade", "1"}};
  EXPECT_EQ(Make(Processor(254, 198, 0x04))->OwnAttributes(), expected);

  Pairs unknown = expected;
  unknown.remove({"ProcessorType", "Intel(R) Core(TM) i7 processor"});
  for (auto& [key, value] : unknown) {
    if (key == "64BitTechnology") value = "No";
    if (key == "HTCapable") value = "Yes";
  }
  EXPECT_EQ(Make(Processor(254, 600, 0x10))->OwnAttributes(), unknown);

  const std::string dump = Dump(*Make(Processor(1, 0, 0xFC)));
  EXPECT_EQ(dump, Banner("Processor Information : Type 4") +
                      "Type : 4\nLength : 2a\nHandle : 1\nSocket Designation : U1\n"
                      "Processor Type : 3\nDidn't get Proc Family\nProcessor Manufacturer : M\n"
                      "Processor Id : 9223372036854775809\nProcessor Version : V\nVoltage : 137\n"
                      "External Clock : 100MHz\nMax Speed : 2.6GHz\nCurrent Speed : 2.45GHz\n"
                      "Status : 65\nProcessor Upgrade : 1\nL1 Cache Handle : 7\n"
                      "L2 Cache Handle : 8\nL3 Cache Handle : 9\nSerial Number : S\n"
                      "Asset Tag : A\nPart Number : P\nCore Count : 4\nCore Enabled : 3\n"
                      "Thread Count : 8\nProcessor Characteristics : 252\n" +
                      Dashes(104) + "\n");
  EXPECT_NE(Dump(*Make(Processor(1, 500, 0))).find("Processor Family : Video Processor\n"),
            std::string::npos);
}

TEST(SystemInformation, GrowsWithItsLength) {
  struct Case {
    std::uint8_t length;
    Pairs pairs;
  };
  const Structure whole = Structure(1, 1)
                              .Str("M")
                              .Str("P")
                              .Str("V")
                              .Str("S")
                              .Bytes(std::vector<std::uint8_t>{0x0A, 5, 0xFF, 0, 1, 2, 3, 4, 5, 6,
                                                               7, 8, 9, 0x10, 0xAB, 0x0C})
                              .Byte(6)
                              .Str("K")
                              .Str("F");
  const Pairs early = {{"Manufacturer", "M"},          {"ProductName", "P"}, {"Version", "V"},
                       {"SerialNumber", "S"},          {"SKUNumber", ""},    {"Family", ""},
                       {"UUID", std::string(16, '0')}, {"WakeUpType", "0"}};
  const Pairs full = {{"Manufacturer", "M"},           {"ProductName", "P"}, {"Version", "V"},
                      {"SerialNumber", "S"},           {"SKUNumber", "K"},   {"Family", "F"},
                      {"UUID", "A5FF012345678910ABC"}, {"WakeUpType", "6"}};
  EXPECT_EQ(Make(whole)->OwnAttributes(), full);
  EXPECT_EQ(Make(Structure(1, 1).Str("M").Str("P").Str("V").Str("S"))->OwnAttributes(), early);
  // 25 bytes: the UUID and the wake-up type are there, SKU number and family are not.
  Pairs middle = full;
  for (auto& [key, value] : middle) {
    if (key == "SKUNumber" || key == "Family") value = "";
  }
  EXPECT_EQ(Make(Structure(1, 1)
                     .Str("M")
                     .Str("P")
                     .Str("V")
                     .Str("S")
                     .Bytes(std::vector<std::uint8_t>{0x0A, 5, 0xFF, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9,
                                                      0x10, 0xAB, 0x0C})
                     .Byte(6))
                ->OwnAttributes(),
            middle);
}

TEST(CoolingDevice, HasADescriptionFromLength13On) {
  const auto description = [](const Structure& structure) {
    return std::next(Make(structure)->OwnAttributes().begin(), 3)->second;
  };
  const auto device = [] { return Structure(27, 1).Word(9).Byte(0x63).Byte(1).DWord(0); };
  EXPECT_EQ(description(device().ExtraString("\x01\x01\x01")), "") << "length 12";
  EXPECT_EQ(description(device().Word(1).Str("Fan")), "Fan");
  EXPECT_EQ(description(device().Word(1).ExtraString("\x01x")), "\x01x")
      << "length 14: the first byte of the string set is taken for the number";
}

TEST(BiosFlags, GivesItsWords) {
  const Object object = Make(Structure(177, 1).Word(1).Word(2).Word(3).Word(4));
  const auto* const flags = dynamic_cast<const CBIOSFlags*>(object.get());
  ASSERT_NE(flags, nullptr);
  EXPECT_EQ(flags->GetFlags(0), 1);
  EXPECT_EQ(flags->GetFlags(3), 4);
  EXPECT_EQ(flags->GetFlags(4), 0);
}

TEST(Chain, IsShownPublishedAndDestroyedWithoutRecursion) {
  constexpr int kCount = 20000;
  sim::SmbiosTable table(3, 2);
  for (int i = 0; i < kCount; ++i) {
    table.Add(Structure(21, static_cast<std::uint16_t>(i)).Byte(7).Byte(4).Byte(2));
  }
  std::string dump;
  {
    StructureTable structures;
    ASSERT_TRUE(structures.Parse(table.Finish()));
    CBIOSObject* const head = structures.Objects().at(21);
    dump = Dump(*head);
    AttributeMap attributes;
    head->GetAttributes(attributes);
    EXPECT_EQ(attributes.size(), static_cast<std::size_t>(kCount));
    EXPECT_EQ(attributes[19999].size(), 3u);
  }
  EXPECT_EQ(std::count(dump.begin(), dump.end(), '\n'), kCount * 8);
}

TEST(Chain, IsSharedByCopies) {
  CBIOSObject* const head = Make(Structure(5, 1)).release();
  head->Append(Make(Structure(5, 2)).release());
  head->Append(Make(Structure(5, 3)).release());
  {
    struct Copied : CBIOSObject {
      using CBIOSObject::CBIOSObject;
      explicit Copied(const CBIOSObject& other) : CBIOSObject(other) {}
    };
    const Copied copy(*head);
    EXPECT_EQ(copy.getHandle(), 1);
    EXPECT_EQ(copy.getNextObj(), head->getNextObj());
    CBIOSObject::Deleter{}(head);
    ASSERT_NE(copy.getNextObj(), nullptr);
    EXPECT_EQ(copy.getNextObj()->getNextObj()->getHandle(), 3) << "the copy keeps the chain";
  }
}

TEST(Structures, SurviveAnyLengthAndAnyBytes) {
  for (unsigned type = 0; type < 256; ++type) {
    for (unsigned length = 4; length < 256; length += 7) {
      for (const std::uint8_t fill : {std::uint8_t{0}, std::uint8_t{1}, std::uint8_t{0xFF}}) {
        std::vector<std::uint8_t> bytes(length, fill);
        bytes[0] = static_cast<std::uint8_t>(type);
        bytes[1] = static_cast<std::uint8_t>(length);
        bytes.push_back(0);
        CComPtr<IWbemServices> none;
        const Object object(
            MakeObject(std::unique_ptr<unsigned char[]>(CopyStructure(bytes)), none));
        std::ostringstream out;
        object->Display(out);
        AttributeMap attributes;
        object->GetAttributes(attributes);
        EXPECT_EQ(attributes.size(), 1u);
      }
    }
  }
}

TEST(Structures, HaveTheClassOfTheirType) {
  EXPECT_STREQ(ClassName(0), "CBIOSInfo");
  EXPECT_STREQ(ClassName(10), "COnBoardDevices");
  EXPECT_STREQ(ClassName(136), "CEFI_MISC_OEM");
  EXPECT_STREQ(ClassName(218), "CCallingInterface");
  EXPECT_STREQ(ClassName(222), "CRemoteBIOSUpdate");
  int plain = 0;
  for (unsigned type = 0; type < 256; ++type) {
    if (std::string(ClassName(static_cast<unsigned char>(type))) == "CBIOSObject") ++plain;
  }
  EXPECT_EQ(plain, 256 - 52);
}

}  // namespace
}  // namespace mira::smbios
