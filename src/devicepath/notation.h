#ifndef MIRA_DEVICEPATH_NOTATION_H_
#define MIRA_DEVICEPATH_NOTATION_H_

// How the arguments of a device path's text are written from the bytes of their node, and read back
// into them.
//
//   const Arg device = {&kHex, 5, 1};
//   std::string text;
//   if (device.notation->write(device, node, text)) ...  // "0x1F"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"
#include "bytes/text.h"

namespace mira::devicepath {

using bytes::ParseDigits;
using bytes::ParseNumber;
using bytes::SameText;
using bytes::Trimmed;

using NodeBytes = std::vector<std::uint8_t>;

struct Arg;

// Writing appends to the text; it fails where the node is too short or holds what the notation
// cannot say, and may then leave a part. Reading fails where the text is not in the notation; it
// makes the node as long as it needs to be.
struct Notation {
  bool (*write)(const Arg& arg, bytes::ByteSpan node, std::string& text);
  bool (*read)(const Arg& arg, std::string_view text, NodeBytes& node);
};

// A value and its name.
struct Name {
  std::uint64_t value;
  const char* text;
};

struct Arg {
  constexpr Arg() = default;
  constexpr Arg(const Notation* how, std::size_t at = 0, std::size_t bytes = 0)
      : notation(how), is_shown(true), offset(at), width(bytes) {}

  const Notation* notation = nullptr;
  bool is_shown = false;   // there is a notation
  std::size_t offset = 0;  // from the node's start
  std::size_t width = 0;   // in bytes; of a list, of one element
  std::span<const Name> names = {};
  unsigned shift = 0;  // of a part of the field
  std::uint64_t mask = ~std::uint64_t{0};
  std::size_t parts = 1;           // between commas; 0: as many as the arguments behind it leave
  const char* fallback = nullptr;  // what a text means that leaves it out; null where it must not
  bool is_hidden_empty = false;    // not written where it is empty
};

// Numbers: 0x1F, 0x0000001F, 0x1F with at least two digits, 31, and 16 digits without 0x.
extern const Notation kHex, kHex8, kHex2, kDecimal, kDigits16;
// A name, or else the number; kNamedBits: of a part of the field, next to other parts.
extern const Notation kNamed, kNamedDecimal, kNamedBits;
// The argument's first name, whatever the node holds.
extern const Notation kLiteral;

extern const Notation kGuid, kIpv4, kIpv6;
// Bytes: 0011; 0x0011, at most 8 of them, also read from a number with fewer digits; and 11-00, the
// last byte in memory first.
extern const Notation kBytes, kPrefixedBytes, kDashedBytes;
// A network address, as long as the type behind it says.
extern const Notation kMac;
// Everything behind the offset: bytes; lists of addresses that have room for the longer kind; of
// 32-bit numbers.
extern const Notation kRestBytes, kIpv4List, kIpv6List, kHexList;

// 8-bit texts: of fixed width; up to the node's end; with a NUL.
extern const Notation kFixedText, kText, kTextWithNul;
// UTF-16 texts: with a NUL; without, in quotation marks.
extern const Notation kWideText, kQuoted;

// Compressed EISA identifiers; the second knows 0, the third writes what is none of them as hex.
extern const Notation kEisa, kEisaOrZero, kHid;
// The texts of an extended ACPI node; the UID's where there is no other.
extern const Notation kAcpiTexts, kAcpiUidText;
// A SAS device's topology: four arguments.
extern const Notation kSasTopology;

// ---- What notations are made of ----

inline constexpr std::string_view kBlanks = " \t";

void AppendHex(std::uint64_t value, std::size_t digits, std::string& text);  // at least `digits`
void AppendHexBytes(bytes::ByteSpan bytes, std::string& text);
void AppendDecimal(std::uint64_t value, std::string& text);
void AppendUtf8OfBytes(std::string_view bytes, std::string& text);
std::optional<NodeBytes> BytesOfUtf8(std::string_view utf8);

std::vector<std::string_view> Split(std::string_view text, char separator);

// Without its "0x"; nothing where there is none.
std::optional<std::string_view> Unprefixed(std::string_view text);
std::optional<NodeBytes> ParseHexBytes(std::string_view text);

std::uint64_t HighestOf(std::size_t width);
std::optional<std::uint64_t> FieldOf(const Arg& arg, bytes::ByteSpan node);
// False, without a value or where its digits do not fit into the width.
bool SetField(std::size_t offset, std::size_t width, std::optional<std::uint64_t> value,
              NodeBytes& node);
bool SetBytes(std::size_t offset, const std::optional<NodeBytes>& bytes, NodeBytes& node);

template <void (*kWrite)(std::uint64_t value, std::string& text)>
bool WriteNumber(const Arg& arg, bytes::ByteSpan node, std::string& text) {
  const std::optional<std::uint64_t> value = FieldOf(arg, node);
  if (value) kWrite(*value, text);
  return value.has_value();
}
bool ReadNumber(const Arg& arg, std::string_view text, NodeBytes& node);
bool ReadTextWithNul(const Arg& arg, std::string_view text, NodeBytes& node);

}  // namespace mira::devicepath

#endif  // MIRA_DEVICEPATH_NOTATION_H_
