// Device paths: every node type read into its record, written as text and read back; paths that are
// cut, damaged or unknown; load options of real machines.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "bytes/utf16.h"
#include "devicepath/load_option.h"
#include "devicepath/nodes.h"

namespace mira::devicepath {
namespace {

using L = NodeRecords;
using Node = NodeRecords::GenericDevicePath;
using Bytes = std::vector<std::uint8_t>;

const std::string kEnd = "7FFF0400";

// Bytes from hexadecimal digits; blanks do not count.
Bytes FromHex(std::string_view digits) {
  Bytes bytes;
  std::string pair;
  for (const char c : digits) {
    if (c != ' ') pair += c;
    if (pair.size() < 2) continue;
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(pair, nullptr, 16)));
    pair.clear();
  }
  return bytes;
}

std::string ToHex(bytes::ByteSpan bytes) {
  std::string digits;
  for (const std::uint8_t byte : bytes) {
    digits += "0123456789ABCDEF"[byte >> 4];
    digits += "0123456789ABCDEF"[byte & 0xF];
  }
  return digits;
}

std::string Text(std::string_view digits) {
  return DevicePathToText(bytes::ByteSpan(FromHex(digits)));
}

// The fields of a record, parted by blanks: numbers in hexadecimal, blocks as their bytes, texts as
// they are.
template <std::unsigned_integral T>
std::string Shown(T number) {
  std::ostringstream out;
  out << std::hex << std::uppercase << std::uint64_t{number};
  return out.str();
}
std::string Shown(const std::string& text) { return "'" + text + "'"; }
std::string Shown(const std::u16string& text) { return "'" + bytes::Utf8(text) + "'"; }
std::string Shown(const Bytes& block) { return "[" + ToHex(block) + "]"; }
template <std::size_t kSize>
std::string Shown(const std::array<std::uint8_t, kSize>& block) {
  return "[" + ToHex(block) + "]";
}
std::string Shown(const std::vector<L::IPv6Address>& list) {
  std::string text;
  for (const auto& address : list) text += Shown(address);
  return text;
}

template <typename Record, auto... kFields>
std::string Show(const Node& node) {
  const auto* const record = dynamic_cast<const Record*>(&node);
  if (record == nullptr) return "another record";
  std::string text;
  ((text += (text.empty() ? "" : " ") + Shown((*record).*kFields)), ...);
  return text;
}

