#include "buffers/device_path_notation.h"

#include <algorithm>
#include <charconv>

#include "buffers/device_path_nodes.h"
#include "bytes/utf16.h"
#include "bytes/writer.h"

namespace mira::boot {

using bytes::ByteSpan;
using bytes::Reader;

// ---- Numbers, bytes and texts ----

namespace {

char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

std::string HexDigits(std::uint64_t value, std::size_t digits = 1) {
  std::string text;
  for (; value != 0 || digits > text.size(); value >>= 4) {
    text.insert(text.begin(), "0123456789ABCDEF"[value & 0xF]);
  }
  return text;
}

std::string Hex(std::uint64_t value) { return "0x" + HexDigits(value); }
std::string Hex2(std::uint64_t value) { return "0x" + HexDigits(value, 2); }
std::string Hex8(std::uint64_t value) { return "0x" + HexDigits(value, 8); }
std::string Decimal(std::uint64_t value) { return std::to_string(value); }

std::optional<std::uint64_t> ParseDigits(std::string_view text, int base, std::uint64_t highest) {
  std::uint64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value, base);
  if (error != std::errc() || last != end || value > highest) return std::nullopt;
  return value;
}

// Without its "0x"; nothing where there is none.
std::optional<std::string_view> Unprefixed(std::string_view text) {
  text = Trimmed(text);
  if (!text.starts_with("0x") && !text.starts_with("0X")) return std::nullopt;
  return text.substr(2);
}

// The firmware's 8-bit texts hold code points of one byte.
std::string Utf8OfBytes(std::string_view text) {
  std::u16string wide;
  for (const char c : text) wide += static_cast<char16_t>(static_cast<unsigned char>(c));
  return bytes::Utf8(wide);
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

std::uint64_t HighestOf(std::size_t width) {
  return width >= 8 ? ~std::uint64_t{0} : (std::uint64_t{1} << (8 * width)) - 1;
}

bool Field(const Arg& arg, ByteSpan node, std::uint64_t& value) {
  Reader in(node, arg.offset);
  value = in.Number(arg.width);
  return in.Ok();
}

}  // namespace

bool SameWord(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Upper(x) == Upper(y); });
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
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

std::string HexBytes(ByteSpan bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) text += HexDigits(byte, 2);
  return text;
}

std::optional<std::uint64_t> ParseNumber(std::string_view text, std::uint64_t highest) {
  const std::optional<std::string_view> digits = Unprefixed(text);
  return digits ? ParseDigits(*digits, 16, highest) : ParseDigits(Trimmed(text), 10, highest);
}

std::optional<NodeBytes> ParseHexBytes(std::string_view text) {
  text = Trimmed(text);
  if (text.size() % 2 != 0) return std::nullopt;
  NodeBytes bytes;
  for (; !text.empty(); text.remove_prefix(2)) {
    const auto byte = ParseDigits(text.substr(0, 2), 16, 0xFF);
    if (!byte) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(*byte));
  }
  return bytes;
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

// ---- Numbers ----

namespace {

template <std::string (*kWrite)(std::uint64_t value)>
bool WriteNumber(const Arg& arg, ByteSpan node, std::string& text) {
  std::uint64_t value = 0;
  if (!Field(arg, node, value)) return false;
  text = kWrite(value);
  return true;
}

bool ReadNumber(const Arg& arg, std::string_view text, NodeBytes& node) {
  return SetField(arg.offset, arg.width, ParseNumber(text, HighestOf(arg.width)), node);
}

template <std::string (*kWrite)(std::uint64_t value)>
bool WriteNamed(const Arg& arg, ByteSpan node, std::string& text) {
  std::uint64_t value = 0;
  if (!Field(arg, node, value)) return false;
  value = value >> arg.shift & arg.mask;
  const auto name = std::find_if(arg.names.begin(), arg.names.end(),
                                 [&](const Name& row) { return row.value == value; });
  text = name == arg.names.end() ? kWrite(value) : name->text;
  return true;
}

std::optional<std::uint64_t> ParseNamed(const Arg& arg, std::string_view text) {
  const auto name = std::find_if(arg.names.begin(), arg.names.end(), [&](const Name& row) {
    return SameWord(Trimmed(text), row.text);
  });
  if (name != arg.names.end()) return name->value;
  return ParseNumber(text, std::min(HighestOf(arg.width), arg.mask));
}

bool ReadNamed(const Arg& arg, std::string_view text, NodeBytes& node) {
  return SetField(arg.offset, arg.width, ParseNamed(arg, text), node);
}

bool ReadNamedBits(const Arg& arg, std::string_view text, NodeBytes& node) {
  const std::optional<std::uint64_t> value = ParseNamed(arg, text);
  std::uint64_t others = 0;
  Field(arg, node, others);
  return value && SetField(arg.offset, arg.width, others | *value << arg.shift, node);
}

}  // namespace

