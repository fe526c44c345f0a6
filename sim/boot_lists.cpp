#include "sim/boot_lists.h"

#include <string_view>

#include "bytes/reader.h"
#include "bytes/writer.h"
#include "sim/device_path_builder.h"

namespace mira::sim {
namespace {

constexpr std::uint32_t kHidden = 0x8;
constexpr std::uint32_t kApplication = 0x100;

std::vector<std::uint8_t> Bytes(std::string_view text) {
  const auto span = bytes::AsBytes(text);
  return {span.begin(), span.end()};
}

// The device types of the BIOS boot specification.
constexpr std::uint16_t kFloppy = 1;
constexpr std::uint16_t kHardDisk = 2;
constexpr std::uint16_t kCdRom = 3;
constexpr std::uint16_t kUsb = 5;
constexpr std::uint16_t kNetwork = 6;
// Status flags: enabled, and media present or bootable.
constexpr std::uint16_t kEnabled = 0x0100;
constexpr std::uint16_t kEnabledWithMedia = 0x0900;

}  // namespace

std::vector<std::uint8_t> LegacyDevice(std::uint16_t device_type, std::uint16_t status_flags,
                                       const std::string& description) {
  constexpr std::uint8_t kBootSpecification = 5;
  std::vector<std::uint8_t> device = {kBootSpecification, 1};
  for (const std::uint16_t word : {device_type, status_flags}) {
    bytes::Append(device, word, sizeof(word));
  }
  device.insert(device.end(), description.begin(), description.end());
  device.push_back(0);
  return device;
}

std::vector<BootList> LaptopBootLists() {
  using namespace std::string_view_literals;
  constexpr std::array<std::uint8_t, 6> kMac = {0x02, 0x4E, 0x46, 0x00, 0x47, 0x11};
  constexpr char kSystemPartition[] = "66DE947B-FDB2-4525-B752-30D66BB2B960";
  const auto network = [&] { return DevicePath().PciRoot(0).Pci(0x1F, 6).Mac(kMac); };
  const std::vector<BootOption> uefi = {
      {0x0000, kOptionActive, u"Windows Boot Manager",
       DevicePath()
           .PciRoot(0)
           .Pci(0x1D, 0)
           .Pci(0, 0)
           .NvmeNamespace(1, 0x8CE38E0400AA1B2C)
           .GptPartition(1, kSystemPartition, 0x800, 0x100000)
           .File(u"\\EFI\\Microsoft\\Boot\\bootmgfw.efi")
           .Finish(),
       Bytes("WINDOWS\0\1\0\0\0\x88\0\0\0x"sv)},
      {0x0001, kOptionActive, u"Datenträger für Sicherung – резерв",
       DevicePath()
           .PciRoot(0)
           .Pci(0x1F, 2)
           .Sata(0, 0xFFFF, 0)
           .GptPartition(2, "C359E798-596A-42B6-B6F6-ECA290429D99", 0x2800, 0x35000)
           .File(u"\\EFI\\BOOT\\BOOTX64.EFI")
           .Finish()},
      {0x0003, kOptionActive, u"USB ディスク 💾",
       DevicePath().PciRoot(0).Pci(0x14, 0).Usb(3, 0).Usb(1, 0).Finish()},
      {0x0004, 0, u"Optical drive",
       DevicePath().PciRoot(0).Pci(0x1F, 2).Sata(1, 0xFFFF, 0).CdRom(1, 0x2D, 0x1680).Finish()},
      {0x0010, kOptionActive, u"Network IPv4", network().Ipv4Address({}, {}, 0, false).Finish()},
      {0x0011, kOptionActive, u"Network IPv6",
       network()
           .Ipv6Address({0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0x4E, 0x46, 0xFF, 0xFE, 0, 0x47, 0x11},
                        {0x20, 0x01, 0x0D, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, 17, 1, 64)
           .Finish()},
      {0x0012, kOptionActive, u"HTTP Boot",
       network()
           .Ipv4Address({192, 0, 2, 40}, {192, 0, 2, 1}, 6, true, {192, 0, 2, 254},
                        {255, 255, 255, 0})
           .Uri("http://boot.example/images/install.efi")
           .Finish()},
      {0x0080, kHidden | kApplication | kOptionActive, u"Diagnostics",
       DevicePath()
           .FirmwareVolume("64074AFE-340A-4BE6-94BA-91B5B4D0F71E")
           .FirmwareFile("A7D8D9A6-6AB0-4AEB-AD9D-163E59A7A380")
           .Finish()},
      {0x0081, kHidden | kApplication, u"Recovery image",
       DevicePath()
           .VendorHardware("1428F772-B64A-441E-B8C3-9EBDD7F893C7", Bytes("\x02\x00"sv))
           .VendorMessaging("BC7838D2-0F82-4D60-8316-C068EE79D25B")
           .VendorMedia("5023B95C-DB26-429B-A648-BD47664C8012", Bytes("NF"sv))
           .NextInstance()
           .PciRoot(0)
           .Pci(0x14, 0)
           .Usb(4, 0)
           .Finish(),
       Bytes("\x01\x00\x00\x00\xFE\xFF"sv)},
  };
  const std::vector<BootOption> legacy = {
      {0x0000, kOptionActive, u"Internal disk",
       LegacyDevice(kHardDisk, kEnabledWithMedia, "M.2 PCIe SSD-0")},
      {0x0001, kOptionActive, u"USB storage", LegacyDevice(kUsb, kEnabled, "USB storage device")},
      {0x0002, 0, u"CD/DVD", LegacyDevice(kCdRom, kEnabled, "SATA-1")},
      {0x0003, kOptionActive, u"Onboard NIC",
       LegacyDevice(kNetwork, kEnabled, "Network adapter, slot 1F.6")},
  };
  return {
      {0, u"Legacy Boot", legacy, {0x0001, 0x0000, 0x0002, 0x0003}},
      {1,
       u"UEFI Boot",
       uefi,
       {0x0003, 0x0000, 0x0001, 0x0004, 0x0010, 0x0011, 0x0012, 0x0080, 0x0081}},
  };
}

LegacyBoot LaptopLegacyBoot() {
  return {.devices = {{kFloppy, 0, 0xF000E000, 0xF000E100},
                      {kHardDisk, kEnabledWithMedia, 0xF000E010, 0xF000E110},
                      {kCdRom, kEnabled, 0xF000E020, 0xF000E120},
                      {kNetwork, kEnabled, 0xC8000003, 0xC8000040, 0x00001F06}},
          .ipl_priority = {1, 0, 2, 3},
          .bcv_priority = {1, 2, 0, 3}};
}

std::vector<DataBlock> LaptopDataBlocks() {
  return {{2, "LOGO", Bytes("Northfield"), 64}, {6, "NOTE", Bytes("Rack 7, shelf 2"), 32}};
}

}  // namespace mira::sim
