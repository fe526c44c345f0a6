#include "client/snapshot/redact_path.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bytes/utf16.h"
#include "bytes/writer.h"
#include "client/snapshot/vocabulary.h"

namespace mira::client {
namespace {

constexpr std::size_t kNodeHeader = 4;

enum class NodeText { kNone, kPlain, kWide };

// What stays of a node (UEFI specification, 10.3): the rest of its bytes becomes zero.
struct HarmlessNode {
  std::uint8_t type;
  std::uint8_t subtype;
  std::size_t end;     // of what stays behind the header
  std::size_t id = 0;  // where an identifier begins; 0: there is none
  std::size_t id_size = 0;
  const char* kind = "";  // of the identifier, or of the text
  NodeText text = NodeText::kNone;
  std::size_t text_offset = 0;  // the text goes to the node's end
};
constexpr HarmlessNode kHarmlessNodes[] = {
    {.type = 1, .subtype = 1, .end = 6},                                           // PCI
    {.type = 1, .subtype = 2, .end = 5},                                           // PC Card
    {.type = 1, .subtype = 4, .end = 4, .id = 4, .id_size = 16, .kind = "guid"},   // vendor's
    {.type = 1, .subtype = 5, .end = 8},                                           // controller
    {.type = 2, .subtype = 1, .end = 12},                                          // ACPI
    {.type = 2, .subtype = 3, .end = 8},                                           // _ADR
    {.type = 3, .subtype = 1, .end = 8},                                           // ATAPI
    {.type = 3, .subtype = 2, .end = 8},                                           // SCSI
    {.type = 3, .subtype = 5, .end = 6},                                           // USB
    {.type = 3, .subtype = 10, .end = 4, .id = 4, .id_size = 16, .kind = "guid"},  // vendor's
    {.type = 3, .subtype = 11, .end = 4, .id = 4, .id_size = 6, .kind = "mac"},
    {.type = 3, .subtype = 15, .end = 11},                                       // USB class
    {.type = 3, .subtype = 17, .end = 5},                                        // unit
    {.type = 3, .subtype = 18, .end = 10},                                       // SATA
    {.type = 3, .subtype = 23, .end = 8, .id = 8, .id_size = 8, .kind = "eui"},  // NVMe
    {.type = 3, .subtype = 24, .end = 4, .kind = "uri", .text = NodeText::kPlain, .text_offset = 4},
    {.type = 3, .subtype = 25, .end = 6},                                         // UFS
    {.type = 3, .subtype = 26, .end = 5},                                         // SD
    {.type = 3, .subtype = 29, .end = 5},                                         // eMMC
    {.type = 4, .subtype = 2, .end = 8},                                          // CD-ROM
    {.type = 4, .subtype = 3, .end = 4, .id = 4, .id_size = 16, .kind = "guid"},  // vendor's
    {.type = 4, .subtype = 4, .end = 4, .kind = "file", .text = NodeText::kWide, .text_offset = 4},
    {.type = 4, .subtype = 6, .end = 4, .id = 4, .id_size = 16, .kind = "guid"},  // file in a
                                                                                  // volume
    {.type = 4, .subtype = 7, .end = 4, .id = 4, .id_size = 16, .kind = "guid"},  // volume
    {.type = 5,
     .subtype = 1,
     .end = 8,
     .kind = "device",
     .text = NodeText::kPlain,
     .text_offset = 8},
};

// A partition's number, its signature, and of which kinds both are.
constexpr HarmlessNode kPartition = {
    .type = 4, .subtype = 1, .end = 8, .id = 24, .id_size = 16, .kind = "partition"};
constexpr std::size_t kPartitionKinds = 40;

constexpr std::uint8_t kEndType = 0x7F;

std::string PlaceholderText(const std::string& text, const char* kind, Placeholders& placeholders) {
  const std::string plain = text.substr(0, text.find('\0'));
  return plain.empty() || IsCommonText(plain) ? plain : placeholders.Of(plain, kind);
}

// Each name between backslashes by itself, so that what is common in a file's path stays.
std::string RedactFile(const std::string& text, const char* kind, Placeholders& placeholders) {
  std::string result;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find('\\', at), text.size());
    const std::string name = text.substr(at, end - at);
    if (at > 0) result += '\\';
    result += PlaceholderText(name, kind, placeholders);
    at = end + 1;
  }
  return result;
}

