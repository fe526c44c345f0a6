#ifndef MIRA_DEVICEPATH_NODES_H_
#define MIRA_DEVICEPATH_NODES_H_

// UEFI device paths as bytes and as records.
//
//   PathWalk walk(path);
//   while (const std::optional<RawNode> node = walk.Next()) ...

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "bytes/reader.h"
#include "devicepath/node_types.h"
#include "devicepath/records.h"

namespace mira::devicepath {

struct RawNode {
  std::uint8_t type;
  std::uint8_t subtype;
  bytes::ByteSpan bytes;  // all of it, with its header
};

// The node at the cursor, an end node, too; the cursor moves as far as the node's length says.
// Nothing, when that is below 4 or more than there is.
std::optional<RawNode> NextNode(bytes::Reader& in);

// Steps through the nodes of the path at the front of the bytes, the ends of its instances
// included, until the path ends or cannot be followed.
class PathWalk {
 public:
  explicit PathWalk(bytes::ByteSpan bytes) : in_(bytes), size_(bytes.size()) {}

  std::optional<RawNode> Next();

  // When there is no next node: the path's size, which is all of the bytes where it is malformed;
  // why it is, or null; and at which offset.
  std::size_t Size() const { return size_; }
  const char* Reason() const { return reason_; }
  std::size_t Offset() const { return in_.Offset(); }

 private:
  bytes::Reader in_;
  std::size_t size_;
  const char* reason_ = nullptr;
};

// The first instance of a path, up to the first node that has no record.
NodeRecords::DevicePath DecodeDevicePath(bytes::ByteSpan path);

// Whether the bytes are nodes, one behind another, up to an end node.
bool IsDevicePath(bytes::ByteSpan path);

// The bytes of a record's node. A node that came shorter than its record stays so.
NodeRecords::Bytes EncodeNode(const NodeRecords::GenericDevicePath& record);

// A text up to its NUL, which is passed over, or up to the end of the bytes. `terminated` tells
// which.
std::string TakeText(bytes::Reader& in);
std::u16string TakeWideText(bytes::Reader& in, bool* terminated = nullptr);

}  // namespace mira::devicepath

#endif  // MIRA_DEVICEPATH_NODES_H_
