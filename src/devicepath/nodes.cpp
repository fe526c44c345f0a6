#include "devicepath/nodes.h"

#include <algorithm>
#include <utility>

#include "devicepath/field.h"

namespace mira::devicepath {

using bytes::ByteSpan;
using bytes::Reader;

namespace {

std::unique_ptr<NodeRecords::GenericDevicePath> DecodeNode(const RawNode& node) {
  const NodeType* const type = FindNodeType(node.type, node.subtype);
  if (type == nullptr || type->make == nullptr) return nullptr;
  const std::size_t size = node.bytes.size();
  if (size < type->shortest && size != type->older) return nullptr;
  Reader in(node.bytes, kNodeHeader);
  auto record = type->make();
  for (const Field& field : type->fields) {
    // What the older form lacks is zero.
    if (field.read != nullptr && field.size <= in.Left()) field.read(in, *record);
  }
  record->Type = node.type;
  record->SubType = node.subtype;
  record->Length = static_cast<std::uint16_t>(size);
  return record;
}

}  // namespace

NodeRecords::GenericDevicePath::~GenericDevicePath() = default;

std::string TakeText(Reader& in) {
  const std::string_view text = bytes::FixedText(bytes::AsText(in.Ahead()));
  in.Take(std::min(text.size() + 1, in.Left()));
  return std::string(text);
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

std::optional<RawNode> PathWalk::Next() {
  constexpr std::size_t kEndSize = kNodeHeader;
  Reader header(in_);
  const std::uint8_t type = header.U8();
  const std::uint8_t subtype = header.U8();
  const std::size_t length = header.U16();
  if (!header.Ok()) {
    reason_ =
        in_.Left() == 0 ? "The path has no end node." : "The bytes end within a node's header.";
  } else if (length < kNodeHeader) {
    reason_ = "A node's length is below 4.";
  } else if (length > in_.Left()) {
    reason_ = "A node is longer than the bytes that are left.";
  } else if (type == kEndType && length != kEndSize) {
    reason_ = "An end node's length is not 4.";
  } else if (type == kEndType && subtype == kEndOfPath) {
    size_ = in_.Offset() + length;
  } else if (type == kEndType && subtype != kEndOfInstance) {
    reason_ = "An end node ends neither an instance nor the path.";
  } else {
    return RawNode{type, subtype, in_.Take(length)};
  }
  return std::nullopt;
}

NodeRecords::DevicePath DecodeDevicePath(ByteSpan path) {
  NodeRecords::DevicePath records;
  Reader in(path);
  while (const std::optional<RawNode> node = NextNode(in)) {
    if (node->type == kEndType || node->subtype == kEndOfPath) break;
    std::unique_ptr<NodeRecords::GenericDevicePath> record = DecodeNode(*node);
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

NodeBytes EncodeNode(const NodeRecords::GenericDevicePath& record) {
  // A legacy entry's record has the fields of the boot specification's node, but its own numbers.
  if (const auto* const legacy = dynamic_cast<const NodeRecords::LegacyFilePathList*>(&record)) {
    NodeRecords::BIOSBootSpecDevicePath node;
    node.Type = 5;
    node.SubType = 1;
    node.DeviceType = legacy->DeviceType;
    node.StatusFlag = legacy->StatusFlag;
    node.Description = legacy->Description;
    return EncodeNode(node);
  }
  NodeBytes out;
  Put(out, record.Type);
  Put(out, record.SubType);
  Put(out, record.Length);
  if (const NodeType* const type = FindNodeType(record.Type, record.SubType)) {
    for (const Field& field : type->fields) {
      if (field.write != nullptr) field.write(record, out);
    }
  }
  if (record.Length >= kNodeHeader && record.Length < out.size()) out.resize(record.Length);
  return out;
}

}  // namespace mira::devicepath
