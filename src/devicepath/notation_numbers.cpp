#include <algorithm>

#include "devicepath/notation.h"

namespace mira::devicepath {

using bytes::ByteSpan;
using bytes::Reader;

namespace {

void Hex(std::uint64_t value, std::string& text) { AppendHex(value, 1, text += "0x"); }
void Hex2(std::uint64_t value, std::string& text) { AppendHex(value, 2, text += "0x"); }
void Hex8(std::uint64_t value, std::string& text) { AppendHex(value, 8, text += "0x"); }
void Digits16(std::uint64_t value, std::string& text) { AppendHex(value, 16, text); }

bool WriteLiteral(const Arg& arg, ByteSpan, std::string& text) {
  text += arg.names[0].text;
  return true;
}
bool ReadLiteral(const Arg& arg, std::string_view text, NodeBytes&) {
  return SameText(Trimmed(text), arg.names[0].text);
}

template <void (*kWrite)(std::uint64_t value, std::string& text)>
bool WriteNamed(const Arg& arg, ByteSpan node, std::string& text) {
  std::optional<std::uint64_t> value = FieldOf(arg, node);
  if (!value) return false;
  value = *value >> arg.shift & arg.mask;
  const auto name = std::find_if(arg.names.begin(), arg.names.end(),
                                 [&](const Name& row) { return row.value == *value; });
  if (name == arg.names.end()) {
    kWrite(*value, text);
  } else {
    text += name->text;
  }
  return true;
}

std::optional<std::uint64_t> ParseNamed(const Arg& arg, std::string_view text) {
  const auto name = std::find_if(arg.names.begin(), arg.names.end(), [&](const Name& row) {
    return SameText(Trimmed(text), row.text);
  });
  if (name != arg.names.end()) return name->value;
  return ParseNumber(Trimmed(text), std::min(HighestOf(arg.width), arg.mask));
}

bool ReadNamed(const Arg& arg, std::string_view text, NodeBytes& node) {
  return SetField(arg.offset, arg.width, ParseNamed(arg, text), node);
}

bool ReadNamedBits(const Arg& arg, std::string_view text, NodeBytes& node) {
  const std::optional<std::uint64_t> value = ParseNamed(arg, text);
  const std::uint64_t others = FieldOf(arg, node).value_or(0);
  return value && SetField(arg.offset, arg.width, others | *value << arg.shift, node);
}

bool ReadDigits(const Arg& arg, std::string_view text, NodeBytes& node) {
  const std::string_view digits = Unprefixed(text).value_or(Trimmed(text));
  return SetField(arg.offset, arg.width, ParseDigits(digits, 16, HighestOf(arg.width)), node);
}

}  // namespace

bool ReadNumber(const Arg& arg, std::string_view text, NodeBytes& node) {
  return SetField(arg.offset, arg.width, ParseNumber(Trimmed(text), HighestOf(arg.width)), node);
}

const Notation kHex = {WriteNumber<Hex>, ReadNumber};
const Notation kHex2 = {WriteNumber<Hex2>, ReadNumber};
const Notation kHex8 = {WriteNumber<Hex8>, ReadNumber};
const Notation kDecimal = {WriteNumber<AppendDecimal>, ReadNumber};
const Notation kDigits16 = {WriteNumber<Digits16>, ReadDigits};
const Notation kNamed = {WriteNamed<Hex>, ReadNamed};
const Notation kNamedDecimal = {WriteNamed<AppendDecimal>, ReadNamed};
const Notation kNamedBits = {WriteNamed<Hex>, ReadNamedBits};
const Notation kLiteral = {WriteLiteral, ReadLiteral};

}  // namespace mira::devicepath
