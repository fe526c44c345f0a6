// What stands for an attribute's value, as a text and as bytes, and which values are good.

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>

#include "bytes/text.h"
#include "sim/firmware/attributes.h"

namespace mira::sim {
namespace {

bool IsPrintable(std::string_view text) {
  // Latin-1.
  return std::all_of(text.begin(), text.end(), [](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x20 && byte <= 0x7E) || byte >= 0xA0;
  });
}

template <typename List>
bool HasDoubles(const List& list) {
  return std::set<typename List::value_type>(list.begin(), list.end()).size() != list.size();
}

}  // namespace

std::vector<std::string> Parts(std::string_view text) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('|'), text.size());
    parts.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parts;
}

void AttributeHandler::Refuse(const SetupAttribute& setup, const std::string& text) {
  throw std::invalid_argument("Setup attribute " + setup.name + " cannot have '" + text + "'");
}

std::uint64_t AttributeHandler::NumberOf(const SetupAttribute& setup, const std::string& text) {
  const auto number = bytes::ParseDigits(text, 10);
  if (!number) Refuse(setup, text);
  return *number;
}

std::vector<std::uint8_t> AttributeHandler::Positions(const Stored& attribute,
                                                      const std::string& text) const {
  std::vector<std::uint8_t> positions;
  const auto& choices = attribute.setup.choices;
  for (const std::string& part : Parts(text)) {
    const auto found = std::find(choices.begin(), choices.end(), part);
    if (found == choices.end()) Refuse(attribute.setup, part);
    positions.push_back(static_cast<std::uint8_t>(found - choices.begin()));
  }
  return positions;
}

AttributeHandler::Value AttributeHandler::Encode(const Stored& attribute,
                                                 const std::string& text) const {
  BiosTable value;
  switch (attribute.setup.kind) {
    case AttributeKind::kEnumeration:
      value.ByteList(Positions(attribute, text));
      break;
    case AttributeKind::kString:
      value.Text(text);
      break;
    case AttributeKind::kPassword:
      value.Text(std::string_view());
      break;
    case AttributeKind::kInteger:
      value.QWord(NumberOf(attribute.setup, text));
      break;
    case AttributeKind::kBootOrder: {
      const bool has_mode = text.size() > 1 && text[1] == ':';
      const int mode = has_mode ? text[0] - '0' : kOrderedWithFailThrough;
      value.Byte(kDefaultBootConfig).Byte(static_cast<std::uint8_t>(mode));
      value.ByteList(Positions(attribute, has_mode ? text.substr(2) : text));
      break;
    }
    case AttributeKind::kCollection: {
      std::vector<std::uint16_t> members;
      for (const std::string& part : Parts(text)) members.push_back(HandleOf(part));
      value.WordList(members);
      break;
    }
    case AttributeKind::kConfigSet:
      value.Bytes(Positions(attribute, text));
      break;
  }
  if (Check(attribute, value.Entries()) != WriteStatus::kDone &&
      attribute.setup.kind != AttributeKind::kPassword) {
    Refuse(attribute.setup, text);
  }
  return value.Entries();
}

std::string AttributeHandler::Decode(const Stored& attribute, const Value& value) const {
  bytes::Reader in(value);
  std::string text;
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : "|") + part; };
  const auto add_choices = [&](bytes::ByteSpan positions) {
    for (const std::uint8_t position : positions) add(attribute.setup.choices.at(position));
  };
  switch (attribute.setup.kind) {
    case AttributeKind::kEnumeration:
      add_choices(in.Take(in.U8()));
      break;
    case AttributeKind::kString:
      text = bytes::AsText(in.Take(in.U16()));
      break;
    case AttributeKind::kPassword:
      break;
    case AttributeKind::kInteger:
      text = std::to_string(in.U64());
      break;
    case AttributeKind::kBootOrder: {
      in.U8();
      const std::uint8_t mode = in.U8();
      add_choices(in.Take(in.U8()));
      if (mode != kOrderedWithFailThrough) text = std::to_string(mode) + ":" + text;
      break;
    }
    case AttributeKind::kCollection:
      for (unsigned left = in.U8(); left > 0; --left) {
        if (const Stored* const member = Find(in.U16())) add(member->setup.name);
      }
      break;
    case AttributeKind::kConfigSet:
      add_choices(in.Rest());
      break;
  }
  if (!in.Ok()) throw std::logic_error(attribute.setup.name + " has no value of its kind");
  return text;
}

WriteStatus AttributeHandler::Check(const Stored& attribute, bytes::ByteSpan value) const {
  const SetupAttribute& setup = attribute.setup;
  const auto is_within = [&setup](std::uint64_t n) { return n >= setup.lower && n <= setup.upper; };
  const auto are_choices = [&setup](bytes::ByteSpan list) {
    const bool are_known = std::all_of(list.begin(), list.end(), [&setup](std::uint8_t position) {
      return position < setup.choices.size();
    });
    return are_known && !HasDoubles(std::vector<std::uint8_t>(list.begin(), list.end()));
  };
  bytes::Reader in(value);
  bool is_good = false;
  switch (setup.kind) {
    case AttributeKind::kEnumeration: {
      const bytes::ByteSpan list = in.Take(in.U8());
      is_good = is_within(list.size()) && are_choices(list);
      break;
    }
    case AttributeKind::kString:
    case AttributeKind::kPassword: {
      const std::string_view text = bytes::AsText(in.Take(in.U16()));
      is_good = is_within(text.size()) && IsPrintable(text);
      break;
    }
    case AttributeKind::kInteger: {
      const std::uint64_t number = in.U64();
      is_good = is_within(number) &&
                (setup.increment == 0 || (number - setup.lower) % setup.increment == 0);
      break;
    }
    case AttributeKind::kBootOrder: {
      const bool is_default = in.U8() == kDefaultBootConfig;
      const bool has_mode = in.U8() <= kOrderedWithFailThrough;
      const bytes::ByteSpan list = in.Take(in.U8());
      is_good = is_default && has_mode && is_within(list.size()) && are_choices(list);
      break;
    }
    case AttributeKind::kCollection: {
      std::vector<std::uint16_t> members(in.U8());
      for (std::uint16_t& member : members) member = in.U16();
      const bool are_known = std::all_of(members.begin(), members.end(),
                                         [this](std::uint16_t m) { return Find(m) != nullptr; });
      is_good = is_within(members.size()) && are_known && !HasDoubles(members);
      break;
    }
    case AttributeKind::kConfigSet:
      is_good = in.U8() < setup.choices.size();
      break;
  }
  if (!in.Ok() || in.Left() != 0) return WriteStatus::kMalformed;
  return is_good ? WriteStatus::kDone : WriteStatus::kBadValue;
}

}  // namespace mira::sim
