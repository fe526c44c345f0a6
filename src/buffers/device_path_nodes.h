#ifndef MIRA_BUFFERS_DEVICE_PATH_NODES_H_
#define MIRA_BUFFERS_DEVICE_PATH_NODES_H_

// UEFI device paths as bytes and as the records of CUEFILOList.
//
//   Reader in(path);
//   while (const std::optional<RawNode> node = NextNode(in)) ...

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "buffers/uefi_boot_data.h"
#include "bytes/reader.h"

namespace mira::boot {

inline constexpr std::size_t kNodeHeader = 4;
inline constexpr std::uint8_t kEndType = 0x7F;
inline constexpr std::uint8_t kEndOfPath = 0xFF;
inline constexpr std::uint8_t kEndOfInstance = 0x01;

struct RawNode {
  std::uint8_t type;
  std::uint8_t subtype;
  bytes::ByteSpan bytes;  // all of it, with its header
};

// The node at the cursor, an end node, too; the cursor moves as far as the node's length says.
// Nothing, when that is below 4 or more than there is.
std::optional<RawNode> NextNode(bytes::Reader& in);

// The first instance of a path, up to the first node that has no record.
CUEFILOList::DevicePath DecodeDevicePath(bytes::ByteSpan path);

// Whether the bytes are nodes, one behind another, up to an end node.
bool IsDevicePath(bytes::ByteSpan path);

// The bytes of a record's node. A node that came shorter than its record stays so.
CUEFILOList::Bytes EncodeNode(const CUEFILOList::GenericDevicePath& record);

// A text up to its NUL, which is passed over, or up to the end of the bytes. `terminated` tells
// which.
std::string TakeText(bytes::Reader& in);
std::u16string TakeWideText(bytes::Reader& in, bool* terminated = nullptr);

}  // namespace mira::boot

#endif  // MIRA_BUFFERS_DEVICE_PATH_NODES_H_