// The body of each node counts up from 04, the offset of its first byte, so that a field's value
// says where it was read.
TEST(DevicePath, ReadsEveryNodeTypeIntoItsRecord) {
  struct Case {
    const char* header;
    std::string (*show)(const Node&);
    const char* fields;
  };
  const Case cases[] = {
      {"01010600", Show<L::PCIDevicePath, &L::PCIDevicePath::Function, &L::PCIDevicePath::Device>,
       "4 5"},
      {"01020500", Show<L::PCCardDevicePath, &L::PCCardDevicePath::Function>, "4"},
      {"01031800",
       Show<L::MemeoryMappedDevicePath, &L::MemeoryMappedDevicePath::MemoryType,
            &L::MemeoryMappedDevicePath::StartingAddress,
            &L::MemeoryMappedDevicePath::EndingAddress>,
       "7060504 F0E0D0C0B0A0908 1716151413121110"},
      {"01041600",
       Show<L::VendorDefinedDevicePath, &L::VendorDefinedDevicePath::VendorGuid,
            &L::VendorDefinedDevicePath::Data>,
       "[0405060708090A0B0C0D0E0F10111213] [1415]"},
      {"01050800", Show<L::ControllerDevicePath, &L::ControllerDevicePath::ControllerNumber>,
       "7060504"},
      {"01060D00",
       Show<L::BMCDevicePath, &L::BMCDevicePath::InterfaceType, &L::BMCDevicePath::BaseAddress>,
       "4 C0B0A0908070605"},
      {"02010C00", Show<L::ACPIDevicePath, &L::ACPIDevicePath::HID, &L::ACPIDevicePath::UID>,
       "7060504 B0A0908"},
      {"02030E00",
       Show<L::ACPIADRDevicePath, &L::ACPIADRDevicePath::ADR, &L::ACPIADRDevicePath::AdditionalADR>,
       "7060504 [08090A0B0C0D]"},
      {"03010800",
       Show<L::ATAPIDevicePath, &L::ATAPIDevicePath::PrimarySecondary,
            &L::ATAPIDevicePath::SlaveMaster, &L::ATAPIDevicePath::Lun>,
       "4 5 706"},
      {"03020800", Show<L::SCSIDevicePath, &L::SCSIDevicePath::Pun, &L::SCSIDevicePath::Lun>,
       "504 706"},
      {"03031800",
       Show<L::FibreChannelDevicePath, &L::FibreChannelDevicePath::Reserved,
            &L::FibreChannelDevicePath::WWN, &L::FibreChannelDevicePath::Lun>,
       "7060504 F0E0D0C0B0A0908 1716151413121110"},
      {"03041000",
       Show<L::I1394DevicePath, &L::I1394DevicePath::Reserved, &L::I1394DevicePath::NodeGuid>,
       "7060504 F0E0D0C0B0A0908"},
      {"03050600",
       Show<L::USBDevicePath, &L::USBDevicePath::ParentPortNumber,
            &L::USBDevicePath::InterfaceNumber>,
       "4 5"},
      {"03060800", Show<L::I2ODevicePath, &L::I2ODevicePath::Tid>, "7060504"},
      {"03093000",
       Show<L::InfiniBandDevicePath, &L::InfiniBandDevicePath::ResourceFlags,
            &L::InfiniBandDevicePath::PortGid, &L::InfiniBandDevicePath::ServiceId,
            &L::InfiniBandDevicePath::TargetPortId, &L::InfiniBandDevicePath::DeviceId>,
       "7060504 [08090A0B0C0D0E0F1011121314151617] 1F1E1D1C1B1A1918 2726252423222120 "
       "2F2E2D2C2B2A2928"},
      {"030A1400",
       Show<L::VendorDefinedDevicePath, &L::VendorDefinedDevicePath::VendorGuid,
            &L::VendorDefinedDevicePath::Data>,
       "[0405060708090A0B0C0D0E0F10111213] []"},
      {"030B2500",
       Show<L::MACAddressDevicePath, &L::MACAddressDevicePath::MacAddress,
            &L::MACAddressDevicePath::IfType>,
       "[0405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F20212223] 24"},
      {"030C1B00",
       Show<L::IPv4DevicePath, &L::IPv4DevicePath::LocalIpAddress,
            &L::IPv4DevicePath::RemoteIpAddress, &L::IPv4DevicePath::LocalPort,
            &L::IPv4DevicePath::RemotePort, &L::IPv4DevicePath::Protocol,
            &L::IPv4DevicePath::StaticIpAddress, &L::IPv4DevicePath::GatewayIpAddress,
            &L::IPv4DevicePath::SubnetMask>,
       "[04050607] [08090A0B] D0C F0E 1110 12 [13141516] [1718191A]"},
      {"030C1300",
       Show<L::IPv4DevicePath, &L::IPv4DevicePath::StaticIpAddress,
            &L::IPv4DevicePath::GatewayIpAddress, &L::IPv4DevicePath::SubnetMask>,
       "12 [00000000] [00000000]"},
      {"030D3C00",
       Show<L::IPv6DevicePath, &L::IPv6DevicePath::LocalIpAddress,
            &L::IPv6DevicePath::RemoteIpAddress, &L::IPv6DevicePath::LocalPort,
            &L::IPv6DevicePath::RemotePort, &L::IPv6DevicePath::Protocol,
            &L::IPv6DevicePath::IpAddressOrigin, &L::IPv6DevicePath::PrefixLength,
            &L::IPv6DevicePath::GatewayIpAddress>,
       "[0405060708090A0B0C0D0E0F10111213] [1415161718191A1B1C1D1E1F20212223] 2524 2726 2928 2A "
       "2B [2C2D2E2F303132333435363738393A3B]"},
      {"030D2B00",
       Show<L::IPv6DevicePath, &L::IPv6DevicePath::IpAddressOrigin,
            &L::IPv6DevicePath::PrefixLength, &L::IPv6DevicePath::GatewayIpAddress>,
       "2A 0 [00000000000000000000000000000000]"},
      {"030E1300",
       Show<L::UARTDevicePath, &L::UARTDevicePath::Reserved, &L::UARTDevicePath::BaudRate,
            &L::UARTDevicePath::DataBits, &L::UARTDevicePath::Parity, &L::UARTDevicePath::StopBits>,
       "7060504 F0E0D0C0B0A0908 10 11 12"},
      {"030F0B00",
       Show<L::USBClassDevicePath, &L::USBClassDevicePath::VendorId,
            &L::USBClassDevicePath::ProductId, &L::USBClassDevicePath::DeviceClass,
            &L::USBClassDevicePath::DeviceSubClass, &L::USBClassDevicePath::DeviceProtocol>,
       "504 706 8 9 A"},
      {"03110500", Show<L::DeviceLogicalUnitDevicePath, &L::DeviceLogicalUnitDevicePath::Lun>, "4"},
      {"03120A00",
       Show<L::SATADevicePath, &L::SATADevicePath::HBAPortNumber,
            &L::SATADevicePath::PortMultiplierPortNumber, &L::SATADevicePath::Lun>,
       "504 706 908"},
      {"03140600", Show<L::VLANDevicePath, &L::VLANDevicePath::VlanId>, "504"},
      {"03151800",
       Show<L::FibreChannelDevicePath, &L::FibreChannelDevicePath::Reserved,
            &L::FibreChannelDevicePath::WWN, &L::FibreChannelDevicePath::Lun>,
       "7060504 F0E0D0C0B0A0908 1716151413121110"},
      {"03161800",
       Show<L::SASExDevicePath, &L::SASExDevicePath::SasAddress, &L::SASExDevicePath::Lun,
            &L::SASExDevicePath::DeviceTopology, &L::SASExDevicePath::RelativeTargetPort>,
       "[0405060708090A0B] [0C0D0E0F10111213] 1514 1716"},
      {"03171000",
       Show<L::NVMExpNamespaceDevicePath, &L::NVMExpNamespaceDevicePath::NamespaceId,
            &L::NVMExpNamespaceDevicePath::NamespaceUuid>,
       "7060504 F0E0D0C0B0A0908"},
      {"03190600", Show<L::UFSDevicePath, &L::UFSDevicePath::Pun, &L::UFSDevicePath::Lun>, "4 5"},
      {"031A0500", Show<L::SecureDigitalDevicePath, &L::SecureDigitalDevicePath::SlotNumber>, "4"},
      {"031B0A00", Show<L::BluetoothDevicePath, &L::BluetoothDevicePath::DeviceAddress>,
       "[040506070809]"},
      {"031C2400", Show<L::WirelessDevicePath, &L::WirelessDevicePath::SSId>,
       "[0405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F20212223]"},
      {"031D0500", Show<L::eMMCDevicePath, &L::eMMCDevicePath::SlotNumber>, "4"},
      {"031E0B00",
       Show<L::EFIBluetoothLEDevicePath, &L::EFIBluetoothLEDevicePath::DeviceAddress,
            &L::EFIBluetoothLEDevicePath::AddressType>,
       "[040506070809] A"},
      {"031F2500",
       Show<L::DNSDevicePath, &L::DNSDevicePath::IsIPv6, &L::DNSDevicePath::DnsServerIp>,
       "4 [05060708090A0B0C0D0E0F1011121314][15161718191A1B1C1D1E1F2021222324]"},
      {"04012A00",
       Show<L::HDDMediaDevicePath, &L::HDDMediaDevicePath::PartitionNumber,
            &L::HDDMediaDevicePath::PartitionStart, &L::HDDMediaDevicePath::PartitionSize,
            &L::HDDMediaDevicePath::Signature, &L::HDDMediaDevicePath::MBRType,
            &L::HDDMediaDevicePath::SignatureType>,
       "7060504 F0E0D0C0B0A0908 1716151413121110 [18191A1B1C1D1E1F2021222324252627] 28 29"},
      {"04021800",
       Show<L::CDROMMediaDevicePath, &L::CDROMMediaDevicePath::BootEntry,
            &L::CDROMMediaDevicePath::PartitionStart, &L::CDROMMediaDevicePath::PartitionSize>,
       "7060504 F0E0D0C0B0A0908 1716151413121110"},
      {"04031500",
       Show<L::VendorDefinedDevicePath, &L::VendorDefinedDevicePath::VendorGuid,
            &L::VendorDefinedDevicePath::Data>,
       "[0405060708090A0B0C0D0E0F10111213] [14]"},
      {"04051400",
       Show<L::MediaProtocolMediaDevicePath, &L::MediaProtocolMediaDevicePath::Protocol>,
       "[0405060708090A0B0C0D0E0F10111213]"},
      {"04061400", Show<L::PIWGFirmwareFileDevicePath, &L::PIWGFirmwareFileDevicePath::Name>,
       "[0405060708090A0B0C0D0E0F10111213]"},
      {"04071400", Show<L::PIWGFirmwareFileDevicePath, &L::PIWGFirmwareFileDevicePath::Name>,
       "[0405060708090A0B0C0D0E0F10111213]"},
      {"04081800",
       Show<L::RelativeOffsetRange, &L::RelativeOffsetRange::Reserved,
            &L::RelativeOffsetRange::StartingOffset, &L::RelativeOffsetRange::EndingOffset>,
       "7060504 F0E0D0C0B0A0908 1716151413121110"},
      {"04092600",
       Show<L::RAMDiskDevicePath, &L::RAMDiskDevicePath::StartingAddr,
            &L::RAMDiskDevicePath::EndingAddr, &L::RAMDiskDevicePath::TypeGuid,
            &L::RAMDiskDevicePath::Instance>,
       "B0A090807060504 131211100F0E0D0C [1415161718191A1B1C1D1E1F20212223] 2524"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.header);
    Bytes node = FromHex(c.header);
    const std::size_t length = node[2];
    for (std::size_t i = 4; i < length; ++i) node.push_back(static_cast<std::uint8_t>(i));
    const L::DevicePath path = DecodeDevicePath(node);
    ASSERT_EQ(path.size(), 1u);
    const Node& record = *path.front();
    EXPECT_EQ(c.show(record), c.fields);
    EXPECT_EQ(ToHex(Bytes{record.Type, record.SubType}), std::string(c.header, 4));
    EXPECT_EQ(record.Length, length);
    EXPECT_EQ(ToHex(EncodeNode(record)), ToHex(node).substr(0, 2 * length));

    // Behind the fields, a node may have more; the path goes on behind its length. The older,
    // shorter forms have exactly their size.
    const std::string header = c.header;
    const bool is_older = header == "030C1300" || header == "030D2B00";
    node.push_back(0xAA);
    node[2] = static_cast<std::uint8_t>(length + 1);
    const Bytes next = FromHex("0102050033");
    node.insert(node.end(), next.begin(), next.end());
    EXPECT_EQ(DecodeDevicePath(node).size(), is_older ? 0u : 2u);
  }
}

