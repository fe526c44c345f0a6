#include "devicepath/notation.h"

#include <algorithm>
#include <charconv>

#include "bytes/utf16.h"
#include "bytes/writer.h"

namespace mira::devicepath {

using bytes::ByteSpan;
using bytes::Reader;

namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

}  // namespace

void AppendHex(std::uint64_t value, std::size_t digits, std::string& text) {
  char buffer[16];
  std::size_t at = sizeof(buffer);
  for (; value != 0 || digits > sizeof(buffer) - at; value >>= 4)
    buffer[--at] = kDigits[value & 0xF];
  text.append(buffer + at, sizeof(buffer) - at);
}

void AppendHexBytes(ByteSpan bytes, std::string& text) {
  for (const std::uint8_t byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
}

void AppendDecimal(std::uint64_t value, std::string& text) {
  char buffer[20];
  const auto [end, error] = std::to_chars(std::begin(buffer), std::end(buffer), value);
  text.append(buffer, end);
}

// The firmware's 8-bit texts hold code points of one byte.
void AppendUtf8OfBytes(std::string_view bytes, std::string& text) {
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      text += c;
    } else {
      text += static_cast<char>(0xC0 | byte >> 6);
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
}

std::optional<NodeBytes> BytesOfUtf8(std::string_view utf8) {
  const std::optional<std::u16string> wide = bytes::Utf16(utf8);
  if (!wide) return std::nullopt;
  NodeBytes text;
  for (const char16_t unit : *wide) {
    if (unit > 0xFF) return std::nullopt;
    text.push_back(static_cast<std::uint8_t>(unit));
  }
  return text;
}

std::string_view Trimmed(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
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

std::optional<std::uint64_t> ParseNumber(std::string_view text, std::uint64_t highest) {
  return bytes::ParseNumber(Trimmed(text), highest);
}

std::optional<NodeBytes> ParseHexBytes(std::string_view text) {
  text = Trimmed(text);
  if (text.size() % 2 != 0) return std::nullopt;
  NodeBytes bytes;
  bytes.reserve(text.size() / 2);
  for (; !text.empty(); text.remove_prefix(2)) {
    const auto byte = ParseDigits(text.substr(0, 2), 16, 0xFF);
    if (!byte) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(*byte));
  }
  return bytes;
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
  bytes::Writer(node, offset).Number(*value, width);
  return true;
}

bool SetBytes(std::size_t offset, const std::optional<NodeBytes>& bytes, NodeBytes& node) {
  if (!bytes) return false;
  node.resize(std::max(node.size(), offset + bytes->size()));
  bytes::Writer(node, offset).Bytes(*bytes);
  return true;
}

}  // namespace mira::devicepath
