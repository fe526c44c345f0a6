#include "sim/smbios_builder.h"

#include <algorithm>

#include "bytes/writer.h"

namespace mira::sim {

Structure::Structure(std::uint8_t type, std::uint16_t handle) { Byte(type).Byte(0).Word(handle); }

Structure& Structure::Number(std::uint64_t value, unsigned width) {
  bytes::Append(formatted_, value, width);
  return *this;
}

Structure& Structure::Bytes(bytes::ByteSpan bytes) {
  formatted_.insert(formatted_.end(), bytes.begin(), bytes.end());
  return *this;
}

Structure& Structure::Str(std::string_view text) {
  if (text.empty()) return Byte(0);
  ExtraString(text);
  return Byte(strings_.size());
}

Structure& Structure::ExtraString(std::string_view text) {
  strings_.emplace_back(text);
  return *this;
}

Structure& Structure::ClaimLength(std::uint8_t length) {
  claimed_length_ = length;
  return *this;
}

std::vector<std::uint8_t> Structure::Build() const {
  std::vector<std::uint8_t> bytes = formatted_;
  bytes[1] = static_cast<std::uint8_t>(claimed_length_ >= 0 ? claimed_length_
                                                            : static_cast<int>(formatted_.size()));
  for (const std::string& text : strings_) {
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(0);
  }
  if (strings_.empty()) bytes.push_back(0);
  bytes.push_back(0);
  return bytes;
}

SmbiosTable& SmbiosTable::Add(const Structure& structure) {
  const std::vector<std::uint8_t> bytes = structure.Build();
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  return *this;
}

std::vector<std::uint8_t> SmbiosTable::Finish() {
  constexpr std::uint8_t kEndOfTable = 127;
  constexpr std::uint16_t kEndHandle = 0x7F00;
  Add(Structure(kEndOfTable, kEndHandle));
  return WithoutEnd();
}

std::vector<std::uint8_t> SmbiosTable::WithoutEnd() const {
  std::vector<std::uint8_t> table = {0, major_, minor_, 0};
  bytes::Append(table, bytes_.size(), sizeof(std::uint32_t));
  table.insert(table.end(), bytes_.begin(), bytes_.end());
  return table;
}

}  // namespace mira::sim
