#ifndef MIRA_CLIENT_STRUCTURE_FIELDS_H_
#define MIRA_CLIENT_STRUCTURE_FIELDS_H_

// The fields of one SMBIOS structure, none of them beyond its formatted area.
//
//   const StructureFields fields(walk.Structure());
//   info.vendor = fields.String(0x04);

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"

namespace mira::client {

class StructureFields {
 public:
  // `structure` is the formatted area and the string set, as smbios::TableWalk gives it.
  explicit StructureFields(bytes::ByteSpan structure)
      : formatted_(structure.first(structure[1])), strings_(structure.subspan(structure[1])) {}

  std::uint8_t Type() const { return formatted_[0]; }
  std::size_t Length() const { return formatted_.size(); }
  std::uint16_t Handle() const { return *Word(2); }

  // Nothing when the field lies, wholly or in part, beyond the length.
  std::optional<std::uint64_t> Number(std::size_t offset, std::size_t width) const {
    bytes::Reader in(formatted_, offset);
    const std::uint64_t value = in.Number(width);
    return in.Ok() ? std::optional(value) : std::nullopt;
  }
  std::optional<std::uint8_t> Byte(std::size_t offset) const {
    return Narrow<std::uint8_t>(Number(offset, 1));
  }
  std::optional<std::uint16_t> Word(std::size_t offset) const {
    return Narrow<std::uint16_t>(Number(offset, 2));
  }
  std::optional<std::uint32_t> DWord(std::size_t offset) const {
    return Narrow<std::uint32_t>(Number(offset, 4));
  }
  std::optional<std::uint64_t> QWord(std::size_t offset) const { return Number(offset, 8); }
  // Empty beyond the length.
  bytes::ByteSpan Bytes(std::size_t offset, std::size_t size) const {
    return bytes::Reader::Lenient(formatted_, offset).Take(size);
  }
  // A number that the standard calls unknown when it is one of `unknown`.
  std::optional<std::uint64_t> Known(std::size_t offset, std::size_t width,
                                     std::initializer_list<std::uint64_t> unknown) const;
  // The string whose number stands at `offset`; nothing for number 0 and for one beyond the set.
  std::optional<std::string> String(std::size_t offset) const;
  std::vector<std::string> Strings() const;

 private:
  template <typename T>
  static std::optional<T> Narrow(std::optional<std::uint64_t> value) {
    return value ? std::optional(static_cast<T>(*value)) : std::nullopt;
  }

  bytes::ByteSpan formatted_;
  bytes::ByteSpan strings_;
};

// One row of a list of names; ascending by code.
struct CodeName {
  std::uint16_t code;
  const char* name;
};

// The name of a code; "code 0x1f" for one that the list lacks.
std::string NameOf(std::span<const CodeName> names, std::uint64_t code);
// Of a list that numbers its names from `first` on.
std::string NameOf(std::span<const char* const> names, std::uint64_t first, std::uint64_t code);

}  // namespace mira::client

#endif  // MIRA_CLIENT_STRUCTURE_FIELDS_H_
