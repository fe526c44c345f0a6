#ifndef MIRA_DEVICEPATH_RECORDS_H_
#define MIRA_DEVICEPATH_RECORDS_H_

// The nodes of UEFI device paths as records, one type per node type. CUEFILOList inherits their
// names, so that hosts write CUEFILOList::PCIDevicePath.

#include <array>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include "platform/api.h"

namespace mira::devicepath {

struct NodeRecords {
  using Guid = std::array<std::uint8_t, 16>;  // as it lies in memory
  using IPv4Address = std::array<std::uint8_t, 4>;
  using IPv6Address = std::array<std::uint8_t, 16>;
  using Bytes = std::vector<std::uint8_t>;

  // A node of a device path: its header. Each record below adds its node's fields in the order and
  // with the names of the UEFI specification.
  struct MIRA_API GenericDevicePath {
    GenericDevicePath() = default;
    GenericDevicePath(const GenericDevicePath&) = default;
    GenericDevicePath& operator=(const GenericDevicePath&) = default;
    virtual ~GenericDevicePath();

    std::uint8_t Type = 0;
    std::uint8_t SubType = 0;
    std::uint16_t Length = 0;
  };

  // Hardware (type 1).
  struct PCCardDevicePath : GenericDevicePath {
    std::uint8_t Function = 0;
  };
  struct PCIDevicePath : PCCardDevicePath {
    std::uint8_t Device = 0;
  };
  struct MemeoryMappedDevicePath : GenericDevicePath {
    std::uint32_t MemoryType = 0;
    std::uint64_t StartingAddress = 0;
    std::uint64_t EndingAddress = 0;
  };
  // Of hardware, messaging and media.
  struct VendorDefinedDevicePath : GenericDevicePath {
    Guid VendorGuid{};
    Bytes Data;
  };
  struct ControllerDevicePath : GenericDevicePath {
    std::uint32_t ControllerNumber = 0;
  };
  struct BMCDevicePath : GenericDevicePath {
    std::uint8_t InterfaceType = 0;
    std::uint64_t BaseAddress = 0;
  };

  // ACPI (type 2).
  struct ACPIDevicePath : GenericDevicePath {
    std::uint32_t HID = 0;
    std::uint32_t UID = 0;
  };
  struct ExACPIDevicePath : ACPIDevicePath {
    std::uint32_t CID = 0;
    std::string HIDSTR;
    std::string UIDSTR;
    std::string CIDSTR;
  };
  struct ACPIADRDevicePath : GenericDevicePath {
    std::uint32_t ADR = 0;
    Bytes AdditionalADR;
  };