std::vector<std::uint8_t> TextBytes(bytes::ByteSpan node, const HarmlessNode& row,
                                    Placeholders& placeholders) {
  const bytes::ByteSpan content = bytes::Slice(node, row.text_offset);
  std::vector<std::uint8_t> result;
  if (row.text == NodeText::kPlain) {
    const std::string text(bytes::AsText(content));
    for (const char c : PlaceholderText(text, row.kind, placeholders)) {
      result.push_back(static_cast<std::uint8_t>(c));
    }
    if (row.text_offset > kNodeHeader) result.push_back(0);
    return result;
  }
  std::u16string units;
  bytes::Reader in(content);
  while (in.Left() >= 2) {
    const std::uint16_t unit = in.U16();
    if (unit == 0) break;
    units += static_cast<char16_t>(unit);
  }
  for (const char c : RedactFile(bytes::Utf8(units), row.kind, placeholders)) {
    bytes::Append(result, static_cast<unsigned char>(c), 2);
  }
  bytes::Append(result, 0, 2);
  return result;
}

const HarmlessNode* FindRow(bytes::ByteSpan node) {
  const auto is_it = [node](const HarmlessNode& r) {
    return r.type == node[0] && r.subtype == node[1];
  };
  if (is_it(kPartition)) return &kPartition;
  const auto* const row = std::find_if(std::begin(kHarmlessNodes), std::end(kHarmlessNodes), is_it);
  return row != std::end(kHarmlessNodes) ? row : nullptr;
}

// Calls `use` with the bytes of each node, up to a malformed place.
template <typename Use>
void ForEachNode(bytes::ByteSpan path, Use use) {
  for (bytes::ByteSpan rest = path; rest.size() >= kNodeHeader;) {
    const std::size_t length = rest[2] + (std::size_t{rest[3]} << 8);
    if (length < kNodeHeader || length > rest.size()) return;
    use(rest.first(length));
    rest = rest.subspan(length);
  }
}

std::vector<std::uint8_t> RedactNode(bytes::ByteSpan node, Placeholders& placeholders) {
  std::vector<std::uint8_t> result(node.size(), 0);
  const auto keep = [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < std::min(end, node.size()); ++i) result[i] = node[i];
  };
  keep(0, kNodeHeader);
  if (node[0] == kEndType) return result;
  const HarmlessNode* const row = FindRow(node);
  if (row == nullptr) return result;
  if (row == &kPartition) keep(kPartitionKinds, node.size());
  keep(kNodeHeader, row->end);
  if (row->id != 0 && row->id + row->id_size <= node.size()) {
    const auto id = placeholders.OfBytes(node.subspan(row->id, row->id_size), row->kind);
    std::copy(id.begin(), id.end(), result.begin() + static_cast<std::ptrdiff_t>(row->id));
  }
  if (row->text == NodeText::kNone || node.size() < row->text_offset) return result;
  const std::vector<std::uint8_t> text = TextBytes(node, *row, placeholders);
  result.resize(row->text_offset);
  result.insert(result.end(), text.begin(), text.end());
  result[2] = static_cast<std::uint8_t>(result.size() & 0xFF);
  result[3] = static_cast<std::uint8_t>(result.size() >> 8);
  return result;
}

}  // namespace

devicepath::Path RedactPath(bytes::ByteSpan path, Placeholders& placeholders) {
  std::vector<std::uint8_t> result;
  ForEachNode(path, [&](bytes::ByteSpan node) {
    const auto redacted = RedactNode(node, placeholders);
    result.insert(result.end(), redacted.begin(), redacted.end());
  });
  return devicepath::DecodePaths(result).front();
}

std::vector<std::vector<std::uint8_t>> PathIdentifiers(bytes::ByteSpan path) {
  constexpr std::string_view kOfOneMachine[] = {"mac", "eui", "partition"};
  std::vector<std::vector<std::uint8_t>> found;
  ForEachNode(path, [&](bytes::ByteSpan node) {
    const HarmlessNode* const row = FindRow(node);
    if (row == nullptr || row->id == 0 || row->id + row->id_size > node.size()) return;
    if (std::find(std::begin(kOfOneMachine), std::end(kOfOneMachine), row->kind) ==
        std::end(kOfOneMachine)) {
      return;
    }
    const bytes::ByteSpan id = node.subspan(row->id, row->id_size);
    found.emplace_back(id.begin(), id.end());
  });
  return found;
}

}  // namespace mira::client