const Notation kHex = {WriteNumber<Hex>, ReadNumber};
const Notation kHex2 = {WriteNumber<Hex2>, ReadNumber};
const Notation kHex8 = {WriteNumber<Hex8>, ReadNumber};
const Notation kDecimal = {WriteNumber<Decimal>, ReadNumber};
const Notation kNamed = {WriteNamed<Hex>, ReadNamed};
const Notation kNamedDecimal = {WriteNamed<Decimal>, ReadNamed};
const Notation kNamedBits = {WriteNamed<Hex>, ReadNamedBits};

const Notation kDigits = {[](const Arg& arg, ByteSpan node, std::string& text) {
                            std::uint64_t value = 0;
                            if (!Field(arg, node, value)) return false;
                            text = HexDigits(value, 2 * arg.width);
                            return true;
                          },
                          [](const Arg& arg, std::string_view text, NodeBytes& node) {
                            return SetField(arg.offset, arg.width,
                                            ParseDigits(Trimmed(text), 16, HighestOf(arg.width)),
                                            node);
                          }};

const Notation kLiteral = {[](const Arg& arg, ByteSpan, std::string& text) {
                             text = arg.names[0].text;
                             return true;
                           },
                           [](const Arg& arg, std::string_view text, NodeBytes&) {
                             return SameWord(Trimmed(text), arg.names[0].text);
                           }};

// ---- Fields of fixed size ----

