#include "bytes/utf16.h"
#include "devicepath/nodes.h"
#include "devicepath/notation.h"

namespace mira::devicepath {

using bytes::ByteSpan;
using bytes::Reader;

namespace {

bool WriteText(const Arg& arg, ByteSpan node, std::string& text) {
  Reader in(node, arg.offset);
  AppendUtf8OfBytes(TakeText(in), text);
  return in.Ok();
}

bool ReadText(const Arg& arg, std::string_view text, NodeBytes& node) {
  return SetBytes(arg.offset, BytesOfUtf8(text), node);
}

bool ReadWideText(const Arg& arg, std::string_view text, NodeBytes& node) {
  const std::optional<std::u16string> wide = bytes::Utf16(text);
  if (!wide) return false;
  std::size_t at = arg.offset;
  for (const char16_t unit : *wide) {
    SetField(at, sizeof(unit), unit, node);
    at += sizeof(unit);
  }
  return true;
}

bool WriteWideText(const Arg& arg, ByteSpan node, std::string& text) {
  Reader in(node, arg.offset);
  text += bytes::Utf8(TakeWideText(in));
  return in.Ok();
}

// Elements of arg.width bytes, each shown by its first kShown bytes, and nothing left over.
template <const Notation& kOne, std::size_t kShown>
bool WriteList(const Arg& arg, ByteSpan node, std::string& text) {
  Reader in(node, arg.offset);
  bool is_first = true;
  while (in.Left() >= arg.width) {
    if (!is_first) text += ',';
    is_first = false;
    if (!kOne.write({nullptr, 0, kShown}, in.Take(arg.width), text)) return false;
  }
  return in.Ok() && in.Left() == 0;
}

template <const Notation& kOne, std::size_t kShown>
bool ReadList(const Arg& arg, std::string_view text, NodeBytes& node) {
  node.resize(arg.offset);
  if (text.empty()) return true;
  for (const std::string_view part : Split(text, ',')) {
    const std::size_t at = node.size();
    node.resize(at + arg.width);
    if (!kOne.read({nullptr, at, kShown}, part, node)) return false;
  }
  return true;
}

}  // namespace

bool ReadTextWithNul(const Arg& arg, std::string_view text, NodeBytes& node) {
  return ReadText(arg, std::string(text) + '\0', node);
}

const Notation kRestBytes = {[](const Arg& arg, ByteSpan node, std::string& text) {
                               AppendHexBytes(bytes::Slice(node, arg.offset), text);
                               return arg.offset <= node.size();
                             },
                             [](const Arg& arg, std::string_view text, NodeBytes& node) {
                               return SetBytes(arg.offset, ParseHexBytes(text), node);
                             }};
const Notation kIpv4List = {WriteList<kIpv4, 4>, ReadList<kIpv4, 4>};
const Notation kIpv6List = {WriteList<kIpv6, 16>, ReadList<kIpv6, 16>};
const Notation kHexList = {WriteList<kHex, 4>, ReadList<kHex, 4>};

const Notation kText = {WriteText, ReadText};
const Notation kTextWithNul = {WriteText, ReadTextWithNul};
const Notation kWideText = {WriteWideText,
                            [](const Arg& arg, std::string_view text, NodeBytes& node) {
                              return ReadWideText(arg, std::string(text) + '\0', node);
                            }};
const Notation kQuoted = {[](const Arg& arg, ByteSpan node, std::string& text) {
                            text += '"';
                            const bool is_written = WriteWideText(arg, node, text);
                            text += '"';
                            return is_written;
                          },
                          [](const Arg& arg, std::string_view text, NodeBytes& node) {
                            text = Trimmed(text);
                            if (text.size() < 2 || !text.starts_with('"') || !text.ends_with('"'))
                              return false;
                            return ReadWideText(arg, text.substr(1, text.size() - 2), node);
                          }};

}  // namespace mira::devicepath
