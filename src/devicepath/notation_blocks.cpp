#include <algorithm>

#include "devicepath/notation.h"

namespace mira::devicepath {

using bytes::ByteSpan;
using bytes::Reader;

namespace {

void WriteIpv4(ByteSpan address, std::string& text) {
  for (std::size_t i = 0; i < address.size(); ++i) {
    if (i > 0) text += '.';
    AppendDecimal(address[i], text);
  }
}

std::optional<NodeBytes> ParseIpv4(std::string_view text) {
  NodeBytes address;
  for (const std::string_view part : Split(Trimmed(text), '.')) {
    const auto byte = ParseDigits(part, 10, 0xFF);
    if (!byte) return std::nullopt;
    address.push_back(static_cast<std::uint8_t>(*byte));
  }
  return address;
}

void WriteIpv6(ByteSpan address, std::string& text) {
  for (std::size_t i = 0; i < address.size(); i += 2) {
    if (i > 0) text += ':';
    AppendHexBytes(address.subspan(i, 2), text);
  }
}

std::optional<NodeBytes> ParseIpv6Groups(std::string_view text) {
  NodeBytes bytes;
  if (text.empty()) return bytes;
  for (const std::string_view part : Split(text, ':')) {
    const auto group = ParseDigits(part, 16, 0xFFFF);
    if (!group) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(*group >> 8));
    bytes.push_back(static_cast<std::uint8_t>(*group));
  }
  return bytes;
}

// All eight groups, or fewer with "::" for those that are zero.
std::optional<NodeBytes> ParseIpv6(std::string_view text) {
  constexpr std::size_t kSize = 16;
  text = Trimmed(text);
  const std::size_t gap = text.find("::");
  std::optional<NodeBytes> address = ParseIpv6Groups(text.substr(0, gap));
  if (!address || gap == std::string_view::npos) return address;
  const std::optional<NodeBytes> tail = ParseIpv6Groups(text.substr(gap + 2));
  if (!tail || address->size() + tail->size() >= kSize) return std::nullopt;
  address->resize(kSize - tail->size());
  address->insert(address->end(), tail->begin(), tail->end());
  return address;
}

// Where the digits of a GUID's text stand in memory: its first three groups are little-endian
// numbers.
constexpr std::size_t kGuidOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
constexpr std::size_t kGuidDashes[] = {8, 13, 18, 23};
constexpr std::size_t kGuidLength = 36;

void WriteGuid(ByteSpan guid, std::string& text) {
  const std::size_t start = text.size();
  for (const std::size_t at : kGuidOrder) {
    if (std::find(std::begin(kGuidDashes), std::end(kGuidDashes), text.size() - start) !=
        std::end(kGuidDashes)) {
      text += '-';
    }
    AppendHex(guid[at], 2, text);
  }
}

std::optional<NodeBytes> ParseGuid(std::string_view text) {
  text = Trimmed(text);
  if (text.size() != kGuidLength) return std::nullopt;
  std::string digits;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_dash =
        std::find(std::begin(kGuidDashes), std::end(kGuidDashes), i) != std::end(kGuidDashes);
    if (is_dash != (text[i] == '-')) return std::nullopt;
    if (!is_dash) digits += text[i];
  }
  const std::optional<NodeBytes> in_order = ParseHexBytes(digits);
  if (!in_order) return std::nullopt;
  NodeBytes guid(std::size(kGuidOrder));
  for (std::size_t i = 0; i < guid.size(); ++i) guid[kGuidOrder[i]] = (*in_order)[i];
  return guid;
}

void WritePrefixed(ByteSpan bytes, std::string& text) { AppendHexBytes(bytes, text += "0x"); }

void WriteDashed(ByteSpan bytes, std::string& text) {
  for (std::size_t i = bytes.size(); i-- > 0;) {
    AppendHex(bytes[i], 2, text);
    if (i > 0) text += '-';
  }
}

std::optional<NodeBytes> ParseDashed(std::string_view text) {
  NodeBytes bytes;
  for (const std::string_view part : Split(Trimmed(text), '-')) {
    const auto byte = ParseDigits(part, 16, 0xFF);
    if (!byte) return std::nullopt;
    bytes.insert(bytes.begin(), static_cast<std::uint8_t>(*byte));
  }
  return bytes;
}

void WriteFixedText(ByteSpan field, std::string& text) {
  AppendUtf8OfBytes(bytes::FixedText(bytes::AsText(field)), text);
}

// What the field's bytes are as text, and the bytes of a text. Where kPads is set, a shorter text
// is filled up with zeros.
template <void (*kWrite)(ByteSpan, std::string&),
          std::optional<NodeBytes> (*kRead)(std::string_view), bool kPads = false>
constexpr Notation kBlock = {
    [](const Arg& arg, ByteSpan node, std::string& text) {
      const ByteSpan field = bytes::Slice(node, arg.offset, arg.width);
      if (field.size() != arg.width) return false;
      kWrite(field, text);
      return true;
    },
    [](const Arg& arg, std::string_view text, NodeBytes& node) {
      std::optional<NodeBytes> field = kRead(text);
      if (!field || field->size() > arg.width || (!kPads && field->size() < arg.width)) {
        return false;
      }
      field->resize(arg.width);
      return SetBytes(arg.offset, field, node);
    }};

}  // namespace

const Notation kGuid = kBlock<WriteGuid, ParseGuid>;
const Notation kIpv4 = kBlock<WriteIpv4, ParseIpv4>;
const Notation kIpv6 = kBlock<WriteIpv6, ParseIpv6>;
const Notation kBytes = kBlock<AppendHexBytes, ParseHexBytes>;
// Fewer digits are a number: its last byte stands last.
const Notation kPrefixedBytes = {
    kBlock<WritePrefixed, ParseHexBytes>.write,
    [](const Arg& arg, std::string_view text, NodeBytes& node) {
      const auto number = ParseNumber(Trimmed(text), HighestOf(arg.width));
      if (!number) return false;
      NodeBytes field;
      for (std::size_t left = arg.width; left-- > 0;) {
        field.push_back(static_cast<std::uint8_t>(*number >> (8 * left)));
      }
      return SetBytes(arg.offset, field, node);
    }};
const Notation kDashedBytes = kBlock<WriteDashed, ParseDashed>;
const Notation kFixedText = kBlock<WriteFixedText, BytesOfUtf8, true>;

const Notation kMac = {[](const Arg& arg, ByteSpan node, std::string& text) {
                         constexpr std::size_t kEthernetSize = 6;
                         constexpr std::uint8_t kLastEthernet = 1;
                         Reader in(node, arg.offset);
                         const ByteSpan address = in.Take(arg.width);
                         const bool is_ethernet = in.U8() <= kLastEthernet;
                         if (!in.Ok()) return false;
                         AppendHexBytes(is_ethernet ? address.first(kEthernetSize) : address, text);
                         return true;
                       },
                       kBlock<AppendHexBytes, ParseHexBytes, true>.read};

}  // namespace mira::devicepath