namespace {

std::string Ipv4Text(ByteSpan address) {
  std::string text;
  for (const std::uint8_t byte : address) text += (text.empty() ? "" : ".") + std::to_string(byte);
  return text;
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

std::string Ipv6Text(ByteSpan address) {
  std::string text;
  for (std::size_t i = 0; i < address.size(); i += 2) {
    text += (i > 0 ? ":" : "") + HexBytes(address.subspan(i, 2));
  }
  return text;
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

std::string GuidText(ByteSpan guid) {
  std::string text;
  for (const std::size_t at : kGuidOrder) text += HexDigits(guid[at], 2);
  for (const std::size_t at : kGuidDashes) text.insert(at, 1, '-');
  return text;
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

std::string PrefixedText(ByteSpan bytes) { return "0x" + HexBytes(bytes); }

std::optional<NodeBytes> ParsePrefixed(std::string_view text) {
  const std::optional<std::string_view> digits = Unprefixed(text);
  return digits ? ParseHexBytes(*digits) : std::nullopt;
}

std::string DashedText(ByteSpan bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes)
    text.insert(0, HexDigits(byte, 2) + (text.empty() ? "" : "-"));
  return text;
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

std::string FixedText(ByteSpan bytes) { return Utf8OfBytes(Reader(bytes).FixedText(bytes.size())); }

// What the field's bytes are as text, and the bytes of a text. Where kPads is set, a shorter text
// is filled up with zeros.
template <std::string (*kWrite)(ByteSpan), std::optional<NodeBytes> (*kRead)(std::string_view),
          bool kPads = false>
constexpr Notation kBlock = {
    [](const Arg& arg, ByteSpan node, std::string& text) {
      const ByteSpan field = bytes::Slice(node, arg.offset, arg.width);
      if (field.size() != arg.width) return false;
      text = kWrite(field);
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

const Notation kGuid = kBlock<GuidText, ParseGuid>;
const Notation kIpv4 = kBlock<Ipv4Text, ParseIpv4>;
const Notation kIpv6 = kBlock<Ipv6Text, ParseIpv6>;
const Notation kBytes = kBlock<HexBytes, ParseHexBytes>;
const Notation kPrefixedBytes = kBlock<PrefixedText, ParsePrefixed>;
const Notation kDashedBytes = kBlock<DashedText, ParseDashed>;
const Notation kFixedText = kBlock<FixedText, BytesOfUtf8, true>;

const Notation kMac = {[](const Arg& arg, ByteSpan node, std::string& text) {
                         constexpr std::size_t kEthernetSize = 6;
                         constexpr std::uint8_t kLastEthernet = 1;
                         Reader in(node, arg.offset);
                         const ByteSpan address = in.Take(arg.width);
                         const bool is_ethernet = in.U8() <= kLastEthernet;
                         if (!in.Ok()) return false;
                         text = HexBytes(is_ethernet ? address.first(kEthernetSize) : address);
                         return true;
                       },
                       kBlock<HexBytes, ParseHexBytes, true>.read};

// ---- What is left of the node ----

namespace {

bool WriteText(const Arg& arg, ByteSpan node, std::string& text) {
  Reader in(node, arg.offset);
  text = Utf8OfBytes(TakeText(in));
  return in.Ok();
}

bool ReadText(const Arg& arg, std::string_view text, NodeBytes& node) {
  return SetBytes(arg.offset, BytesOfUtf8(text), node);
}

bool ReadTextWithNul(const Arg& arg, std::string_view text, NodeBytes& node) {
  return ReadText(arg, std::string(text) + '\0', node);
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
  text = bytes::Utf8(TakeWideText(in));
  return in.Ok();
}

// Elements of arg.width bytes, each shown by its first kShown bytes; what is left over does not
// count.
template <const Notation& kOne, std::size_t kShown>
bool WriteList(const Arg& arg, ByteSpan node, std::string& text) {
  Reader in(node, arg.offset);
  while (in.Left() >= arg.width) {
    std::string one;
    if (!kOne.write({nullptr, 0, kShown}, in.Take(arg.width), one)) return false;
    text += (text.empty() ? "" : ",") + one;
  }
  return in.Ok();
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

const Notation kRestBytes = {[](const Arg& arg, ByteSpan node, std::string& text) {
                               text = HexBytes(bytes::Slice(node, arg.offset));
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
                            if (!WriteWideText(arg, node, text)) return false;
                            text = '"' + text + '"';
                            return true;
                          },
                          [](const Arg& arg, std::string_view text, NodeBytes& node) {
                            text = Trimmed(text);
                            if (text.size() < 2 || !text.starts_with('"') || !text.ends_with('"'))
                              return false;
                            return ReadWideText(arg, text.substr(1, text.size() - 2), node);
                          }};

// ---- ACPI and SAS ----

namespace {

// A compressed EISA identifier: three letters of five bits each, then four hexadecimal digits.
constexpr char kBeforeA = '@';
constexpr std::size_t kEisaLetters = 3;
constexpr std::size_t kEisaDigits = 4;

std::string EisaText(std::uint64_t id) {
  std::string text;
  for (const unsigned shift : {10u, 5u, 0u}) {
    text += static_cast<char>(static_cast<std::uint64_t>(kBeforeA) + (id >> shift & 0x1F));
  }
  return text + HexDigits(id >> 16, kEisaDigits);
}

std::string EisaTextOrZero(std::uint64_t id) { return id == 0 ? "0" : EisaText(id); }

std::optional<std::uint64_t> ParseEisa(std::string_view text) {
  text = Trimmed(text);
  if (text.size() != kEisaLetters + kEisaDigits) return std::nullopt;
  std::uint64_t id = 0;
  for (const char c : text.substr(0, kEisaLetters)) {
    const int letter = Upper(c) - kBeforeA;
    if (letter < 0 || letter > 0x1F) return std::nullopt;
    id = id << 5 | static_cast<std::uint64_t>(letter);
  }
  const auto number = ParseDigits(text.substr(kEisaLetters), 16, 0xFFFF);
  if (!number) return std::nullopt;
  return id | *number << 16;
}

bool ReadEisa(const Arg& arg, std::string_view text, NodeBytes& node) {
  const std::optional<std::uint64_t> id = ParseEisa(text);
  return id ? SetField(arg.offset, arg.width, id, node) : ReadNumber(arg, text, node);
}

// In memory the texts stand in the order HID, UID, CID; in writing, HID, CID, UID.
struct AcpiTexts {
  std::string hid, uid, cid;
};

AcpiTexts TakeAcpiTexts(Reader& in) {
  AcpiTexts texts;
  for (std::string* const text : {&texts.hid, &texts.uid, &texts.cid}) {
    *text = Utf8OfBytes(TakeText(in));
  }
  return texts;
}

bool ReadAcpiTexts(const Arg& arg, std::initializer_list<std::string_view> texts, NodeBytes& node) {
  node.resize(arg.offset);
  return std::all_of(texts.begin(), texts.end(), [&](std::string_view text) {
    return ReadTextWithNul({nullptr, node.size()}, text, node);
  });
}

// Of a SAS topology, bits 0 to 3 count its bytes of information; bit 7 is reserved; bits 8 to 15
// are, with two bytes, the drive bay less 1.
constexpr std::string_view kNoTopology = "NoTopology";
constexpr std::uint64_t kWithoutBay = 1;
constexpr std::uint64_t kWithBay = 2;
constexpr std::uint64_t kMostBays = 0x100;
struct TopologyBit {
  unsigned bit;
  std::string_view clear;
  std::string_view set;
};
constexpr TopologyBit kTopologyBits[] = {
    {4, "SAS", "SATA"}, {5, "Internal", "External"}, {6, "Direct", "Expanded"}};

std::string TopologyText(std::uint64_t value) {
  const std::uint64_t size = value & 0xF;
  const bool has_words =
      (value & 0x80) == 0 && (size == kWithBay || (size == kWithoutBay && value < 0x100));
  if (!has_words) return (value == 0 ? std::string(kNoTopology) : Hex(value)) + ",0,0,0";
  std::string text;
  for (const TopologyBit& row : kTopologyBits) {
    text.append((value >> row.bit & 1) != 0 ? row.set : row.clear) += ',';
  }
  return text + (size == kWithBay ? Hex((value >> 8) + 1) : "0");
}

std::optional<std::uint64_t> ParseTopology(std::string_view text) {
  const std::vector<std::string_view> parts = Split(text, ',');
  if (parts.size() != std::size(kTopologyBits) + 1) return std::nullopt;
  if (SameWord(Trimmed(parts[0]), kNoTopology)) return 0;
  if (const auto number = ParseNumber(parts[0], 0xFFFF)) return number;
  const std::optional<std::uint64_t> bay = ParseNumber(parts.back(), kMostBays);
  if (!bay) return std::nullopt;
  std::uint64_t value = *bay == 0 ? kWithoutBay : kWithBay | (*bay - 1) << 8;
  for (std::size_t i = 0; i < std::size(kTopologyBits); ++i) {
    const TopologyBit& row = kTopologyBits[i];
    const bool is_set = SameWord(Trimmed(parts[i]), row.set);
    if (!is_set && !SameWord(Trimmed(parts[i]), row.clear)) return std::nullopt;
    if (is_set) value |= std::uint64_t{1} << row.bit;
  }
  return value;
}

}  // namespace

const Notation kEisa = {WriteNumber<EisaText>, ReadEisa};
const Notation kEisaOrZero = {WriteNumber<EisaTextOrZero>, ReadEisa};

const Notation kAcpiTexts = {
    [](const Arg& arg, ByteSpan node, std::string& text) {
      Reader in(node, arg.offset);
      const AcpiTexts texts = TakeAcpiTexts(in);
      text = texts.hid + ',' + texts.cid + ',' + texts.uid;
      return in.Ok();
    },
    [](const Arg& arg, std::string_view text, NodeBytes& node) {
      const std::vector<std::string_view> parts = Split(text, ',');
      return parts.size() == 3 && ReadAcpiTexts(arg, {parts[0], parts[2], parts[1]}, node);
    }};
const Notation kAcpiUidText = {[](const Arg& arg, ByteSpan node, std::string& text) {
                                 Reader in(node, arg.offset);
                                 const AcpiTexts texts = TakeAcpiTexts(in);
                                 text = texts.uid;
                                 return texts.hid.empty() && texts.cid.empty() &&
                                        !texts.uid.empty();
                               },
                               [](const Arg& arg, std::string_view text, NodeBytes& node) {
                                 return ReadAcpiTexts(arg, {"", text, ""}, node);
                               }};

const Notation kSasTopology = {WriteNumber<TopologyText>,
                               [](const Arg& arg, std::string_view text, NodeBytes& node) {
                                 return SetField(arg.offset, arg.width, ParseTopology(text), node);
                               }};

}  // namespace mira::boot