  // Messaging (type 3).
  struct ATAPIDevicePath : GenericDevicePath {
    std::uint8_t PrimarySecondary = 0;
    std::uint8_t SlaveMaster = 0;
    std::uint16_t Lun = 0;
  };
  struct SCSIDevicePath : GenericDevicePath {
    std::uint16_t Pun = 0;
    std::uint16_t Lun = 0;
  };
  struct FibreChannelDevicePath : GenericDevicePath {
    std::uint32_t Reserved = 0;
    std::uint64_t WWN = 0;
    std::uint64_t Lun = 0;
  };
  struct I1394DevicePath : GenericDevicePath {
    std::uint32_t Reserved = 0;
    std::uint64_t NodeGuid = 0;
  };
  struct USBDevicePath : GenericDevicePath {
    std::uint8_t ParentPortNumber = 0;
    std::uint8_t InterfaceNumber = 0;
  };
  struct I2ODevicePath : GenericDevicePath {
    std::uint32_t Tid = 0;
  };
  struct InfiniBandDevicePath : GenericDevicePath {
    std::uint32_t ResourceFlags = 0;
    Guid PortGid{};
    std::uint64_t ServiceId = 0;
    std::uint64_t TargetPortId = 0;
    std::uint64_t DeviceId = 0;
  };
  struct MACAddressDevicePath : GenericDevicePath {
    std::array<std::uint8_t, 32> MacAddress{};
    std::uint8_t IfType = 0;
  };
  // The gateway and what follows are zero in nodes of the older, shorter form.
  struct IPv4DevicePath : GenericDevicePath {
    IPv4Address LocalIpAddress{};
    IPv4Address RemoteIpAddress{};
    std::uint16_t LocalPort = 0;
    std::uint16_t RemotePort = 0;
    std::uint16_t Protocol = 0;
    std::uint8_t StaticIpAddress = 0;
    IPv4Address GatewayIpAddress{};
    IPv4Address SubnetMask{};
  };
  // The prefix length and the gateway are zero in nodes of the older, shorter form.
  struct IPv6DevicePath : GenericDevicePath {
    IPv6Address LocalIpAddress{};
    IPv6Address RemoteIpAddress{};
    std::uint16_t LocalPort = 0;
    std::uint16_t RemotePort = 0;
    std::uint16_t Protocol = 0;
    std::uint8_t IpAddressOrigin = 0;
    std::uint8_t PrefixLength = 0;
    IPv6Address GatewayIpAddress{};
  };
  struct UARTDevicePath : GenericDevicePath {
    std::uint32_t Reserved = 0;
    std::uint64_t BaudRate = 0;
    std::uint8_t DataBits = 0;
    std::uint8_t Parity = 0;
    std::uint8_t StopBits = 0;
  };
  struct USBClassDevicePath : GenericDevicePath {
    std::uint16_t VendorId = 0;
    std::uint16_t ProductId = 0;
    std::uint8_t DeviceClass = 0;
    std::uint8_t DeviceSubClass = 0;
    std::uint8_t DeviceProtocol = 0;
  };
  struct USBWWIDDevicePath : GenericDevicePath {
    std::uint16_t InterfaceNumber = 0;
    std::uint16_t VendorId = 0;
    std::uint16_t ProductId = 0;
    std::u16string SerialNumber;
  };
  struct DeviceLogicalUnitDevicePath : GenericDevicePath {
    std::uint8_t Lun = 0;
  };
  struct SATADevicePath : GenericDevicePath {
    std::uint16_t HBAPortNumber = 0;
    std::uint16_t PortMultiplierPortNumber = 0;
    std::uint16_t Lun = 0;
  };
  struct iSCSIDevicePath : GenericDevicePath {
    std::uint16_t NetworkProtocol = 0;
    std::uint16_t LoginOption = 0;
    std::uint64_t Lun = 0;
    std::uint16_t TargetPortalGroupTag = 0;
    std::string TargetName;
  };
  struct VLANDevicePath : GenericDevicePath {
    std::uint16_t VlanId = 0;
  };
  struct SASExDevicePath : GenericDevicePath {
    std::array<std::uint8_t, 8> SasAddress{};
    std::array<std::uint8_t, 8> Lun{};
    std::uint16_t DeviceTopology = 0;
    std::uint16_t RelativeTargetPort = 0;
  };
  struct NVMExpNamespaceDevicePath : GenericDevicePath {
    std::uint32_t NamespaceId = 0;
    std::uint64_t NamespaceUuid = 0;
  };
  struct URIDevicePath : GenericDevicePath {
    std::string Uri;
  };
  struct UFSDevicePath : GenericDevicePath {
    std::uint8_t Pun = 0;
    std::uint8_t Lun = 0;
  };
  struct SecureDigitalDevicePath : GenericDevicePath {
    std::uint8_t SlotNumber = 0;
  };
  struct BluetoothDevicePath : GenericDevicePath {
    std::array<std::uint8_t, 6> DeviceAddress{};
  };
  struct WirelessDevicePath : GenericDevicePath {
    std::array<std::uint8_t, 32> SSId{};
  };
  struct eMMCDevicePath : GenericDevicePath {
    std::uint8_t SlotNumber = 0;
  };
  struct EFIBluetoothLEDevicePath : BluetoothDevicePath {
    std::uint8_t AddressType = 0;
  };
  struct DNSDevicePath : GenericDevicePath {
    std::uint8_t IsIPv6 = 0;
    std::vector<IPv6Address> DnsServerIp;  // an IPv4 address stands in the first four bytes
  };

  // Media (type 4).
  struct HDDMediaDevicePath : GenericDevicePath {
    std::uint32_t PartitionNumber = 0;
    std::uint64_t PartitionStart = 0;
    std::uint64_t PartitionSize = 0;
    Guid Signature{};
    std::uint8_t MBRType = 0;
    std::uint8_t SignatureType = 0;
  };
  struct CDROMMediaDevicePath : GenericDevicePath {
    std::uint32_t BootEntry = 0;
    std::uint64_t PartitionStart = 0;
    std::uint64_t PartitionSize = 0;
  };
  struct FilePathMediaDevicePath : GenericDevicePath {
    std::u16string PathName;
  };
  struct MediaProtocolMediaDevicePath : GenericDevicePath {
    Guid Protocol{};
  };
  // A firmware file or a firmware volume.
  struct PIWGFirmwareFileDevicePath : GenericDevicePath {
    Guid Name{};
  };
  struct RelativeOffsetRange : GenericDevicePath {
    std::uint32_t Reserved = 0;
    std::uint64_t StartingOffset = 0;
    std::uint64_t EndingOffset = 0;
  };
  struct RAMDiskDevicePath : GenericDevicePath {
    std::uint64_t StartingAddr = 0;
    std::uint64_t EndingAddr = 0;
    Guid TypeGuid{};
    std::uint16_t Instance = 0;
  };

  // BIOS boot specification (type 5).
  struct BIOSBootSpecDevicePath : GenericDevicePath {
    std::uint16_t DeviceType = 0;
    std::uint16_t StatusFlag = 0;
    std::string Description;
  };
  // The entry of a legacy list; it has no length of its own.
  struct LegacyFilePathList : GenericDevicePath {
    std::uint16_t DeviceType = 0;
    std::uint16_t StatusFlag = 0;
    std::string Description;
  };

  using DevicePath = std::list<std::unique_ptr<GenericDevicePath>>;
};

}  // namespace mira::devicepath

#endif  // MIRA_DEVICEPATH_RECORDS_H_