TEST(DevicePath, ReadsTheTextsOfNodes) {
  struct Case {
    const char* node;
    std::string (*show)(const Node&);
    const char* fields;
  };
  constexpr auto kAcpi =
      Show<L::ExACPIDevicePath, &L::ExACPIDevicePath::HID, &L::ExACPIDevicePath::UID,
           &L::ExACPIDevicePath::CID, &L::ExACPIDevicePath::HIDSTR, &L::ExACPIDevicePath::UIDSTR,
           &L::ExACPIDevicePath::CIDSTR>;
  constexpr auto kFile = Show<L::FilePathMediaDevicePath, &L::FilePathMediaDevicePath::PathName>;
  constexpr auto kSerial = Show<L::USBWWIDDevicePath, &L::USBWWIDDevicePath::InterfaceNumber,
                                &L::USBWWIDDevicePath::VendorId, &L::USBWWIDDevicePath::ProductId,
                                &L::USBWWIDDevicePath::SerialNumber>;
  constexpr auto kIscsi =
      Show<L::iSCSIDevicePath, &L::iSCSIDevicePath::NetworkProtocol,
           &L::iSCSIDevicePath::LoginOption, &L::iSCSIDevicePath::Lun,
           &L::iSCSIDevicePath::TargetPortalGroupTag, &L::iSCSIDevicePath::TargetName>;
  constexpr auto kBbs =
      Show<L::BIOSBootSpecDevicePath, &L::BIOSBootSpecDevicePath::DeviceType,
           &L::BIOSBootSpecDevicePath::StatusFlag, &L::BIOSBootSpecDevicePath::Description>;
  const Case cases[] = {
      {"02021700 04050607 08090A0B 0C0D0E0F 484900 5500 4300", kAcpi,
       "7060504 B0A0908 F0E0D0C 'HI' 'U' 'C'"},
      {"02021000 04050607 08090A0B 0C0D0E0F", kAcpi, "7060504 B0A0908 F0E0D0C '' '' ''"},
      {"02021300 04050607 08090A0B 0C0D0E0F 484900", kAcpi, "7060504 B0A0908 F0E0D0C 'HI' '' ''"},
      {"03100E00 0405 0607 0809 41004200", kSerial, "504 706 908 'AB'"},
      {"03100B00 0405 0607 0809 41", kSerial, "504 706 908 'A'"},
      {"03131500 0405 0607 08090A0B0C0D0E0F 1011 697100", kIscsi,
       "504 706 F0E0D0C0B0A0908 1110 'iq'"},
      {"03180800 68747470", Show<L::URIDevicePath, &L::URIDevicePath::Uri>, "'http'"},
      {"03180400", Show<L::URIDevicePath, &L::URIDevicePath::Uri>, "''"},
      {"04040C00 5C003DD800DE0000", kFile, "'\\\xF0\x9F\x98\x80'"},
      {"04040800 5C003DD8", kFile, "'\\\xEF\xBF\xBD'"},
      {"04040400", kFile, "''"},
      {"04040700 410042", kFile, "'AB'"},
      {"05010A00 0600 0100 4100", kBbs, "6 1 'A'"},
      {"05010800 0600 0100", kBbs, "6 1 ''"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.node);
    const L::DevicePath path = DecodeDevicePath(FromHex(c.node));
    ASSERT_EQ(path.size(), 1u);
    EXPECT_EQ(c.show(*path.front()), c.fields);
  }
}

