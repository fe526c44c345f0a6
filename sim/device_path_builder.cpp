#include "sim/device_path_builder.h"

#include <string>

#include "bytes/text.h"
#include "bytes/writer.h"

namespace mira::sim {
namespace {

enum Type : std::uint8_t { kHardware = 1, kAcpi, kMessaging, kMedia, kEnd = 0x7F };

constexpr std::uint32_t kPciRootHid = 0x0A0341D0;  // PNP0A03, compressed

}  // namespace

DevicePath& DevicePath::Begin(std::uint8_t type, std::uint8_t sub_type) {
  CloseNode();
  node_ = path_.size();
  return Number(type, 1).Number(sub_type, 1).Number(0, 2);
}

void DevicePath::CloseNode() {
  constexpr std::size_t kLength = 2;
  if (path_.empty()) return;
  const std::size_t length = path_.size() - node_;
  path_[node_ + kLength] = static_cast<std::uint8_t>(length);
  path_[node_ + kLength + 1] = static_cast<std::uint8_t>(length >> 8);
}

DevicePath& DevicePath::Number(std::uint64_t value, unsigned width) {
  bytes::Append(path_, value, width);
  return *this;
}

DevicePath& DevicePath::Bytes(bytes::ByteSpan bytes) {
  path_.insert(path_.end(), bytes.begin(), bytes.end());
  return *this;
}

// The first three groups of a GUID are little-endian numbers, the last two bytes as they stand.
DevicePath& DevicePath::GuidBytes(Guid guid) {
  struct Group {
    std::size_t digits;
    bool is_number;
  };
  constexpr Group kGroups[] = {{8, true}, {4, true}, {4, true}, {4, false}, {12, false}};
  for (const Group& group : kGroups) {
    const std::uint64_t value = bytes::ParseDigits(guid.substr(0, group.digits), 16).value();
    const auto width = static_cast<unsigned>(group.digits / 2);
    for (unsigned i = 0; i < width; ++i) {
      Number(value >> (8 * (group.is_number ? i : width - 1 - i)), 1);
    }
    guid.remove_prefix(guid.size() > group.digits ? group.digits + 1 : group.digits);
  }
  return *this;
}

DevicePath& DevicePath::PciRoot(std::uint32_t uid) {
  return Begin(kAcpi, 1).Number(kPciRootHid, 4).Number(uid, 4);
}

DevicePath& DevicePath::Pci(std::uint8_t device, std::uint8_t function) {
  return Begin(kHardware, 1).Number(function, 1).Number(device, 1);
}

DevicePath& DevicePath::VendorHardware(Guid guid, bytes::ByteSpan data) {
  return Begin(kHardware, 4).GuidBytes(guid).Bytes(data);
}

DevicePath& DevicePath::Usb(std::uint8_t port, std::uint8_t interface_number) {
  return Begin(kMessaging, 5).Number(port, 1).Number(interface_number, 1);
}

DevicePath& DevicePath::Sata(std::uint16_t port, std::uint16_t multiplier_port, std::uint16_t lun) {
  return Begin(kMessaging, 18).Number(port, 2).Number(multiplier_port, 2).Number(lun, 2);
}

DevicePath& DevicePath::NvmeNamespace(std::uint32_t id, std::uint64_t eui64) {
  return Begin(kMessaging, 23).Number(id, 4).Number(eui64, 8);
}

DevicePath& DevicePath::VendorMessaging(Guid guid, bytes::ByteSpan data) {
  return Begin(kMessaging, 10).GuidBytes(guid).Bytes(data);
}

DevicePath& DevicePath::Mac(const std::array<std::uint8_t, 6>& address,
                            std::uint8_t interface_type) {
  constexpr std::array<std::uint8_t, 26> kUnused{};  // the field has 32 bytes
  return Begin(kMessaging, 11).Bytes(address).Bytes(kUnused).Number(interface_type, 1);
}

DevicePath& DevicePath::Ipv4Address(const Ipv4& local, const Ipv4& remote, std::uint16_t protocol,
                                    bool is_static, const Ipv4& gateway, const Ipv4& subnet_mask) {
  return Begin(kMessaging, 12)
      .Bytes(local)
      .Bytes(remote)
      .Number(0, 2)  // local port
      .Number(0, 2)  // remote port
      .Number(protocol, 2)
      .Number(is_static ? 1 : 0, 1)
      .Bytes(gateway)
      .Bytes(subnet_mask);
}

DevicePath& DevicePath::Ipv6Address(const Ipv6& local, const Ipv6& remote, std::uint16_t protocol,
                                    std::uint8_t origin, std::uint8_t prefix, const Ipv6& gateway) {
  return Begin(kMessaging, 13)
      .Bytes(local)
      .Bytes(remote)
      .Number(0, 2)  // local port
      .Number(0, 2)  // remote port
      .Number(protocol, 2)
      .Number(origin, 1)
      .Number(prefix, 1)
      .Bytes(gateway);
}

DevicePath& DevicePath::Uri(std::string_view uri) {
  return Begin(kMessaging, 24).Bytes(bytes::AsBytes(uri));
}

DevicePath& DevicePath::GptPartition(std::uint32_t number, Guid signature, std::uint64_t start,
                                     std::uint64_t size) {
  constexpr std::uint8_t kGpt = 2;
  constexpr std::uint8_t kGuidSignature = 2;
  return Begin(kMedia, 1)
      .Number(number, 4)
      .Number(start, 8)
      .Number(size, 8)
      .GuidBytes(signature)
      .Number(kGpt, 1)
      .Number(kGuidSignature, 1);
}

DevicePath& DevicePath::CdRom(std::uint32_t entry, std::uint64_t start, std::uint64_t size) {
  return Begin(kMedia, 2).Number(entry, 4).Number(start, 8).Number(size, 8);
}

DevicePath& DevicePath::VendorMedia(Guid guid, bytes::ByteSpan data) {
  return Begin(kMedia, 3).GuidBytes(guid).Bytes(data);
}

DevicePath& DevicePath::File(std::u16string_view path) {
  return Begin(kMedia, 4).Bytes(Utf16Bytes(path));
}

DevicePath& DevicePath::FirmwareVolume(Guid guid) { return Begin(kMedia, 7).GuidBytes(guid); }

DevicePath& DevicePath::FirmwareFile(Guid guid) { return Begin(kMedia, 6).GuidBytes(guid); }

DevicePath& DevicePath::NextInstance() { return Begin(kEnd, 1); }

DevicePath& DevicePath::Node(std::uint8_t type, std::uint8_t sub_type, bytes::ByteSpan body) {
  return Begin(type, sub_type).Bytes(body);
}

std::vector<std::uint8_t> DevicePath::Finish() {
  Begin(kEnd, 0xFF);
  CloseNode();
  return std::move(path_);
}

std::vector<std::uint8_t> Utf16Bytes(std::u16string_view text) {
  std::vector<std::uint8_t> units;
  for (const char16_t c : text) {
    bytes::Append(units, c, sizeof(c));
  }
  bytes::Append(units, 0, sizeof(char16_t));
  return units;
}

}  // namespace mira::sim
