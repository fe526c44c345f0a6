#include "sim/attribute_tables.h"

#include <array>
#include <numeric>

#include "bytes/writer.h"

namespace mira::sim {

BiosTable& BiosTable::Number(std::uint64_t value, unsigned width) {
  bytes::Append(entries_, value, width);
  return *this;
}

BiosTable& BiosTable::Bytes(bytes::ByteSpan bytes) {
  entries_.insert(entries_.end(), bytes.begin(), bytes.end());
  return *this;
}

BiosTable& BiosTable::Text(std::string_view text) {
  return Word(text.size()).Bytes(bytes::AsBytes(text));
}

BiosTable& BiosTable::Text(std::u16string_view text) {
  Word(text.size());
  for (const char16_t c : text) Word(c);
  return *this;
}

BiosTable& BiosTable::ByteList(std::span<const std::uint8_t> values) {
  return Byte(values.size()).Bytes(values);
}

BiosTable& BiosTable::WordList(std::span<const std::uint16_t> values) {
  Byte(values.size());
  for (const std::uint16_t value : values) Word(value);
  return *this;
}

std::vector<std::uint8_t> BiosTable::Finish() const {
  BiosTable table = *this;
  while (table.entries_.size() % 4 != 0) table.Byte(0);
  return table.DWord(Crc32(table.entries_)).entries_;
}

std::uint32_t Crc32(bytes::ByteSpan bytes) {
  // What each value of a byte adds, lowest bit first.
  static constexpr auto kSteps = [] {
    std::array<std::uint32_t, 256> steps{};
    for (std::uint32_t value = 0; value < steps.size(); ++value) {
      std::uint32_t step = value;
      for (int bit = 0; bit < 8; ++bit) step = step >> 1 ^ ((step & 1) != 0 ? 0xEDB88320 : 0);
      steps[value] = step;
    }
    return steps;
  }();
  std::uint32_t crc = 0xFFFFFFFF;
  for (const std::uint8_t byte : bytes) crc = crc >> 8 ^ kSteps[(crc ^ byte) & 0xFF];
  return ~crc;
}

std::uint8_t ZeroSumByte(bytes::ByteSpan bytes) {
  const unsigned sum = std::accumulate(bytes.begin(), bytes.end(), 0u);
  return static_cast<std::uint8_t>(0u - sum);
}

std::vector<std::uint8_t> BuildTableList(std::span<const ListedTable> tables) {
  constexpr std::uint32_t kFeatures = 0x00000003;  // attributes can be read and written
  constexpr std::uint32_t kAddress = 0x7A310000;   // where the firmware has the first table
  constexpr std::size_t kHeaderSize = 24;
  constexpr std::size_t kDescriptorSize = 16;
  constexpr std::size_t kChecksum = 22;
  BiosTable list;
  list.Bytes(bytes::AsBytes("$ACI")).Byte(2).Byte(0).Word(0).Bytes(bytes::AsBytes("PLDM"));
  list.DWord(kHeaderSize + kDescriptorSize * tables.size()).DWord(kFeatures).Word(1).Byte(0);
  list.Byte(tables.size());
  std::uint32_t address = kAddress;
  for (const ListedTable& table : tables) {
    list.Byte(table.type).Byte(table.content).DWord(0).Byte(0).Byte(table.index);
    list.DWord(table.bytes.size()).DWord(address);
    address += static_cast<std::uint32_t>(table.bytes.size());
  }
  std::vector<std::uint8_t> bytes = list.Entries();
  bytes[kChecksum] = ZeroSumByte(bytes);
  return bytes;
}

}  // namespace mira::sim
