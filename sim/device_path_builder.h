#ifndef MIRA_SIM_DEVICE_PATH_BUILDER_H_
#define MIRA_SIM_DEVICE_PATH_BUILDER_H_

// Builds UEFI device paths (UEFI specification, chapter 10) node by node, apart from the library's
// decoders.
//
//   std::vector<std::uint8_t> path =
//       DevicePath().PciRoot(0).Pci(0x1F, 2).Sata(0, 0xFFFF, 0).File(u"\\EFI\\boot.efi").Finish();

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "bytes/reader.h"

namespace mira::sim {

using Ipv4 = std::array<std::uint8_t, 4>;
using Ipv6 = std::array<std::uint8_t, 16>;

class DevicePath {
 public:
  // Texts of GUIDs are in the registry form, "C12A7328-F81F-11D2-BA4B-00A0C93EC93B".
  using Guid = std::string_view;

  DevicePath& PciRoot(std::uint32_t uid);
  DevicePath& Pci(std::uint8_t device, std::uint8_t function);
  DevicePath& VendorHardware(Guid guid, bytes::ByteSpan data = {});
  DevicePath& Usb(std::uint8_t port, std::uint8_t interface_number);
  DevicePath& Sata(std::uint16_t port, std::uint16_t multiplier_port, std::uint16_t lun);
  DevicePath& NvmeNamespace(std::uint32_t id, std::uint64_t eui64);
  DevicePath& VendorMessaging(Guid guid, bytes::ByteSpan data = {});
  DevicePath& Mac(const std::array<std::uint8_t, 6>& address, std::uint8_t interface_type = 1);
  DevicePath& Ipv4Address(const Ipv4& local, const Ipv4& remote, std::uint16_t protocol,
                          bool is_static, const Ipv4& gateway = {}, const Ipv4& subnet_mask = {});
  DevicePath& Ipv6Address(const Ipv6& local, const Ipv6& remote, std::uint16_t protocol,
                          std::uint8_t origin, std::uint8_t prefix = 0, const Ipv6& gateway = {});
  DevicePath& Uri(std::string_view uri);
  DevicePath& GptPartition(std::uint32_t number, Guid signature, std::uint64_t start,
                           std::uint64_t size);
  DevicePath& CdRom(std::uint32_t entry, std::uint64_t start, std::uint64_t size);
  DevicePath& VendorMedia(Guid guid, bytes::ByteSpan data = {});
  DevicePath& File(std::u16string_view path);
  DevicePath& FirmwareVolume(Guid guid);
  DevicePath& FirmwareFile(Guid guid);
  // What follows is a further instance of a multi-instance path.
  DevicePath& NextInstance();
  // A node of any kind: its bytes behind the four of the header.
  DevicePath& Node(std::uint8_t type, std::uint8_t sub_type, bytes::ByteSpan body);

  // The path with its end node.
  std::vector<std::uint8_t> Finish();

 private:
  // Begins a node; what is appended until the next one is its body.
  DevicePath& Begin(std::uint8_t type, std::uint8_t sub_type);
  DevicePath& Number(std::uint64_t value, unsigned width);
  DevicePath& Bytes(bytes::ByteSpan bytes);
  DevicePath& GuidBytes(Guid guid);
  void CloseNode();

  std::vector<std::uint8_t> path_;
  std::size_t node_ = 0;  // where the node that is being built begins
};

// The bytes of a text in UTF-16, little-endian, with its NUL.
std::vector<std::uint8_t> Utf16Bytes(std::u16string_view text);

}  // namespace mira::sim

#endif  // MIRA_SIM_DEVICE_PATH_BUILDER_H_
