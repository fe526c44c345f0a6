#include "devicepath/notation.h"

#include <algorithm>

#include "bytes/utf16.h"
#include "bytes/writer.h"

namespace mira::devicepath {

using bytes::ByteSpan;
using bytes::Reader;

void AppendHex(std::uint64_t value, std::size_t digits, std::string& text) {
  text += bytes::HexNumber(value, digits, bytes::HexCase::kUpper);
}

void AppendHexBytes(ByteSpan block, std::string& text) {
  text += bytes::HexText(block, bytes::HexCase::kUpper);
}

void AppendDecimal(std::uint64_t value, std::string& text) { text += std::to_string(value); }

// The firmware's 8-bit texts hold code points of one byte.
void AppendUtf8OfBytes(std::string_view latin1, std::string& text) {
  text += bytes::Utf8OfLatin1(latin1);
}

std::optional<NodeBytes> BytesOfUtf8(std::string_view utf8) {
  const std::optional<std::string> text = bytes::Latin1OfUtf8(utf8);
  if (!text) return std::nullopt;
  return NodeBytes(text->begin(), text->end());
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t end = 0; end != std::string_view::npos;) {
    end = text.find(separator);
    parts.push_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  return parts;
}

std::optional<std::string_view> Unprefixed(std::string_view text) {
  return bytes::WithoutHexPrefix(Trimmed(text));
}

std::optional<NodeBytes> ParseHexBytes(std::string_view text) {
  return bytes::ParseHexText(Trimmed(text));
}

std::uint64_t HighestOf(std::size_t width) {
  return width >= 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * width)) - 1;
}

std::optional<std::uint64_t> FieldOf(const Arg& arg, ByteSpan node) {
  Reader in(node, arg.offset);
  const std::uint64_t value = in.Number(arg.width);
  if (!in.Ok()) return std::nullopt;
  return value;
}

bool SetField(std::size_t offset, std::size_t width, std::optional<std::uint64_t> value,
              NodeBytes& node) {
  if (!value || *value > HighestOf(width)) return false;
  node.resize(std::max(node.size(), offset + width));
  bytes::Writer out(node, offset);
  out.Number(*value, width);
  return out.Ok();
}

bool SetBytes(std::size_t offset, const std::optional<NodeBytes>& bytes, NodeBytes& node) {
  if (!bytes) return false;
  node.resize(std::max(node.size(), offset + bytes->size()));
  bytes::Writer out(node, offset);
  out.Bytes(*bytes);
  return out.Ok();
}

}  // namespace mira::devicepath
