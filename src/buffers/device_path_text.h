#ifndef MIRA_BUFFERS_DEVICE_PATH_TEXT_H_
#define MIRA_BUFFERS_DEVICE_PATH_TEXT_H_

// UEFI device paths as text, in the UEFI specification's full form, and back; and load options as
// they lie in a Boot#### variable.
//
//   if (auto option = mira::boot::DecodeLoadOption(bytes)) std::cout << option->path;
//   // PciRoot(0x0)/Pci(0x1F,0x2)/Sata(0x0,0xFFFF,0x0)
//
// A node of a type that has no text is written by its numbers and bytes, as HardwarePath, AcpiPath,
// Msg, MediaPath or BbsPath(subtype,bytes), or, where its type is unknown or the node is too short
// for its type, as Path(type,subtype,bytes). Texts are UTF-8.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "buffers/uefi_boot_data.h"
#include "bytes/reader.h"
#include "platform/api.h"

namespace mira::boot {

// A decoded path, as CUEFILOList holds it.
MIRA_API std::string DevicePathText(const CUEFILOList::DevicePath& path);

// The bytes of a path up to its end node, or as far as they can be followed. Each further instance
// stands behind ",/".
MIRA_API std::string DevicePathText(bytes::ByteSpan path);

// The bytes of a path with its end node; nothing when the text cannot be understood. Names are
// taken in any case, numbers in hexadecimal (0x) or decimal. What is no name with brackets is a
// file path; a name that no node has is refused.
MIRA_API std::optional<std::vector<std::uint8_t>> DevicePathFromText(std::string_view text);

// An EFI_LOAD_OPTION.
struct LoadOption {
  static constexpr std::uint32_t kActive = 1;  // bit of the attributes

  std::uint32_t attributes = 0;
  std::u16string description;
  std::vector<std::uint8_t> path_bytes;  // the whole list of paths
  std::string path;                      // the text of the first path, with all its instances
  std::vector<std::uint8_t> optional_data;

  bool IsActive() const { return (attributes & kActive) != 0; }
};

// Nothing when the bytes are too short for what they announce.
MIRA_API std::optional<LoadOption> DecodeLoadOption(bytes::ByteSpan bytes);

}  // namespace mira::boot

#endif  // MIRA_BUFFERS_DEVICE_PATH_TEXT_H_
