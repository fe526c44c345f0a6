#ifndef MIRA_DEVICEPATH_NODE_TABLE_H_
#define MIRA_DEVICEPATH_NODE_TABLE_H_

// The node types of device paths (UEFI specification, 10.3), by type and subtype: name, fields with
// their offsets, and how a text shows them (10.6). What has several texts is in forms.cpp.

#include "devicepath/field.h"

namespace mira::devicepath::table {

using R = NodeRecords;

inline constexpr Name kChannels[] = {{0, "Primary"}, {1, "Secondary"}};
inline constexpr Name kDrives[] = {{0, "Master"}, {1, "Slave"}};
inline constexpr Name kProtocols[] = {{6, "TCP"}, {17, "UDP"}};
inline constexpr Name kAddressKinds[] = {{0, "DHCP"}, {1, "Static"}};
inline constexpr Name kOrigins[] = {
    {0, "Static"}, {1, "StatelessAutoConfigure"}, {2, "StatefulAutoConfigure"}};
inline constexpr Name kDefault[] = {{0, "DEFAULT"}};
inline constexpr Name kParities[] = {{0, "D"}, {1, "N"}, {2, "E"}, {3, "O"}, {4, "M"}, {5, "S"}};
inline constexpr Name kStopBits[] = {{0, "D"}, {1, "1"}, {2, "1.5"}, {3, "2"}};
inline constexpr Name kIscsiProtocols[] = {{0, "TCP"}, {1, "reserved"}};
inline constexpr Name kBootDevices[] = {{1, "Floppy"}, {2, "HD"},  {3, "CDROM"},
                                        {4, "PCMCIA"}, {5, "USB"}, {6, "Network"}};

constexpr Arg NumberOrDefault(const char* fallback) {
  Arg arg = Named(kDefault, fallback);
  arg.notation = &kNamedDecimal;
  return arg;
}
inline constexpr Arg kData = Hidden(Rest(kRestBytes));
inline constexpr Arg kNoAddress4 = Or(kIpv4, "0.0.0.0");
inline constexpr Arg kNoAddress6 = Or(kIpv6, "::");
constexpr Arg Topology() {
  Arg arg = Or(kSasTopology, "NoTopology");
  arg.parts = 4;
  return arg;
}

// clang-format off
inline constexpr NodeType kNodeTypes[] = {
    Node<R::PCIDevicePath>({1, 1, "Pci",
        {F<&R::PCIDevicePath::Function>(4, kHex),
         F<&R::PCIDevicePath::Device>(5, kHex)},
        {5, 4}}),
    Node<R::PCCardDevicePath>({1, 2, "PcCard",
        {F<&R::PCCardDevicePath::Function>(4, kHex)}}),
    Node<R::MemeoryMappedDevicePath>({1, 3, "MemoryMapped",
        {F<&R::MemeoryMappedDevicePath::MemoryType>(4, kHex),
         F<&R::MemeoryMappedDevicePath::StartingAddress>(8, kHex),
         F<&R::MemeoryMappedDevicePath::EndingAddress>(16, kHex)}}),
    Node<R::VendorDefinedDevicePath>({1, 4, "VenHw",
        {F<&R::VendorDefinedDevicePath::VendorGuid>(4, kGuid),
         F<&R::VendorDefinedDevicePath::Data>(20, kData)}}),
    Node<R::ControllerDevicePath>({1, 5, "Ctrl",
        {F<&R::ControllerDevicePath::ControllerNumber>(4, kHex)}}),
    Node<R::BMCDevicePath>({1, 6, "BMC",
        {F<&R::BMCDevicePath::InterfaceType>(4, kHex),
         F<&R::BMCDevicePath::BaseAddress>(5, kHex)}}),

    Node<R::ACPIDevicePath>({2, 1, "Acpi",
        {F<&R::ACPIDevicePath::HID>(4, kHid),
         F<&R::ACPIDevicePath::UID>(8, Or(kHex, "0"))}}),
    Node<R::ExACPIDevicePath>({2, 2, kNoPlainForm,
        {F<&R::ExACPIDevicePath::HID>(4, kEisa),
         F<&R::ExACPIDevicePath::UID>(8, Or(kHex, "0")),
         F<&R::ExACPIDevicePath::CID>(12, Or(kEisa, "0")),
         F<&R::ExACPIDevicePath::HIDSTR>(16, Or(Rest(kAcpiTexts), "")),
         F<&R::ExACPIDevicePath::UIDSTR>(16),
         F<&R::ExACPIDevicePath::CIDSTR>(16)}}),
    Node<R::ACPIADRDevicePath>({2, 3, "AcpiAdr",
        {F<&R::ACPIADRDevicePath::ADR>(4, kHex),
         F<&R::ACPIADRDevicePath::AdditionalADR>(8, Hidden(List(kHexList, 4)))}}),

    Node<R::ATAPIDevicePath>({3, 1, "Ata",
        {F<&R::ATAPIDevicePath::PrimarySecondary>(4, Named(kChannels)),
         F<&R::ATAPIDevicePath::SlaveMaster>(5, Named(kDrives)),
         F<&R::ATAPIDevicePath::Lun>(6, kHex)}}),
    Node<R::SCSIDevicePath>({3, 2, "Scsi",
        {F<&R::SCSIDevicePath::Pun>(4, kHex),
         F<&R::SCSIDevicePath::Lun>(6, kHex)}}),
    Node<R::FibreChannelDevicePath>({3, 3, "Fibre",
        {F<&R::FibreChannelDevicePath::Reserved>(4),
         F<&R::FibreChannelDevicePath::WWN>(8, kHex),
         F<&R::FibreChannelDevicePath::Lun>(16, Or(kHex, "0"))}}),
    Node<R::I1394DevicePath>({3, 4, "I1394",
        {F<&R::I1394DevicePath::Reserved>(4),
         F<&R::I1394DevicePath::NodeGuid>(8, kDigits16)}}),
    Node<R::USBDevicePath>({3, 5, "USB",
        {F<&R::USBDevicePath::ParentPortNumber>(4, kHex),
         F<&R::USBDevicePath::InterfaceNumber>(5, kHex)}}),
    Node<R::I2ODevicePath>({3, 6, "I2O",
        {F<&R::I2ODevicePath::Tid>(4, kHex)}}),
    Node<R::InfiniBandDevicePath>({3, 9, "Infiniband",
        {F<&R::InfiniBandDevicePath::ResourceFlags>(4, kHex),
         F<&R::InfiniBandDevicePath::PortGid>(8, kGuid),
         F<&R::InfiniBandDevicePath::ServiceId>(24, kHex),
         F<&R::InfiniBandDevicePath::TargetPortId>(32, kHex),
         F<&R::InfiniBandDevicePath::DeviceId>(40, kHex)}}),
    Node<R::VendorDefinedDevicePath>({3, 10, "VenMsg",
        {F<&R::VendorDefinedDevicePath::VendorGuid>(4, kGuid),
         F<&R::VendorDefinedDevicePath::Data>(20, kData)}}),
    Node<R::MACAddressDevicePath>({3, 11, "MAC",
        {F<&R::MACAddressDevicePath::MacAddress>(4, kMac),
         F<&R::MACAddressDevicePath::IfType>(36, Or(kHex, "0"))}}),
    Node<R::IPv4DevicePath>({3, 12, "IPv4",
        {F<&R::IPv4DevicePath::LocalIpAddress>(4, kNoAddress4),
         F<&R::IPv4DevicePath::RemoteIpAddress>(8, kIpv4),
         F<&R::IPv4DevicePath::LocalPort>(12),
         F<&R::IPv4DevicePath::RemotePort>(14),
         F<&R::IPv4DevicePath::Protocol>(16, Named(kProtocols, "UDP")),
         F<&R::IPv4DevicePath::StaticIpAddress>(18, Named(kAddressKinds, "DHCP")),
         F<&R::IPv4DevicePath::GatewayIpAddress>(19, kNoAddress4),
         F<&R::IPv4DevicePath::SubnetMask>(23, kNoAddress4)},
        {8, 16, 18, 4, 19, 23}, 19}),
    Node<R::IPv6DevicePath>({3, 13, "IPv6",
        {F<&R::IPv6DevicePath::LocalIpAddress>(4, kNoAddress6),
         F<&R::IPv6DevicePath::RemoteIpAddress>(20, kIpv6),
         F<&R::IPv6DevicePath::LocalPort>(36),
         F<&R::IPv6DevicePath::RemotePort>(38),
         F<&R::IPv6DevicePath::Protocol>(40, Named(kProtocols, "UDP")),
         F<&R::IPv6DevicePath::IpAddressOrigin>(42, Named(kOrigins, "Static")),
         F<&R::IPv6DevicePath::PrefixLength>(43, Or(kHex, "0")),
         F<&R::IPv6DevicePath::GatewayIpAddress>(44, kNoAddress6)},
        {20, 40, 42, 4, 43, 44}, 43}),
    Node<R::UARTDevicePath>({3, 14, "Uart",
        {F<&R::UARTDevicePath::Reserved>(4),
         F<&R::UARTDevicePath::BaudRate>(8, NumberOrDefault("115200")),
         F<&R::UARTDevicePath::DataBits>(16, NumberOrDefault("8")),
         F<&R::UARTDevicePath::Parity>(17, Named(kParities, "D")),
         F<&R::UARTDevicePath::StopBits>(18, Named(kStopBits, "D"))}}),
    Node<R::USBClassDevicePath>({3, 15, "UsbClass",
        {F<&R::USBClassDevicePath::VendorId>(4, Or(kHex, "0xFFFF")),
         F<&R::USBClassDevicePath::ProductId>(6, Or(kHex, "0xFFFF")),
         F<&R::USBClassDevicePath::DeviceClass>(8, Or(kHex, "0xFF")),
         F<&R::USBClassDevicePath::DeviceSubClass>(9, Or(kHex, "0xFF")),
         F<&R::USBClassDevicePath::DeviceProtocol>(10, Or(kHex, "0xFF"))}}),
    Node<R::USBWWIDDevicePath>({3, 16, "UsbWwid",
        {F<&R::USBWWIDDevicePath::InterfaceNumber>(4, kHex),
         F<&R::USBWWIDDevicePath::VendorId>(6, kHex),
         F<&R::USBWWIDDevicePath::ProductId>(8, kHex),
         F<&R::USBWWIDDevicePath::SerialNumber>(10, Rest(kQuoted))},
        {6, 8, 4, 10}}),
    Node<R::DeviceLogicalUnitDevicePath>({3, 17, "Unit",
        {F<&R::DeviceLogicalUnitDevicePath::Lun>(4, kHex)}}),
    Node<R::SATADevicePath>({3, 18, "Sata",
        {F<&R::SATADevicePath::HBAPortNumber>(4, kHex),
         F<&R::SATADevicePath::PortMultiplierPortNumber>(6, Or(kHex, "0xFFFF")),
         F<&R::SATADevicePath::Lun>(8, Or(kHex, "0"))}}),
    Node<R::iSCSIDevicePath>({3, 19, kNoPlainForm,
        {F<&R::iSCSIDevicePath::NetworkProtocol>(4, Named(kIscsiProtocols, "TCP")),
         F<&R::iSCSIDevicePath::LoginOption>(6),
         F<&R::iSCSIDevicePath::Lun>(8, Or(kPrefixedBytes, "0")),
         F<&R::iSCSIDevicePath::TargetPortalGroupTag>(16, Or(kHex, "0")),
         F<&R::iSCSIDevicePath::TargetName>(18, Rest(kText))}}),
    Node<R::VLANDevicePath>({3, 20, "Vlan",
        {F<&R::VLANDevicePath::VlanId>(4, kDecimal)}}),
    Node<R::FibreChannelDevicePath>({3, 21, "FibreEx",
        {F<&R::FibreChannelDevicePath::Reserved>(4),
         F<&R::FibreChannelDevicePath::WWN>(8, kPrefixedBytes),
         F<&R::FibreChannelDevicePath::Lun>(16, Or(kPrefixedBytes, "0"))}}),
    Node<R::SASExDevicePath>({3, 22, "SasEx",
        {F<&R::SASExDevicePath::SasAddress>(4, kPrefixedBytes),
         F<&R::SASExDevicePath::Lun>(12, Or(kPrefixedBytes, "0")),
         F<&R::SASExDevicePath::DeviceTopology>(20, Topology()),
         F<&R::SASExDevicePath::RelativeTargetPort>(22, Or(kHex, "0"))},
        {4, 12, 22, 20}}),
    Node<R::NVMExpNamespaceDevicePath>({3, 23, "NVMe",
        {F<&R::NVMExpNamespaceDevicePath::NamespaceId>(4, kHex),
         F<&R::NVMExpNamespaceDevicePath::NamespaceUuid>(8, kDashedBytes)}}),
    Node<R::URIDevicePath>({3, 24, "Uri",
        {F<&R::URIDevicePath::Uri>(4, Rest(kText))}}),
    Node<R::UFSDevicePath>({3, 25, "UFS",
        {F<&R::UFSDevicePath::Pun>(4, kHex),
         F<&R::UFSDevicePath::Lun>(5, kHex)}}),
    Node<R::SecureDigitalDevicePath>({3, 26, "SD",
        {F<&R::SecureDigitalDevicePath::SlotNumber>(4, kHex)}}),
    Node<R::BluetoothDevicePath>({3, 27, "Bluetooth",
        {F<&R::BluetoothDevicePath::DeviceAddress>(4, kBytes)}}),
    Node<R::WirelessDevicePath>({3, 28, "Wi-Fi",
        {F<&R::WirelessDevicePath::SSId>(4, Rest(kFixedText))}}),
    Node<R::eMMCDevicePath>({3, 29, "eMMC",
        {F<&R::eMMCDevicePath::SlotNumber>(4, kHex)}}),
    Node<R::EFIBluetoothLEDevicePath>({3, 30, "BluetoothLE",
        {F<&R::EFIBluetoothLEDevicePath::DeviceAddress>(4, kBytes),
         F<&R::EFIBluetoothLEDevicePath::AddressType>(10, kHex2)}}),
    Node<R::DNSDevicePath>({3, 31, kNoPlainForm,
        {F<&R::DNSDevicePath::IsIPv6>(4),
         F<&R::DNSDevicePath::DnsServerIp>(5, List(kIpv6List, 16))}}),
    TextNode({3, 32, "NVDIMM",
        {Plain(4, 16, kGuid)}}),
    TextNode({3, 33, kNoPlainForm,
        {Plain(4, 1, kHex),
         Plain(5, 1, kHex),
         Plain(6, 16, kGuid),
         Plain(22, 0, kData)}}),

    Node<R::HDDMediaDevicePath>({4, 1, kNoPlainForm,
        {F<&R::HDDMediaDevicePath::PartitionNumber>(4, kDecimal),
         F<&R::HDDMediaDevicePath::PartitionStart>(8, Or(kHex, "0")),
         F<&R::HDDMediaDevicePath::PartitionSize>(16, Or(kHex, "0")),
         F<&R::HDDMediaDevicePath::Signature>(24, kGuid),
         F<&R::HDDMediaDevicePath::MBRType>(40),
         F<&R::HDDMediaDevicePath::SignatureType>(41, kDecimal)}}),
    Node<R::CDROMMediaDevicePath>({4, 2, "CDROM",
        {F<&R::CDROMMediaDevicePath::BootEntry>(4, kHex),
         F<&R::CDROMMediaDevicePath::PartitionStart>(8, Or(kHex, "0")),
         F<&R::CDROMMediaDevicePath::PartitionSize>(16, Or(kHex, "0"))}}),
    Node<R::VendorDefinedDevicePath>({4, 3, "VenMedia",
        {F<&R::VendorDefinedDevicePath::VendorGuid>(4, kGuid),
         F<&R::VendorDefinedDevicePath::Data>(20, kData)}}),
    Node<R::FilePathMediaDevicePath>({4, 4, "",
        {F<&R::FilePathMediaDevicePath::PathName>(4, Rest(kWideText))}}),
    Node<R::MediaProtocolMediaDevicePath>({4, 5, "Media",
        {F<&R::MediaProtocolMediaDevicePath::Protocol>(4, kGuid)}}),
    Node<R::PIWGFirmwareFileDevicePath>({4, 6, "FvFile",
        {F<&R::PIWGFirmwareFileDevicePath::Name>(4, kGuid)}}),
    Node<R::PIWGFirmwareFileDevicePath>({4, 7, "Fv",
        {F<&R::PIWGFirmwareFileDevicePath::Name>(4, kGuid)}}),
    Node<R::RelativeOffsetRange>({4, 8, "Offset",
        {F<&R::RelativeOffsetRange::Reserved>(4),
         F<&R::RelativeOffsetRange::StartingOffset>(8, kHex),
         F<&R::RelativeOffsetRange::EndingOffset>(16, kHex)}}),
    Node<R::RAMDiskDevicePath>({4, 9, "RamDisk",
        {F<&R::RAMDiskDevicePath::StartingAddr>(4, kHex),
         F<&R::RAMDiskDevicePath::EndingAddr>(12, kHex),
         F<&R::RAMDiskDevicePath::TypeGuid>(20, kGuid),
         F<&R::RAMDiskDevicePath::Instance>(36, Or(kDecimal, "0"))},
        {4, 12, 36, 20}}),

    Node<R::BIOSBootSpecDevicePath>({5, 1, "BBS",
        {F<&R::BIOSBootSpecDevicePath::DeviceType>(4, Named(kBootDevices)),
         F<&R::BIOSBootSpecDevicePath::StatusFlag>(6, Or(kHex, "0")),
         F<&R::BIOSBootSpecDevicePath::Description>(8, Rest(kTextWithNul))},
        {4, 8, 6}}),
};
// clang-format on

}  // namespace mira::devicepath::table

#endif  // MIRA_DEVICEPATH_NODE_TABLE_H_
