#include "sim/smbios_tables.h"

#include <array>

#include "sim/smbios_builder.h"
#include "sim/smbios_devices.h"

namespace mira::sim {
namespace {

constexpr std::array<std::uint8_t, 16> kUuid = {0xB7, 0x1E, 0x5C, 0x02, 0x9D, 0x44, 0x0A, 0x4F,
                                                0x91, 0x58, 0x3E, 0x7C, 0xD0, 0x21, 0x66, 0xA8};

void AddSystem(SmbiosTable& table, const Profile& p) {
  table.Add(Structure(0, 0x0000)
                .Str(p.manufacturer)
                .Str(p.bios_version)
                .Word(0xE000)
                .Str(p.bios_date)
                .Byte(0xFF)
                .QWord(0x000000003F8B9880)
                .Byte(0x03)
                .Byte(0x0D)
                .Byte(1)
                .Byte(8)
                .Byte(1)
                .Byte(4)
                .Word(0x0020));
  table.Add(Structure(1, 0x0100)
                .Str(p.manufacturer)
                .Str(p.product)
                .Str("")
                .Str(p.service_tag)
                .Bytes(kUuid)
                .Byte(6)
                .Str("0A3D")
                .Str("Meridian"));
  table.Add(Structure(2, 0x0200)
                .Str(p.manufacturer)
                .Str("0NF14M")
                .Str("A02")
                .Str("/" + p.service_tag + "/CN7KX2M/")
                .Str(p.asset_tag)
                .Byte(0x09)
                .Str("")
                .Word(0x0300)
                .Byte(10)
                .Byte(0));
  table.Add(Structure(3, 0x0300)
                .Str(p.manufacturer)
                .Byte(10)
                .Str("")
                .Str(p.service_tag)
                .Str(p.asset_tag)
                .Byte(3)
                .Byte(3)
                .Byte(3)
                .Byte(3)
                .DWord(0)
                .Byte(0)
                .Byte(1)
                .Byte(0)
                .Byte(0)
                .Str("0A3D"));
}

void AddProcessor(SmbiosTable& table) {
  constexpr std::uint16_t kCaches[3] = {0x0700, 0x0701, 0x0702};
  constexpr std::uint16_t kCoreI7 = 0x00C6;
  table.Add(Structure(4, 0x0400)
                .Str("U3E1")
                .Byte(3)
                .Byte(0xC6)
                .Str("Westmark Silicon")
                .QWord(0xBFEBFBFF000806C1)
                .Str("Westmark W7-1185 @ 3.00GHz")
                .Byte(0x89)
                .Word(100)
                .Word(4800)
                .Word(3000)
                .Byte(0x41)
                .Byte(1)
                .Word(kCaches[0])
                .Word(kCaches[1])
                .Word(kCaches[2])
                .Str("")
                .Str("")
                .Str("")
                .Byte(4)
                .Byte(4)
                .Byte(8)
                .Word(0x00FC)
                .Word(kCoreI7)
                .Word(4)
                .Word(4)
                .Word(8));
  struct Cache {
    const char* name;
    std::uint16_t configuration;
    std::uint16_t kilobytes;
    std::uint8_t type;
    std::uint8_t associativity;
  };
  constexpr Cache kRows[3] = {{"L1 Cache", 0x0180, 320, 5, 7},
                              {"L2 Cache", 0x0181, 5120, 5, 8},
                              {"L3 Cache", 0x0182, 12288, 5, 9}};
  for (unsigned i = 0; i < 3; ++i) {
    table.Add(Structure(7, kCaches[i])
                  .Str(kRows[i].name)
                  .Word(kRows[i].configuration)
                  .Word(kRows[i].kilobytes)
                  .Word(kRows[i].kilobytes)
                  .Word(0x0020)
                  .Word(0x0020)
                  .Byte(0)
                  .Byte(5)
                  .Byte(kRows[i].type)
                  .Byte(kRows[i].associativity));
  }
}

void AddPorts(SmbiosTable& table) {
  struct Port {
    const char* internal;
    const char* external;
    std::uint8_t external_type;
    std::uint8_t port_type;
  };
  constexpr Port kPorts[] = {{"JUSB1", "USB-C 1", 0x12, 0x10},
                             {"JUSB2", "USB-A 1", 0x12, 0x10},
                             {"JHDMI1", "HDMI 1", 0xFF, 0x1C},
                             {"JLAN1", "LAN", 0x0B, 0x1F}};
  std::uint16_t handle = 0x0800;
  for (const Port& port : kPorts) {
    table.Add(Structure(8, handle++)
                  .Str(port.internal)
                  .Byte(0)
                  .Str(port.external)
                  .Byte(port.external_type)
                  .Byte(port.port_type));
  }
  table.Add(Structure(9, 0x0900)
                .Str("M.2 PCIe SSD-0")
                .Byte(0x16)
                .Byte(0x0A)
                .Byte(4)
                .Byte(4)
                .Word(1)
                .Byte(0x04)
                .Byte(0x01)
                .Word(0)
                .Byte(1)
                .Byte(0));
  table.Add(Structure(10, 0x0A00)
                .Byte(0x83)
                .Str("Integrated Graphics")
                .Byte(0x87)
                .Str("Integrated Audio"));
  table.Add(Structure(11, 0x0B00)
                .Byte(4)
                .ExtraString("NF[1.2]")
                .ExtraString("3[1.0]")
                .ExtraString("4[0001]")
                .ExtraString("Meridian 14"));
  table.Add(Structure(13, 0x0D00)
                .Byte(2)
                .Byte(0)
                .Bytes(std::array<std::uint8_t, 15>{})
                .Byte(1)
                .ExtraString("en|US|iso8859-1")
                .ExtraString("fr|FR|iso8859-1"));
}

void AddCallingInterface(SmbiosTable& table, const Profile& p) {
  constexpr std::uint16_t kCommandPort = 0x00B2;
  constexpr std::uint8_t kCommandCode = 0x4D;
  Structure calling(218, 0xDA00);
  calling.Word(kCommandPort).Byte(kCommandCode).DWord(p.supported_classes);
  for (const Token& token : p.tokens) {
    calling.Word(token.id).Word(token.location).Word(token.value);
  }
  calling.Word(0xFFFF).Word(0).Word(0);
  table.Add(calling);
}

}  // namespace

std::vector<std::uint8_t> BuildFirmwareTable(const Profile& profile) {
  SmbiosTable table(profile.smbios_major, profile.smbios_minor);
  AddSystem(table, profile);
  AddProcessor(table);
  AddPorts(table);
  AddMemory(table);
  AddDevices(table, profile);
  if (profile.has_calling_interface) AddCallingInterface(table, profile);
  return table.Finish();
}

}  // namespace mira::sim
