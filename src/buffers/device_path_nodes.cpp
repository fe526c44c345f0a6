#include "buffers/device_path_nodes.h"

#include <algorithm>
#include <concepts>
#include <type_traits>
#include <utility>

#include "bytes/writer.h"

namespace mira::boot {
namespace {

using bytes::ByteSpan;
using bytes::Reader;
using L = CUEFILOList;
using Bytes = CUEFILOList::Bytes;
using Node = CUEFILOList::GenericDevicePath;

// How a field of a record is read from the rest of its node, and written behind what stands there.

template <std::unsigned_integral T>
void Get(Reader& in, T& field) {
  field = static_cast<T>(in.Number(sizeof(T)));
}
template <std::unsigned_integral T>
void Put(Bytes& out, T field) {
  out.resize(out.size() + sizeof(T));
  bytes::Writer(out, out.size() - sizeof(T)).Number(field, sizeof(T));
}

template <std::size_t kSize>
void Get(Reader& in, std::array<std::uint8_t, kSize>& field) {
  const ByteSpan taken = in.Take(kSize);
  std::copy(taken.begin(), taken.end(), field.begin());
}
template <std::size_t kSize>
void Put(Bytes& out, const std::array<std::uint8_t, kSize>& field) {
  out.insert(out.end(), field.begin(), field.end());
}

void Get(Reader& in, Bytes& field) {
  const ByteSpan rest = in.Rest();
  field.assign(rest.begin(), rest.end());
}
void Put(Bytes& out, const Bytes& field) { out.insert(out.end(), field.begin(), field.end()); }

void Get(Reader& in, std::vector<L::IPv6Address>& field) {
  while (in.Left() >= sizeof(L::IPv6Address)) Get(in, field.emplace_back());
}
void Put(Bytes& out, const std::vector<L::IPv6Address>& field) {
  for (const L::IPv6Address& address : field) Put(out, address);
}

void Get(Reader& in, std::string& field) { field = TakeText(in); }
void Put(Bytes& out, const std::string& field) {
  out.insert(out.end(), field.begin(), field.end());
  out.push_back(0);
}

void Get(Reader& in, std::u16string& field) { field = TakeWideText(in); }
void Put(Bytes& out, const std::u16string& field) {
  for (const char16_t unit : field) Put(out, static_cast<std::uint16_t>(unit));
  Put(out, std::uint16_t{0});
}

// The bytes that a node has at least for a field of this type: none, where the field takes what is
// left.
template <typename T>
inline constexpr std::size_t kFixedSize = std::is_class_v<T> ? 0 : sizeof(T);
template <std::size_t kSize>
inline constexpr std::size_t kFixedSize<std::array<std::uint8_t, kSize>> = kSize;

template <typename Record, auto... kFields>
std::unique_ptr<Node> Read(Reader& in) {
  auto record = std::make_unique<Record>();
  (Get(in, (*record).*kFields), ...);
  return record;
}

template <typename Record, auto... kFields>
void Write(const Node& node, Bytes& out) {
  const auto* const record = dynamic_cast<const Record*>(&node);
  if (record != nullptr) (Put(out, (*record).*kFields), ...);
}

struct NodeType {
  std::uint8_t type;
  std::uint8_t subtype;
  std::size_t shortest;
  std::size_t older;  // the size of an older form, which ends earlier
  std::unique_ptr<Node> (*read)(Reader& in);
  void (*write)(const Node& record, Bytes& out);
};

// A node type: its numbers, its record, and the record's fields in the order of the node's bytes.
template <typename Record, auto... kFields>
constexpr NodeType Type(std::uint8_t type, std::uint8_t subtype) {
  constexpr std::size_t kShortest =
      kNodeHeader + (0 + ... + kFixedSize<std::decay_t<decltype(Record().*kFields)>>);
  return {type, subtype, kShortest, kShortest, Read<Record, kFields...>, Write<Record, kFields...>};
}

// What the older form lacks is zero.
constexpr NodeType OrOlder(std::size_t older, NodeType type) {
  type.older = older;
  return type;
}

constexpr NodeType kNodeTypes[] = {
    Type<L::PCIDevicePath, &L::PCIDevicePath::Function, &L::PCIDevicePath::Device>(1, 1),
    Type<L::PCCardDevicePath, &L::PCCardDevicePath::Function>(1, 2),
    Type<L::MemeoryMappedDevicePath, &L::MemeoryMappedDevicePath::MemoryType,
         &L::MemeoryMappedDevicePath::StartingAddress, &L::MemeoryMappedDevicePath::EndingAddress>(
        1, 3),
    Type<L::VendorDefinedDevicePath, &L::VendorDefinedDevicePath::VendorGuid,
         &L::VendorDefinedDevicePath::Data>(1, 4),
    Type<L::ControllerDevicePath, &L::ControllerDevicePath::ControllerNumber>(1, 5),
    Type<L::BMCDevicePath, &L::BMCDevicePath::InterfaceType, &L::BMCDevicePath::BaseAddress>(1, 6),

    Type<L::ACPIDevicePath, &L::ACPIDevicePath::HID, &L::ACPIDevicePath::UID>(2, 1),
    Type<L::ExACPIDevicePath, &L::ExACPIDevicePath::HID, &L::ExACPIDevicePath::UID,
         &L::ExACPIDevicePath::CID, &L::ExACPIDevicePath::HIDSTR, &L::ExACPIDevicePath::UIDSTR,
         &L::ExACPIDevicePath::CIDSTR>(2, 2),
    Type<L::ACPIADRDevicePath, &L::ACPIADRDevicePath::ADR, &L::ACPIADRDevicePath::AdditionalADR>(2,
                                                                                                 3),

    Type<L::ATAPIDevicePath, &L::ATAPIDevicePath::PrimarySecondary,
         &L::ATAPIDevicePath::SlaveMaster, &L::ATAPIDevicePath::Lun>(3, 1),
    Type<L::SCSIDevicePath, &L::SCSIDevicePath::Pun, &L::SCSIDevicePath::Lun>(3, 2),
    Type<L::FibreChannelDevicePath, &L::FibreChannelDevicePath::Reserved,
         &L::FibreChannelDevicePath::WWN, &L::FibreChannelDevicePath::Lun>(3, 3),
    Type<L::I1394DevicePath, &L::I1394DevicePath::Reserved, &L::I1394DevicePath::NodeGuid>(3, 4),
    Type<L::USBDevicePath, &L::USBDevicePath::ParentPortNumber, &L::USBDevicePath::InterfaceNumber>(
        3, 5),
    Type<L::I2ODevicePath, &L::I2ODevicePath::Tid>(3, 6),
    Type<L::InfiniBandDevicePath, &L::InfiniBandDevicePath::ResourceFlags,
         &L::InfiniBandDevicePath::PortGid, &L::InfiniBandDevicePath::ServiceId,
         &L::InfiniBandDevicePath::TargetPortId, &L::InfiniBandDevicePath::DeviceId>(3, 9),
    Type<L::VendorDefinedDevicePath, &L::VendorDefinedDevicePath::VendorGuid,
         &L::VendorDefinedDevicePath::Data>(3, 10),
    Type<L::MACAddressDevicePath, &L::MACAddressDevicePath::MacAddress,
         &L::MACAddressDevicePath::IfType>(3, 11),
    OrOlder(19, Type<L::IPv4DevicePath, &L::IPv4DevicePath::LocalIpAddress,
                     &L::IPv4DevicePath::RemoteIpAddress, &L::IPv4DevicePath::LocalPort,
                     &L::IPv4DevicePath::RemotePort, &L::IPv4DevicePath::Protocol,
                     &L::IPv4DevicePath::StaticIpAddress, &L::IPv4DevicePath::GatewayIpAddress,
                     &L::IPv4DevicePath::SubnetMask>(3, 12)),
    OrOlder(43, Type<L::IPv6DevicePath, &L::IPv6DevicePath::LocalIpAddress,
                     &L::IPv6DevicePath::RemoteIpAddress, &L::IPv6DevicePath::LocalPort,
                     &L::IPv6DevicePath::RemotePort, &L::IPv6DevicePath::Protocol,
                     &L::IPv6DevicePath::IpAddressOrigin, &L::IPv6DevicePath::PrefixLength,
                     &L::IPv6DevicePath::GatewayIpAddress>(3, 13)),
    Type<L::UARTDevicePath, &L::UARTDevicePath::Reserved, &L::UARTDevicePath::BaudRate,
         &L::UARTDevicePath::DataBits, &L::UARTDevicePath::Parity, &L::UARTDevicePath::StopBits>(
        3, 14),
    Type<L::USBClassDevicePath, &L::USBClassDevicePath::VendorId, &L::USBClassDevicePath::ProductId,
         &L::USBClassDevicePath::DeviceClass, &L::USBClassDevicePath::DeviceSubClass,
         &L::USBClassDevicePath::DeviceProtocol>(3, 15),
    Type<L::USBWWIDDevicePath, &L::USBWWIDDevicePath::InterfaceNumber,
         &L::USBWWIDDevicePath::VendorId, &L::USBWWIDDevicePath::ProductId,
         &L::USBWWIDDevicePath::SerialNumber>(3, 16),
    Type<L::DeviceLogicalUnitDevicePath, &L::DeviceLogicalUnitDevicePath::Lun>(3, 17),
    Type<L::SATADevicePath, &L::SATADevicePath::HBAPortNumber,
         &L::SATADevicePath::PortMultiplierPortNumber, &L::SATADevicePath::Lun>(3, 18),
    Type<L::iSCSIDevicePath, &L::iSCSIDevicePath::NetworkProtocol, &L::iSCSIDevicePath::LoginOption,
         &L::iSCSIDevicePath::Lun, &L::iSCSIDevicePath::TargetPortalGroupTag,
         &L::iSCSIDevicePath::TargetName>(3, 19),
    Type<L::VLANDevicePath, &L::VLANDevicePath::VlanId>(3, 20),
    Type<L::FibreChannelDevicePath, &L::FibreChannelDevicePath::Reserved,
         &L::FibreChannelDevicePath::WWN, &L::FibreChannelDevicePath::Lun>(3, 21),
    Type<L::SASExDevicePath, &L::SASExDevicePath::SasAddress, &L::SASExDevicePath::Lun,
         &L::SASExDevicePath::DeviceTopology, &L::SASExDevicePath::RelativeTargetPort>(3, 22),
    Type<L::NVMExpNamespaceDevicePath, &L::NVMExpNamespaceDevicePath::NamespaceId,
         &L::NVMExpNamespaceDevicePath::NamespaceUuid>(3, 23),
    Type<L::URIDevicePath, &L::URIDevicePath::Uri>(3, 24),
    Type<L::UFSDevicePath, &L::UFSDevicePath::Pun, &L::UFSDevicePath::Lun>(3, 25),
    Type<L::SecureDigitalDevicePath, &L::SecureDigitalDevicePath::SlotNumber>(3, 26),
    Type<L::BluetoothDevicePath, &L::BluetoothDevicePath::DeviceAddress>(3, 27),
    Type<L::WirelessDevicePath, &L::WirelessDevicePath::SSId>(3, 28),
    Type<L::eMMCDevicePath, &L::eMMCDevicePath::SlotNumber>(3, 29),
    Type<L::EFIBluetoothLEDevicePath, &L::EFIBluetoothLEDevicePath::DeviceAddress,
         &L::EFIBluetoothLEDevicePath::AddressType>(3, 30),
    Type<L::DNSDevicePath, &L::DNSDevicePath::IsIPv6, &L::DNSDevicePath::DnsServerIp>(3, 31),

    Type<L::HDDMediaDevicePath, &L::HDDMediaDevicePath::PartitionNumber,
         &L::HDDMediaDevicePath::PartitionStart, &L::HDDMediaDevicePath::PartitionSize,
         &L::HDDMediaDevicePath::Signature, &L::HDDMediaDevicePath::MBRType,
         &L::HDDMediaDevicePath::SignatureType>(4, 1),
    Type<L::CDROMMediaDevicePath, &L::CDROMMediaDevicePath::BootEntry,
         &L::CDROMMediaDevicePath::PartitionStart, &L::CDROMMediaDevicePath::PartitionSize>(4, 2),
    Type<L::VendorDefinedDevicePath, &L::VendorDefinedDevicePath::VendorGuid,
         &L::VendorDefinedDevicePath::Data>(4, 3),
    Type<L::FilePathMediaDevicePath, &L::FilePathMediaDevicePath::PathName>(4, 4),
    Type<L::MediaProtocolMediaDevicePath, &L::MediaProtocolMediaDevicePath::Protocol>(4, 5),
    Type<L::PIWGFirmwareFileDevicePath, &L::PIWGFirmwareFileDevicePath::Name>(4, 6),
    Type<L::PIWGFirmwareFileDevicePath, &L::PIWGFirmwareFileDevicePath::Name>(4, 7),
    Type<L::RelativeOffsetRange, &L::RelativeOffsetRange::Reserved,
         &L::RelativeOffsetRange::StartingOffset, &L::RelativeOffsetRange::EndingOffset>(4, 8),
    Type<L::RAMDiskDevicePath, &L::RAMDiskDevicePath::StartingAddr,
         &L::RAMDiskDevicePath::EndingAddr, &L::RAMDiskDevicePath::TypeGuid,
         &L::RAMDiskDevicePath::Instance>(4, 9),

    Type<L::BIOSBootSpecDevicePath, &L::BIOSBootSpecDevicePath::DeviceType,
         &L::BIOSBootSpecDevicePath::StatusFlag, &L::BIOSBootSpecDevicePath::Description>(5, 1),
};

const NodeType* FindType(std::uint8_t type, std::uint8_t subtype) {
  const NodeType* const found =
      std::find_if(std::begin(kNodeTypes), std::end(kNodeTypes),
                   [&](const NodeType& row) { return row.type == type && row.subtype == subtype; });
  return found == std::end(kNodeTypes) ? nullptr : found;
}

std::unique_ptr<Node> DecodeNode(const RawNode& node) {
  const NodeType* const type = FindType(node.type, node.subtype);
  if (type == nullptr) return nullptr;
  const std::size_t size = node.bytes.size();
  if (size < type->shortest && size != type->older) return nullptr;
  Reader in(node.bytes, kNodeHeader);
  std::unique_ptr<Node> record = type->read(in);
  record->Type = node.type;
  record->SubType = node.subtype;
  record->Length = static_cast<std::uint16_t>(node.bytes.size());
  return record;
}

}  // namespace

std::string TakeText(Reader& in) {
  const std::string_view rest = bytes::AsText(Reader(in).Rest());
  const std::size_t length = std::min(rest.find('\0'), rest.size());
  in.Take(std::min(length + 1, rest.size()));
  return std::string(rest.substr(0, length));
}

std::u16string TakeWideText(Reader& in, bool* terminated) {
  std::u16string text;
  bool ended = false;
  while (!ended && in.Left() >= sizeof(char16_t)) {
    const char16_t unit = in.U16();
    ended = unit == 0;
    if (!ended) text += unit;
  }
  if (terminated != nullptr) *terminated = ended;
  return text;
}

std::optional<RawNode> NextNode(Reader& in) {
  Reader header = in;
  RawNode node{header.U8(), header.U8(), {}};
  const std::size_t length = header.U16();
  if (!header.Ok() || length < kNodeHeader || length > in.Left()) return std::nullopt;
  node.bytes = in.Take(length);
  return node;
}

CUEFILOList::DevicePath DecodeDevicePath(ByteSpan path) {
  CUEFILOList::DevicePath records;
  Reader in(path);
  while (const std::optional<RawNode> node = NextNode(in)) {
    if (node->type == kEndType || node->subtype == kEndOfPath) break;
    std::unique_ptr<Node> record = DecodeNode(*node);
    if (!record) break;
    records.push_back(std::move(record));
  }
  return records;
}

bool IsDevicePath(ByteSpan path) {
  Reader in(path);
  while (const std::optional<RawNode> node = NextNode(in)) {
    if (node->type == kEndType) return true;
  }
  return false;
}

Bytes EncodeNode(const Node& record) {
  Bytes out;
  // A legacy entry's record has the fields of the boot specification's node, but its own numbers.
  if (const auto* const legacy = dynamic_cast<const L::LegacyFilePathList*>(&record)) {
    L::BIOSBootSpecDevicePath node;
    node.Type = 5;
    node.SubType = 1;
    node.DeviceType = legacy->DeviceType;
    node.StatusFlag = legacy->StatusFlag;
    node.Description = legacy->Description;
    return EncodeNode(node);
  }
  Put(out, record.Type);
  Put(out, record.SubType);
  Put(out, record.Length);
  if (const NodeType* const type = FindType(record.Type, record.SubType)) type->write(record, out);
  if (record.Length >= kNodeHeader && record.Length < out.size()) out.resize(record.Length);
  return out;
}

}  // namespace mira::boot
