#include <algorithm>

#include "devicepath/nodes.h"
#include "devicepath/notation.h"

namespace mira::devicepath {

using bytes::ByteSpan;
using bytes::Reader;

namespace {

// A compressed EISA identifier: three letters of five bits each, then four hexadecimal digits.
constexpr char kBeforeA = '@';
constexpr std::size_t kEisaLetters = 3;
constexpr std::size_t kEisaDigits = 4;
constexpr std::uint64_t kPnp = 0x41D0;  // "PNP"

void WriteEisa(std::uint64_t id, std::string& text) {
  for (const unsigned shift : {10u, 5u, 0u}) {
    text += static_cast<char>(static_cast<std::uint64_t>(kBeforeA) + (id >> shift & 0x1F));
  }
  AppendHex(id >> 16, kEisaDigits, text);
}

void WriteEisaOrZero(std::uint64_t id, std::string& text) {
  if (id == 0) {
    text += '0';
  } else {
    WriteEisa(id, text);
  }
}

void WriteHid(std::uint64_t id, std::string& text) {
  if ((id & 0xFFFF) == kPnp) {
    WriteEisa(id, text);
  } else {
    AppendHex(id, 8, text += "0x");
  }
}

std::optional<std::uint64_t> ParseEisa(std::string_view text) {
  text = Trimmed(text);
  if (text.size() != kEisaLetters + kEisaDigits) return std::nullopt;
  std::uint64_t id = 0;
  for (const char c : text.substr(0, kEisaLetters)) {
    const int letter = bytes::Upper(c) - kBeforeA;
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
    AppendUtf8OfBytes(TakeText(in), *text);
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

void WriteTopology(std::uint64_t value, std::string& text) {
  const std::uint64_t size = value & 0xF;
  const bool has_words =
      (value & 0x80) == 0 && (size == kWithBay || (size == kWithoutBay && value < 0x100));
  if (!has_words) {
    if (value == 0) {
      text += kNoTopology;
    } else {
      AppendHex(value, 1, text += "0x");
    }
    text += ",0,0,0";
    return;
  }
  for (const TopologyBit& row : kTopologyBits) {
    text.append((value >> row.bit & 1) != 0 ? row.set : row.clear) += ',';
  }
  if (size == kWithBay) {
    AppendHex((value >> 8) + 1, 1, text += "0x");
  } else {
    text += '0';
  }
}

// Words that are left out are those of clear bits; without a bay there is none.
std::optional<std::uint64_t> ParseTopology(std::string_view text) {
  std::vector<std::string_view> parts = Split(text, ',');
  if (parts.size() > std::size(kTopologyBits) + 1) return std::nullopt;
  if (SameText(Trimmed(parts[0]), kNoTopology)) return 0;
  if (const auto number = ParseNumber(Trimmed(parts[0]), 0xFFFF)) return number;
  for (std::size_t i = parts.size(); i < std::size(kTopologyBits); ++i) {
    parts.push_back(kTopologyBits[i].clear);
  }
  if (parts.size() == std::size(kTopologyBits)) parts.push_back("0");
  const std::optional<std::uint64_t> bay = ParseNumber(Trimmed(parts.back()), kMostBays);
  if (!bay) return std::nullopt;
  std::uint64_t value = *bay == 0 ? kWithoutBay : kWithBay | (*bay - 1) << 8;
  for (std::size_t i = 0; i < std::size(kTopologyBits); ++i) {
    const TopologyBit& row = kTopologyBits[i];
    const bool is_set = SameText(Trimmed(parts[i]), row.set);
    if (!is_set && !SameText(Trimmed(parts[i]), row.clear)) return std::nullopt;
    if (is_set) value |= std::uint64_t{1} << row.bit;
  }
  return value;
}

}  // namespace

const Notation kEisa = {WriteNumber<WriteEisa>, ReadEisa};
const Notation kEisaOrZero = {WriteNumber<WriteEisaOrZero>, ReadEisa};
const Notation kHid = {WriteNumber<WriteHid>, ReadEisa};

const Notation kAcpiTexts = {[](const Arg& arg, ByteSpan node, std::string& text) {
                               Reader in(node, arg.offset);
                               const AcpiTexts texts = TakeAcpiTexts(in);
                               text += texts.hid + ',' + texts.cid + ',' + texts.uid;
                               return in.Ok();
                             },
                             [](const Arg& arg, std::string_view text, NodeBytes& node) {
                               constexpr std::size_t kTexts = 3;
                               std::vector<std::string_view> parts = Split(text, ',');
                               if (parts.size() > kTexts) return false;
                               parts.resize(kTexts);
                               return ReadAcpiTexts(arg, {parts[0], parts[2], parts[1]}, node);
                             }};
const Notation kAcpiUidText = {[](const Arg& arg, ByteSpan node, std::string& text) {
                                 Reader in(node, arg.offset);
                                 const AcpiTexts texts = TakeAcpiTexts(in);
                                 text += texts.uid;
                                 return in.Ok() && texts.hid.empty() && texts.cid.empty() &&
                                        !texts.uid.empty();
                               },
                               [](const Arg& arg, std::string_view text, NodeBytes& node) {
                                 return ReadAcpiTexts(arg, {"", text, ""}, node);
                               }};

const Notation kSasTopology = {WriteNumber<WriteTopology>,
                               [](const Arg& arg, std::string_view text, NodeBytes& node) {
                                 return SetField(arg.offset, arg.width, ParseTopology(text), node);
                               }};

}  // namespace mira::devicepath