// What does not fill a field of a node's tail is kept, and written back.
TEST(DevicePath, KeepsTailsThatEndWithinAField) {
  struct Case {
    const char* node;
    std::string (*show)(const Node&);
    const char* fields;
    const char* text;
  };
  constexpr auto kDns = Show<L::DNSDevicePath, &L::DNSDevicePath::DnsServerIp>;
  constexpr auto kAdr = Show<L::ACPIADRDevicePath, &L::ACPIADRDevicePath::AdditionalADR>;
  const Case cases[] = {
      {"031F0900 00 08080404", kDns, "[08080404000000000000000000000000]", "Path(3,31,0008080404)"},
      {"031F1600 00 08080808000000000000000000000000 09", kDns,
       "[08080808000000000000000000000000][09000000000000000000000000000000]",
       "Path(3,31,000808080800000000000000000000000009)"},
      {"02030A00 01000000 0203", kAdr, "[0203]", "Path(2,3,010000000203)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.node);
    const Bytes node = FromHex(c.node);
    const L::DevicePath path = DecodeDevicePath(node);
    ASSERT_EQ(path.size(), 1u);
    EXPECT_EQ(c.show(*path.front()), c.fields);
    EXPECT_EQ(ToHex(EncodeNode(*path.front())), ToHex(node));
    EXPECT_EQ(DevicePathToText(bytes::ByteSpan(node)), c.text);
  }
}

// Nodes and their texts, both ways.
TEST(DevicePath, WritesEveryNodeTypeAndReadsItBack) {
  struct Case {
    const char* node;
    const char* text;
  };
  const Case cases[] = {
      {"01010600 02 1F", "Pci(0x1F,0x2)"},
      {"01020500 03", "PcCard(0x3)"},
      {"01031800 0B000000 0000100000000000 FFFF1F0000000000",
       "MemoryMapped(0xB,0x100000,0x1FFFFF)"},
      {"01041400 E775E299A075374BA2E6C5385E6C00CB", "VenHw(99E275E7-75A0-4B37-A2E6-C5385E6C00CB)"},
      {"01041600 E775E299A075374BA2E6C5385E6C00CB 02A0",
       "VenHw(99E275E7-75A0-4B37-A2E6-C5385E6C00CB,02A0)"},
      {"01050800 01000000", "Ctrl(0x1)"},
      {"01060D00 01 A20C000000000000", "BMC(0x1,0xCA2)"},

      {"02010C00 D041030A 01000000", "PciRoot(0x1)"},
      {"02010C00 D041080A 00000000", "PcieRoot(0x0)"},
      {"02010C00 D0410406 00000000", "Floppy(0x0)"},
      {"02010C00 D0410103 00000000", "Keyboard(0x0)"},
      {"02010C00 D0410105 01000000", "Serial(0x1)"},
      {"02010C00 D0410104 00000000", "ParallelPort(0x0)"},
      {"02010C00 D041030C 00000000", "Acpi(PNP0C03,0x0)"},
      {"02010C00 78563412 0A000000", "Acpi(0x12345678,0xA)"},
      {"02021500 D041030A 00000000 D041080A 00 553100 00", "AcpiExp(PNP0A03,PNP0A08,U1)"},
      {"02021400 D041030A 00000000 00000000 00 5500 00", "AcpiExp(PNP0A03,0,U)"},
      {"02021600 D041030A 02000000 00000000 4800 5500 4300", "AcpiEx(PNP0A03,@@@0000,0x2,H,C,U)"},
      {"02021300 D041030A 02000000 D041080A 00 00 00", "AcpiEx(PNP0A03,PNP0A08,0x2,,,)"},
      {"02030800 00010180", "AcpiAdr(0x80010100)"},
      {"02030C00 00010180 00040180", "AcpiAdr(0x80010100,0x80010400)"},

      {"03010800 00 00 0000", "Ata(Primary,Master,0x0)"},
      {"03010800 01 01 0200", "Ata(Secondary,Slave,0x2)"},
      {"03010800 02 03 0200", "Ata(0x2,0x3,0x2)"},
      {"03020800 0100 0200", "Scsi(0x1,0x2)"},
      {"03031800 00000000 8877665544332211 0100000000000000", "Fibre(0x1122334455667788,0x1)"},
      {"03041000 00000000 EFCDAB8967452300", "I1394(0023456789ABCDEF)"},
      {"03050600 0B 01", "USB(0xB,0x1)"},
      {"03060800 10000000", "I2O(0x10)"},
      {"03093000 01000000 E775E299A075374BA2E6C5385E6C00CB 0200000000000000 0300000000000000 "
       "0400000000000000",
       "Infiniband(0x1,99E275E7-75A0-4B37-A2E6-C5385E6C00CB,0x2,0x3,0x4)"},
      {"030A1400 5347C1E0BEF9D2119A0C0090273FC14D", "VenMsg(E0C14753-F9BE-11D2-9A0C-0090273FC14D)"},
      {"030B2500 00163E6271F0 0000000000000000000000000000000000000000000000000000 01",
       "MAC(00163E6271F0,0x1)"},
      {"030B2500 000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F 20",
       "MAC(000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F,0x20)"},
      {"030C1B00 0A000002 C0A80001 0000 0000 0600 01 0A000001 FFFFFF00",
       "IPv4(192.168.0.1,TCP,Static,10.0.0.2,10.0.0.1,255.255.255.0)"},
      {"030C1B00 00000000 00000000 0000 0000 0000 00 00000000 00000000",
       "IPv4(0.0.0.0,0x0,DHCP,0.0.0.0,0.0.0.0,0.0.0.0)"},
      {"030C1300 0A000002 C0A80001 0000 0000 1100 00", "IPv4(192.168.0.1,UDP,DHCP,10.0.0.2)"},
      {"030D3C00 FE800000000000000000000000000002 20010DB8000000000000000000000001 0000 0000 1100 "
       "02 40 FE800000000000000000000000000001",
       "IPv6(2001:0DB8:0000:0000:0000:0000:0000:0001,UDP,StatefulAutoConfigure,"
       "FE80:0000:0000:0000:0000:0000:0000:0002,0x40,FE80:0000:0000:0000:0000:0000:0000:0001)"},
      {"030D2B00 00000000000000000000000000000000 20010DB8000000000000000000000001 0000 0000 0600 "
       "01",
       "IPv6(2001:0DB8:0000:0000:0000:0000:0000:0001,TCP,StatelessAutoConfigure,"
       "0000:0000:0000:0000:0000:0000:0000:0000)"},
      {"030E1300 00000000 00C2010000000000 08 01 01", "Uart(115200,8,N,1)"},
      {"030E1300 00000000 0000000000000000 00 00 00", "Uart(DEFAULT,DEFAULT,D,D)"},
      {"030E1300 00000000 8025000000000000 07 02 02", "Uart(9600,7,E,1.5)"},
      {"030E1300 00000000 8025000000000000 07 05 03", "Uart(9600,7,S,2)"},
      {"030E1300 00000000 8025000000000000 07 06 04", "Uart(9600,7,0x6,0x4)"},
      {"030F0B00 FFFF FFFF 01 02 03", "UsbAudio(0xFFFF,0xFFFF,0x2,0x3)"},
      {"030F0B00 3412 7856 02 00 00", "UsbCDCControl(0x1234,0x5678,0x0,0x0)"},
      {"030F0B00 FFFF FFFF 03 01 01", "UsbHID(0xFFFF,0xFFFF,0x1,0x1)"},
      {"030F0B00 FFFF FFFF 06 01 01", "UsbImage(0xFFFF,0xFFFF,0x1,0x1)"},
      {"030F0B00 FFFF FFFF 07 01 01", "UsbPrinter(0xFFFF,0xFFFF,0x1,0x1)"},
      {"030F0B00 FFFF FFFF 08 06 50", "UsbMassStorage(0xFFFF,0xFFFF,0x6,0x50)"},
      {"030F0B00 FFFF FFFF 09 00 01", "UsbHub(0xFFFF,0xFFFF,0x0,0x1)"},
      {"030F0B00 FFFF FFFF 0A 00 01", "UsbCDCData(0xFFFF,0xFFFF,0x0,0x1)"},
      {"030F0B00 FFFF FFFF 0B 00 01", "UsbSmartCard(0xFFFF,0xFFFF,0x0,0x1)"},
      {"030F0B00 FFFF FFFF 0E 00 01", "UsbVideo(0xFFFF,0xFFFF,0x0,0x1)"},
      {"030F0B00 FFFF FFFF DC 00 01", "UsbDiagnostic(0xFFFF,0xFFFF,0x0,0x1)"},
      {"030F0B00 FFFF FFFF E0 00 01", "UsbWireless(0xFFFF,0xFFFF,0x0,0x1)"},
      {"030F0B00 FFFF FFFF FE 01 02", "UsbDeviceFirmwareUpdate(0xFFFF,0xFFFF,0x2)"},
      {"030F0B00 FFFF FFFF FE 02 02", "UsbIrdaBridge(0xFFFF,0xFFFF,0x2)"},
      {"030F0B00 FFFF FFFF FE 03 02", "UsbTestAndMeasurement(0xFFFF,0xFFFF,0x2)"},
      {"030F0B00 FFFF FFFF FE 04 02", "UsbClass(0xFFFF,0xFFFF,0xFE,0x4,0x2)"},
      {"03101000 0200 3412 7856 41002C004200", "UsbWwid(0x1234,0x5678,0x2,\"A,B\")"},
      {"03110500 07", "Unit(0x7)"},
      {"03120A00 0000 FFFF 0000", "Sata(0x0,0xFFFF,0x0)"},
      {"03132200 0000 0000 0001000000000000 0200 69716E2E6578616D706C653A743030 2E",
       "iSCSI(iqn.example:t00.,0x2,0x0001000000000000,None,None,CHAP_BI,TCP)"},
      {"03131300 0000 0A10 0000000000000000 0100 74",
       "iSCSI(t,0x1,0x0000000000000000,CRC32C,CRC32C,CHAP_UNI,TCP)"},
      {"03131300 0000 0208 0000000000000000 0100 74",
       "iSCSI(t,0x1,0x0000000000000000,CRC32C,None,None,TCP)"},
      {"03140600 6400", "Vlan(100)"},
      {"03151800 00000000 1122334455667788 0001020304050607",
       "FibreEx(0x1122334455667788,0x0001020304050607)"},
      {"03161800 1122334455667788 0001020304050607 0000 0300",
       "SasEx(0x1122334455667788,0x0001020304050607,0x3,NoTopology,0,0,0)"},
      {"03161800 1122334455667788 0001020304050607 7200 0300",
       "SasEx(0x1122334455667788,0x0001020304050607,0x3,SATA,External,Expanded,0x1)"},
      {"03161800 1122334455667788 0001020304050607 02FF 0300",
       "SasEx(0x1122334455667788,0x0001020304050607,0x3,SAS,Internal,Direct,0x100)"},
      {"03161800 1122334455667788 0001020304050607 2100 0300",
       "SasEx(0x1122334455667788,0x0001020304050607,0x3,SAS,External,Direct,0)"},
      {"03161800 1122334455667788 0001020304050607 8312 0300",
       "SasEx(0x1122334455667788,0x0001020304050607,0x3,0x1283,0,0,0)"},
      {"03171000 01000000 0011223344556677", "NVMe(0x1,77-66-55-44-33-22-11-00)"},
      {"03181600 68747470733A2F2F612F6228312C32293F78", "Uri(https://a/b(1,2)?x)"},
      {"03180400", "Uri()"},
      {"03190600 01 02", "UFS(0x1,0x2)"},
      {"031A0500 01", "SD(0x1)"},
      {"031B0A00 112233445566", "Bluetooth(112233445566)"},
      {"031C2400 6E6574 0000000000000000000000000000000000000000000000000000000000", "Wi-Fi(net)"},
      {"031D0500 00", "eMMC(0x0)"},
      {"031E0B00 112233445566 01", "BluetoothLE(112233445566,0x01)"},
      {"031F2500 00 08080808000000000000000000000000 08080404000000000000000000000000",
       "Dns(8.8.8.8,8.8.4.4)"},
      {"031F1500 01 20010DB8000000000000000000000001",
       "Dns(2001:0DB8:0000:0000:0000:0000:0000:0001)"},
      {"03201400 5CB9235026DB9B42A648BD47664C8012", "NVDIMM(5023B95C-DB26-429B-A648-BD47664C8012)"},
      {"03210600 01 02", "RestService(0x1,0x2)"},
      {"03211800 FF 01 5CB9235026DB9B42A648BD47664C8012 A2E5",
       "RestService(0xFF,0x1,5023B95C-DB26-429B-A648-BD47664C8012,A2E5)"},
      {"031F0500 00", "Dns()"},

      {"04012A00 01000000 0008000000000000 0000100000000000 A4BE8A8EE3389B4F8B89BC5CA881001B 02 02",
       "HD(1,GPT,8E8ABEA4-38E3-4F9B-8B89-BC5CA881001B,0x800,0x100000)"},
      {"04012A00 02000000 3C02000000000000 3021000000000000 6926EB14000000000000000000000000 01 01",
       "HD(2,MBR,0x14EB2669,0x23C,0x2130)"},
      {"04012A00 02000000 3C02000000000000 3021000000000000 00000000000000000000000000000000 00 00",
       "HD(2,0,0,0x23C,0x2130)"},
      {"04021800 01000000 1300000000000000 0010000000000000", "CDROM(0x1,0x13,0x1000)"},
      {"04031400 5CB9235026DB9B42A648BD47664C8012",
       "VenMedia(5023B95C-DB26-429B-A648-BD47664C8012)"},
      {"04041200 5C0061002C00620028003100 0000", "\\a,b(1"},
      {"04040A00 E90016200000", "\xC3\xA9\xE2\x80\x96"},
      {"04051400 5CB9235026DB9B42A648BD47664C8012", "Media(5023B95C-DB26-429B-A648-BD47664C8012)"},
      {"04061400 668B1C726C42864E8E993457C46AB0B9", "FvFile(721C8B66-426C-4E86-8E99-3457C46AB0B9)"},
      {"04071400 668B1C726C42864E8E993457C46AB0B9", "Fv(721C8B66-426C-4E86-8E99-3457C46AB0B9)"},
      {"04081800 00000000 005C010000000000 FF7F040000000000", "Offset(0x15C00,0x47FFF)"},
      {"04092600 0010000000000000 FF1F000000000000 5A53AB77FC454B625560F7B281D1F96E 0300",
       "VirtualDisk(0x1000,0x1FFF,3)"},
      {"04092600 0010000000000000 FF1F000000000000 30BD5A3D7541CE876D64D2ADE523C4BB 0300",
       "VirtualCD(0x1000,0x1FFF,3)"},
      {"04092600 0010000000000000 FF1F000000000000 C902EA5C074DD369269F4496FBE096F9 0000",
       "PersistentVirtualDisk(0x1000,0x1FFF,0)"},
      {"04092600 0010000000000000 FF1F000000000000 88810108CD4248BB100F5387D53DED3D 0000",
       "PersistentVirtualCD(0x1000,0x1FFF,0)"},
      {"04092600 0010000000000000 FF1F000000000000 668B1C726C42864E8E993457C46AB0B9 0A00",
       "RamDisk(0x1000,0x1FFF,10,721C8B66-426C-4E86-8E99-3457C46AB0B9)"},

      {"05010E00 0200 0100 642C28312900", "BBS(HD,d,(1),0x1)"},
      {"05010900 0100 0000 00", "BBS(Floppy,,0x0)"},
      {"05010A00 0300 0000 4100", "BBS(CDROM,A,0x0)"},
      {"05010A00 0400 0000 4100", "BBS(PCMCIA,A,0x0)"},
      {"05010A00 0500 0000 4100", "BBS(USB,A,0x0)"},
      {"05010A00 0600 0000 E900", "BBS(Network,\xC3\xA9,0x0)"},
      {"05010A00 8000 0000 2900", "BBS(0x80,),0x0)"},

      // Without a text of their own.
      {"01550600 A2E5", "HardwarePath(85,A2E5)"},
      {"02FF0400", "AcpiPath(255)"},
      {"03070600 0102", "Msg(7,0102)"},
      {"04630500 01", "MediaPath(99,01)"},
      {"05020500 01", "BbsPath(2,01)"},
      {"060C0500 01", "Path(6,12,01)"},
      {"00000400", "Path(0,0)"},
      {"01010500 02", "Path(1,1,02)"},
      {"04012900 01000000 0008000000000000 0000100000000000 A4BE8A8EE3389B4F8B89BC5CA881001B 02",
       "Path(4,1,010000000008000000000000000010000000000"
       "0A4BE8A8EE3389B4F8B89BC5CA881001B02)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const Bytes path = FromHex(c.node + kEnd);
    EXPECT_EQ(DevicePathToText(bytes::ByteSpan(path)), c.text);
    const std::optional<Bytes> back = DevicePathFromText(c.text);
    ASSERT_TRUE(back);
    EXPECT_EQ(ToHex(*back), ToHex(path));
    // The same by way of the record, where the node has one.
    const L::DevicePath records = DecodeDevicePath(path);
    EXPECT_EQ(DevicePathToText(records), records.empty() ? "" : c.text);
  }
}

TEST(DevicePath, TakesTypedPathsAsPeopleWriteThem) {
  struct Case {
    const char* text;
    const char* path;
  };
  const Case cases[] = {
      {"/pciroot(0)/PCI(31, 0x2)", "02010C00D041030A00000000 01010600021F 7FFF0400"},
      {"Unit(1),Unit(2)", "0311050001 7F010400 0311050002 7FFF0400"},
      {"Unit(1),/Unit(2)", "0311050001 7F010400 0311050002 7FFF0400"},
      {"a,/b", "04040800 61000000 7F010400 04040800 62000000 7FFF0400"},
      {"VenUtf8()", "030A1400 D6A015ADEC8BCF4AA073D01DE77E2D88 7FFF0400"},
      {"VenPcAnsi()", "030A1400 5347C1E0BEF9D2119A0C0090273FC14D 7FFF0400"},
      {"VenVt100()", "030A1400 6560A6DF19B4D3119A2D0090273FC14D 7FFF0400"},
      {"VenVt100Plus()", "030A1400 0BC7AE7BE057764C8E872F9E28088343 7FFF0400"},
      {"Dns(fe80::1)", "031F1500 01 FE800000000000000000000000000001 7FFF0400"},
      {"Dns(::)", "031F1500 01 00000000000000000000000000000000 7FFF0400"},
      {"Path(3,17,07)", "0311050007 7FFF0400"},
      {"\t pci( 0x1f , 2 ) / Unit(1) , /Unit(2) ",
       "01010600021F 0311050001 7F010400 0311050002 7FFF0400"},
      {"Acpi(pnz0c0f,0)", "02010C00 DA410F0C00000000 7FFF0400"},
      {"\\a (1.efi", "04041800 5C006100200028003100 2E00650066006900 0000 7FFF0400"},
      {"a(1).efi", "04041600 610028003100 29002E00650066006900 0000 7FFF0400"},
      // Arguments that have a default.
      {"PciRoot()", "02010C00D041030A00000000 7FFF0400"},
      {"Acpi(PNP0C0F)", "02010C00D0410F0C00000000 7FFF0400"},
      {"AcpiEx(PNP0A03)", "02021300 D041030A 00000000 00000000 000000 7FFF0400"},
      {"Sata(1)", "03120A00 0100 FFFF 0000 7FFF0400"},
      {"Sata(1,,2)", "03120A00 0100 FFFF 0200 7FFF0400"},
      {"MAC(00163E6271F0)",
       "030B2500 00163E6271F0 0000000000000000000000000000000000000000000000000000 00 7FFF0400"},
      {"IPv4(192.168.0.1)",
       "030C1B00 00000000 C0A80001 0000 0000 1100 00 00000000 00000000 7FFF0400"},
      {"Uart()", "030E1300 00000000 00C2010000000000 08 00 00 7FFF0400"},
      {"UsbHID()", "030F0B00 FFFF FFFF 03 FF FF 7FFF0400"},
      {"iSCSI(t,1,0x0000000000000000)", "03131300 0000 0008 0000000000000000 0100 74 7FFF0400"},
      {"iSCSI(t)", "03131300 0000 0008 0000000000000000 0000 74 7FFF0400"},
      {"iSCSI(t,1,0x102,CRC32C)", "03131300 0000 0208 0000000000000102 0100 74 7FFF0400"},
      {"FibreEx(0x1)", "03151800 00000000 0000000000000001 0000000000000000 7FFF0400"},
      {"FibreEx(258,0xabc)", "03151800 00000000 0000000000000102 0000000000000ABC 7FFF0400"},
      {"SasEx(0x500)", "03161800 0000000000000500 0000000000000000 0000 0000 7FFF0400"},
      {"SasEx(0x1,0x2,0x3,SAS,Internal,Direct,0)",
       "03161800 0000000000000001 0000000000000002 0100 0300 7FFF0400"},
      {"I1394(1F)", "03041000 00000000 1F00000000000000 7FFF0400"},
      {"I1394(0x1F)", "03041000 00000000 1F00000000000000 7FFF0400"},
      {"RestService(0xff,1,5023b95c-db26-429b-a648-bd47664c8012)",
       "03211600 FF 01 5CB9235026DB9B42A648BD47664C8012 7FFF0400"},
      {"Program (x86)",
       "04042000 500072006F0067007200 61006D0020002800 78003800360029000000 7FFF0400"},
      {"BBS(HD,d)", "05010A00 0200 0000 6400 7FFF0400"},
      {"CDROM(1)", "04021800 01000000 0000000000000000 0000000000000000 7FFF0400"},
      // Kinds of vendor nodes.
      {"DebugPort()", "030A1400 D2E8A4EB5838EC41A2812647BA9660D0 7FFF0400"},
      {"UartFlowCtrl(XonXoff)", "030A1800 9D9A49372F54894CA02635DA142094E4 02000000 7FFF0400"},
      {"UartFlowCtrl()", "030A1800 9D9A49372F54894CA02635DA142094E4 00000000 7FFF0400"},
      {"SAS(0x1122334455667788,1,2,SATA,External,Expanded,3,4)",
       "030A2C00 B4DD87D48B00D911AFDC001083FFCA4D 04000000 8877665544332211 0100000000000000 "
       "7202 0200 7FFF0400"},
      {"SAS(1)",
       "030A2C00 B4DD87D48B00D911AFDC001083FFCA4D 00000000 0100000000000000 0000000000000000 "
       "0000 0000 7FFF0400"},
      {"SAS(1,0,0,SAS)",
       "030A2C00 B4DD87D48B00D911AFDC001083FFCA4D 00000000 0100000000000000 0000000000000000 "
       "0100 0000 7FFF0400"},
      {"hd(1,gpt,8e8abea4-38e3-4f9b-8b89-bc5ca881001b,2048,0x100000)",
       "04012A00 01000000 0008000000000000 0000100000000000 A4BE8A8EE3389B4F8B89BC5CA881001B 02 02 "
       "7FFF0400"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const std::optional<Bytes> path = DevicePathFromText(c.text);
    ASSERT_TRUE(path);
    EXPECT_EQ(ToHex(*path), ToHex(FromHex(c.path)));
  }

  for (const char* const text : {"Sta(0x0,0x0,0x0)",
                                 "Pci(0x1)",
                                 "Pci(0x1,0x2,0x3)",
                                 "Pci(0x100,0x0)",
                                 "Pci(,0x1)",
                                 "Pci(0x1,x)",
                                 "Pci(-1,0)",
                                 "VenHw(123)",
                                 "VenHw(99E275E7-75A0-4B37-A2E6-C5385E6C00CB,0)",
                                 "VenHw(99E275E7x75A0-4B37-A2E6-C5385E6C00CB)",
                                 "IPv4(1.2.3,TCP,DHCP,0.0.0.0)",
                                 "IPv4(1.2.3.256,TCP,DHCP,0.0.0.0)",
                                 "Dns(1::2::3)",
                                 "Dns(1:2:3:4:5:6:7:8:9)",
                                 "Dns(1:2:3:4:5:6:7::8)",
                                 "HD(1,XYZ,0,0x0,0x0)",
                                 "VenUtf8(1)",
                                 "Path(127,255)",
                                 "Path(1)",
                                 "Path(1,2,3)",
                                 "Wi-Fi(an SSID longer than 32 characters)",
                                 "UsbWwid(1,2,3,x)",
                                 "SasEx(0x1,0x2,0x3,SAS,Sideways,Direct,0)",
                                 "FibreEx(0x10000000000000000)",
                                 "RestService(1,2,3)",
                                 "NVDIMM()",
                                 "BBS(HD,\xE2\x82\xAC,0x0)",
                                 "\\a\xFF.efi",
                                 "MAC(0,0x1)",
                                 "AcpiEx(PNP0A03,PNP0A03,0,a,b,c,d)",
                                 "NVMe(0x1,00)"}) {
    EXPECT_FALSE(DevicePathFromText(text)) << text;
  }
  EXPECT_FALSE(DevicePathFromText(std::string(40000, 'x'))) << "longer than a node can be";
}

TEST(DevicePath, SaysWhereATextIsWrong) {
  struct Case {
    const char* text;
    std::size_t offset;
    const char* message;
  };
  const Case cases[] = {
      {"", 0, "The text is empty."},
      {" \t", 0, "The text is empty."},
      {"/", 1, "Between commas, and at all, nodes are wanted."},
      {"Unit(1),/", 9, "Between commas, and at all, nodes are wanted."},
      {"PciRoot(0x0)/Pci(0x1F", 16, "This bracket is not closed."},
      {"Bogus(", 5, "This bracket is not closed."},
      {"Bogus(1)", 0, "No node is called 'Bogus'."},
      {"Unit(1))", 5, "Argument 1 of 'Unit' is not understood."},
      {"Unit(1)x", 0, "Behind a node's bracket, a slash is wanted."},
      {"Unit(1)Unit(2)", 5, "Argument 1 of 'Unit' is not understood."},
      {"a)", 1, "This bracket has no partner."},
      {"Pci (0x1F,0)", 4, "No blank may stand in front of a node's bracket."},
      {"PciRoot(0x0)/Pci\t(0x1F,0)/Unit(1)", 17,
       "No blank may stand in front of a node's bracket."},
      {"Pci(1)", 5, "'Pci' lacks its argument 2."},
      {"Pci(1,2,3)", 8, "'Pci' takes at most 2 arguments."},
      {"DebugPort(1)", 10, "'DebugPort' takes no arguments."},
      {"PciRoot(0x0)/Pci(0x1F,x)", 22, "Argument 2 of 'Pci' is not understood."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Problem problem;
    EXPECT_FALSE(DevicePathFromText(c.text, &problem));
    EXPECT_EQ(problem.message, c.message);
    EXPECT_EQ(problem.offset, c.offset);
  }
}

TEST(DevicePath, NamesWhatIsMalformed) {
  struct Case {
    const char* list;
    std::vector<const char*> texts;  // of its paths
    std::size_t offset;
    const char* problem;  // of the last path
  };
  const Case cases[] = {
      {"0311050001 7FFF0400", {"Unit(0x1)"}, 0, ""},
      {"0311050001 7FFF0400 0311050002 7F010400 0311050003 7FFF0400",
       {"Unit(0x1)", "Unit(0x2),/Unit(0x3)"},
       0,
       ""},
      {"7FFF0400", {""}, 0, ""},
      {"", {""}, 0, "The path has no end node."},
      {"0311050001", {"Unit(0x1)"}, 5, "The path has no end node."},
      {"0311050001 7FFF0400 00", {"Unit(0x1)", ""}, 9, "The bytes end within a node's header."},
      {"0311050001 03110300 02", {"Unit(0x1)"}, 5, "A node's length is below 4."},
      {"0311050001 7FFF0400 0311060002",
       {"Unit(0x1)", ""},
       9,
       "A node is longer than the bytes that are left."},
      {"0311050001 7FFF0500 00", {"Unit(0x1)"}, 5, "An end node's length is not 4."},
      {"0311050001 7F010500 00", {"Unit(0x1)"}, 5, "An end node's length is not 4."},
      {"0311050001 7F020400",
       {"Unit(0x1)"},
       5,
       "An end node ends neither an instance nor the path."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.list);
    const std::vector<Path> paths = DecodePaths(FromHex(c.list));
    ASSERT_EQ(paths.size(), c.texts.size());
    Bytes together;
    for (std::size_t i = 0; i < paths.size(); ++i) {
      EXPECT_EQ(paths[i].text, c.texts[i]);
      together.insert(together.end(), paths[i].bytes.begin(), paths[i].bytes.end());
      EXPECT_TRUE(i + 1 == paths.size() || !paths[i].problem);
    }
    EXPECT_EQ(ToHex(together), ToHex(FromHex(c.list))) << "no byte is lost";
    const Problem problem = paths.back().problem.value_or(Problem());
    EXPECT_EQ(problem.message, c.problem);
    EXPECT_EQ(problem.offset, c.offset);
  }
}

TEST(DevicePath, EndsWhereItCannotBeFollowed) {
  struct Case {
    const char* what;
    const char* path;
    std::size_t records;
    const char* text;
  };
  const Case cases[] = {
      {"nothing", "", 0, ""},
      {"no node", "7FFF0400", 0, ""},
      {"an end of another kind", "7F7F0400 0311050001", 0, ""},
      {"two instances", "0311050001 7F010400 0311050002 7FFF0400 0311050003", 1,
       "Unit(0x1),/Unit(0x2)"},
      {"no end node", "0311050001", 1, "Unit(0x1)"},
      {"an unknown node", "0311050001 03070400 0311050002", 1, "Unit(0x1)/Msg(7)/Unit(0x2)"},
      {"another unknown node", "0311050001 03080400 0311050002", 1, "Unit(0x1)/Msg(8)/Unit(0x2)"},
      {"an unknown type", "0311050001 06010400 0311050002", 1, "Unit(0x1)/Path(6,1)/Unit(0x2)"},
      {"type 0", "00010400 0311050002", 0, "Path(0,1)/Unit(0x2)"},
      {"an end's subtype", "0311050001 03FF0400 0311050002", 1, "Unit(0x1)/Msg(255)/Unit(0x2)"},
      {"a node too short for its type", "0311050001 03110400 0311050002", 1,
       "Unit(0x1)/Path(3,17)/Unit(0x2)"},
      {"length 0", "0311050001 03110000 0311050002", 1, "Unit(0x1)"},
      {"length 3", "0311050001 03110300 0311050002", 1, "Unit(0x1)"},
      {"a length past the end", "0311050001 03110600 02", 1, "Unit(0x1)"},
      {"a header past the end", "0311050001 031105", 1, "Unit(0x1)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(DecodeDevicePath(FromHex(c.path)).size(), c.records);
    EXPECT_EQ(Text(c.path), c.text);
  }
}

// A load option: attributes, path length, "Go", a path of three nodes, optional data.
const char kOption[] =
    "01000000 2C00 47006F000000"
    "02010C00D041030A00000000 03120A000100FFFF0000"
    "04041200 5C0061002E00650066006900 0000 7FFF0400 DEAD";

TEST(LoadOption, IsDecodedWhole) {
  const std::optional<LoadOption> option = DecodeLoadOption(FromHex(kOption));
  ASSERT_TRUE(option);
  EXPECT_EQ(option->attributes, 1u);
  EXPECT_TRUE(option->IsActive());
  EXPECT_EQ(option->description, u"Go");
  EXPECT_EQ(option->paths.front().text, "PciRoot(0x0)/Sata(0x1,0xFFFF,0x0)/\\a.efi");
  EXPECT_EQ(option->paths.front().bytes.size(), 0x2Cu);
  EXPECT_EQ(EncodeLoadOption(*option), FromHex(kOption));
  EXPECT_EQ(ToHex(option->optional_data), "DEAD");
}

TEST(LoadOption, IsReadBehindAVariablesAttributes) {
  struct Case {
    const char* what;
    std::string bytes;
    bool is_option;
    bool is_variable;
    std::uint32_t attributes;
    std::size_t offset;
    const char* problem;
  };
  const std::string inactive = "00000000 0900 47000000 0311050001 7FFF0400";
  const std::string malformed = "01000000 0500 47000000 0311050001";
  const Case cases[] = {
      {"an option", kOption, true, false, 1, 0, ""},
      {"a file", std::string("07000000") + kOption, true, true, 1, 0, ""},
      {"a file of an inactive option", "07000000" + inactive, true, true, 0, 0, ""},
      {"with write access by time", "27000000" + inactive, true, true, 0, 0, ""},
      {"a file of a malformed option", "07000000" + malformed, true, true, 1, 19,
       "The path has no end node."},
      {"a malformed option", malformed, true, false, 1, 15, "The path has no end node."},
      {"a cut file", "07000000 01000000 0900 47000000 0311", false, false, 0, 14,
       "The paths have 9 bytes, but only 2 are left."},
      {"a description without an end", "01000000 0000 4700", false, false, 0, 6,
       "The description has no end."},
      {"nothing", "", false, false, 0, 0,
       "The bytes end within the attributes and the length of the paths."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Problem problem;
    const std::optional<LoadOption> option = DecodeLoadOption(FromHex(c.bytes), &problem);
    ASSERT_EQ(option.has_value(), c.is_option);
    if (option) {
      EXPECT_EQ(option->variable_attributes.has_value(), c.is_variable);
      EXPECT_EQ(option->attributes, c.attributes);
      EXPECT_EQ(option->description.substr(0, 1), u"G");
      if (option->FirstProblem() != nullptr) problem = *option->FirstProblem();
    }
    EXPECT_EQ(problem.message, c.problem);
    EXPECT_EQ(problem.offset, c.offset);
  }
  for (const char* const attributes : {"07010000", "06000000"}) {
    const auto option = DecodeLoadOption(FromHex(attributes + inactive));
    ASSERT_TRUE(option.has_value()) << attributes;
    EXPECT_FALSE(option->variable_attributes) << attributes << " is no readable variable's";
  }
}

TEST(LoadOption, IsNotEncodedWhereItCannotBeRead) {
  LoadOption option;
  option.paths.push_back({"", Bytes(0x10000), std::nullopt});
  EXPECT_FALSE(EncodeLoadOption(option));
  option.paths.clear();
  option.description = std::u16string(u"a\0b", 3);
  EXPECT_FALSE(EncodeLoadOption(option));
}

TEST(LoadOption, IsNoneWhenCut) {
  const Bytes whole = FromHex(kOption);
  const std::size_t needed = whole.size() - 2;
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(DecodeLoadOption(cut).has_value(), size >= needed) << size;
  }
  // Any byte may hold anything.
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const std::uint8_t value : FromHex("00 01 7F 80 FF")) {
      Bytes damaged = whole;
      damaged[at] = value;
      const std::optional<LoadOption> option = DecodeLoadOption(damaged);
      EXPECT_TRUE(!option || bytes::Utf16(option->paths.front().text)) << "no UTF-8";
    }
  }
}

// Load options of real machines, with the texts that an independent decoder gives.
TEST(LoadOption, OfRealMachinesHasTheExpectedText) {
  const char* const folder = std::getenv("MIRA_TEST_DATA");
  if (folder == nullptr) GTEST_SKIP() << "MIRA_TEST_DATA is not set";
  std::ifstream file(std::string(folder) + "/loadoptions.json");
  if (!file) GTEST_SKIP() << "no load options";
  const nlohmann::json options = nlohmann::json::parse(file);
  for (const auto& sample : options.at("samples")) {
    std::string text;
    for (const auto& [key, value] : sample.items()) {
      if (key.starts_with("text")) text = value.get<std::string>();
    }
    SCOPED_TRACE(text);
    const Bytes path = FromHex(sample.at("device_path_hex").get<std::string>());
    EXPECT_EQ(DevicePathToText(bytes::ByteSpan(path)), text);

    for (const Path& one : DecodePaths(path)) EXPECT_FALSE(one.problem) << one.text;

    // What stands behind the end of the path is no part of its text.
    const std::optional<Bytes> back = DevicePathFromText(text);
    ASSERT_TRUE(back);
    ASSERT_LE(back->size(), path.size());
    EXPECT_TRUE(std::equal(back->begin(), back->end(), path.begin()));

    if (!sample.contains("load_option_hex")) continue;
    const std::optional<LoadOption> option =
        DecodeLoadOption(FromHex(sample.at("load_option_hex").get<std::string>()));
    ASSERT_TRUE(option);
    EXPECT_EQ(option->paths.front().text, text);
    EXPECT_EQ(bytes::Utf8(option->description), sample.at("description").get<std::string>());
    EXPECT_EQ(option->attributes,
              std::stoul(sample.at("attributes").get<std::string>(), nullptr, 16));
    EXPECT_EQ(option->optional_data, FromHex(sample.value("optional_data_hex", "")));
    EXPECT_FALSE(option->variable_attributes);
    EXPECT_EQ(EncodeLoadOption(*option), FromHex(sample.at("load_option_hex").get<std::string>()));
  }
}

}  // namespace
}  // namespace mira::devicepath
