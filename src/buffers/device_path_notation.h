#ifndef MIRA_BUFFERS_DEVICE_PATH_NOTATION_H_
#define MIRA_BUFFERS_DEVICE_PATH_NOTATION_H_

// How the arguments of a device path's text are written from the bytes of their node, and read back
// into them.
//
//   const Arg device = {&kHex, 5, 1};
//   std::string text;
//   if (device.notation->write(device, node, text)) ...  // "0x1F"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"

namespace mira::boot {

using NodeBytes = std::vector<std::uint8_t>;

struct Arg;

// Writing fails where the node is too short or holds what the notation cannot say; reading, where
// the text is not in the notation. Reading makes the node as long as it needs to be.
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
  const Notation* notation = nullptr;
  std::size_t offset = 0;  // from the node's start
  std::size_t width = 0;   // in bytes
  std::span<const Name> names = {};
  unsigned shift = 0;  // of a part of the field
  std::uint64_t mask = ~std::uint64_t{0};
  bool takes_rest = false;   // its text may hold commas
  bool is_optional = false;  // it may be missing
};

// Numbers: 0x1F, 0x0000001F, 0x1F with at least two digits, 31, and 001F with all digits of the
// width.
extern const Notation kHex, kHex8, kHex2, kDecimal, kDigits;
// A name, or else the number; kNamedBits: of a part of the field, next to other parts.
extern const Notation kNamed, kNamedDecimal, kNamedBits;
// The argument's first name, whatever the node holds.
extern const Notation kLiteral;

extern const Notation kGuid, kIpv4, kIpv6;
// Bytes: 0011, 0x0011, and 11-00, the last byte in memory first.
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

// Compressed EISA identifiers; the second knows 0.
extern const Notation kEisa, kEisaOrZero;
// The texts of an extended ACPI node; the UID's where there is no other.
extern const Notation kAcpiTexts, kAcpiUidText;
// A SAS device's topology: four arguments.
extern const Notation kSasTopology;

bool SameWord(std::string_view a, std::string_view b);  // in any case
std::string_view Trimmed(std::string_view text);
std::vector<std::string_view> Split(std::string_view text, char separator);
std::string HexBytes(bytes::ByteSpan bytes);

// Hexadecimal with 0x, or decimal.
std::optional<std::uint64_t> ParseNumber(std::string_view text, std::uint64_t highest);
std::optional<NodeBytes> ParseHexBytes(std::string_view text);

// False, without a value or where its digits do not fit into the width.
bool SetField(std::size_t offset, std::size_t width, std::optional<std::uint64_t> value,
              NodeBytes& node);
bool SetBytes(std::size_t offset, const std::optional<NodeBytes>& bytes, NodeBytes& node);

}  // namespace mira::boot

#endif  // MIRA_BUFFERS_DEVICE_PATH_NOTATION_H_
