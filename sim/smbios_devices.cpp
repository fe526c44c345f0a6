#include "sim/smbios_devices.h"

#include <array>

namespace mira::sim {

void AddMemory(SmbiosTable& table) {
  constexpr std::uint16_t kArray = 0x1000;
  table.Add(Structure(16, kArray).Byte(3).Byte(3).Byte(3).DWord(0x04000000).Word(0xFFFE).Word(2));
  struct Module {
    const char* locator;
    const char* bank;
    const char* serial;
  };
  constexpr Module kModules[] = {{"DIMM A", "BANK 0", "8A3F1C02"},
                                 {"DIMM B", "BANK 1", "8A3F1C7E"}};
  std::uint16_t handle = 0x1100;
  for (const Module& module : kModules) {
    table.Add(Structure(17, handle++)
                  .Word(kArray)
                  .Word(0xFFFE)
                  .Word(64)
                  .Word(64)
                  .Word(8192)
                  .Byte(13)
                  .Byte(0)
                  .Str(module.locator)
                  .Str(module.bank)
                  .Byte(26)
                  .Word(0x0080)
                  .Word(3200)
                  .Str("Lodestar Memory")
                  .Str(module.serial)
                  .Str("04260311")
                  .Str("LM4S8G3200")
                  .Byte(1)
                  .DWord(0)
                  .Word(3200)
                  .Word(1200)
                  .Word(1200)
                  .Word(1200));
  }
  table.Add(
      Structure(19, 0x1300).DWord(0).DWord(0x00FFFFFF).Word(kArray).Byte(2).QWord(0).QWord(0));
}

void AddDevices(SmbiosTable& table, const Profile& p) {
  table.Add(Structure(21, 0x1500).Byte(7).Byte(4).Byte(2));
  table.Add(Structure(22, 0x1600)
                .Str("Sys. Battery Bay")
                .Str("Harbour Cells")
                .Str("")
                .Str("")
                .Str("HC 63Wh")
                .Byte(2)
                .Word(6300)
                .Word(7600)
                .Str("1.0")
                .Byte(1)
                .Word(0x0C21)
                .Word(0x5A2B)
                .Str("LiP")
                .Byte(10)
                .DWord(0));
  table.Add(Structure(24, 0x1800).Byte(0x91));
  table.Add(Structure(26, 0x1A00)
                .Str("CPU Core Voltage")
                .Byte(0x63)
                .Word(1500)
                .Word(500)
                .Word(1)
                .Word(0x8000)
                .Word(0x8000)
                .DWord(0)
                .Word(1050));
  table.Add(
      Structure(27, 0x1B00).Word(0x1C00).Byte(0x63).Byte(1).DWord(0xDD).Word(4200).Str("CPU Fan"));
  table.Add(Structure(28, 0x1C00)
                .Str("CPU Internal Temperature")
                .Byte(0x63)
                .Word(1000)
                .Word(0)
                .Word(10)
                .Word(0x8000)
                .Word(0x8000)
                .DWord(0xDC)
                .Word(450));
  table.Add(Structure(32, 0x2000).Bytes(std::array<std::uint8_t, 6>{}).Byte(0));
  table.Add(
      Structure(41, 0x2900).Str("Onboard Video").Byte(0x83).Byte(1).Word(0).Byte(0).Byte(0x10));
  table.Add(Structure(41, 0x2901).Str("Onboard LAN").Byte(0x85).Byte(1).Word(0).Byte(0).Byte(0xFE));
  table.Add(Structure(136, 0x8800).Byte(0).Byte(0));
  table.Add(Structure(177, 0xB100).Word(p.bios_flags0).Word(0x0010).Word(0).Word(0x8000));
  table.Add(Structure(178, 0xB200)
                .Word(0x0100)
                .Word(0x0013)
                .Word(0x0101)
                .Word(0x0014)
                .Word(0x0102)
                .Word(0x0009));
  table.Add(Structure(208, 0xD000)
                .Word(0x0100)
                .Byte(0xFE)
                .Byte(2)
                .Word(0x0A3D)
                .Str("03/20/2026")
                .Str("")
                .Byte(1)
                .Byte(7)
                .Word(0x0003));
}

}  // namespace mira::sim
