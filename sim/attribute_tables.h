#ifndef MIRA_SIM_ATTRIBUTE_TABLES_H_
#define MIRA_SIM_ATTRIBUTE_TABLES_H_

// Builds BIOS tables (DSP0247) and the list that describes them, apart from the library's decoders.
//
//   BiosTable strings;
//   strings.Word(1).Text("WakeOnLan");
//   std::vector<std::uint8_t> bytes = strings.Finish();

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "bytes/reader.h"

namespace mira::sim {

class BiosTable {
 public:
  BiosTable& Byte(std::uint64_t value) { return Number(value, 1); }
  BiosTable& Word(std::uint64_t value) { return Number(value, 2); }
  BiosTable& DWord(std::uint64_t value) { return Number(value, 4); }
  BiosTable& QWord(std::uint64_t value) { return Number(value, 8); }
  BiosTable& Bytes(bytes::ByteSpan bytes);
  // A length in 16 bits, then as many characters.
  BiosTable& Text(std::string_view text);
  BiosTable& Text(std::u16string_view text);
  // A count in 8 bits, then as many bytes or words.
  BiosTable& ByteList(std::span<const std::uint8_t> values);
  BiosTable& WordList(std::span<const std::uint16_t> values);

  // What was added so far, as it is.
  const std::vector<std::uint8_t>& Entries() const { return entries_; }
  // The table: the entries, zeros up to a multiple of 4 bytes, the CRC-32 of both.
  std::vector<std::uint8_t> Finish() const;

 private:
  BiosTable& Number(std::uint64_t value, unsigned width);

  std::vector<std::uint8_t> entries_;
};

// The checksum of DSP0247 tables (IEEE 802.3).
std::uint32_t Crc32(bytes::ByteSpan bytes);

// The byte that brings the 8-bit sum of these bytes and itself to 0.
std::uint8_t ZeroSumByte(bytes::ByteSpan bytes);

// A table as the firmware's list describes it.
struct ListedTable {
  enum Type : std::uint8_t { kStrings = 0, kAttributes = 1, kValues = 2, kStringData = 3 };
  enum Content : std::uint8_t { kHelp = 0, kDisplay = 1 };

  Type type;
  Content content;     // of string data
  std::uint8_t index;  // the number by which it is read
  std::vector<std::uint8_t> bytes;
};

// The list: a header whose bytes, with those of the descriptors, sum up to 0.
std::vector<std::uint8_t> BuildTableList(std::span<const ListedTable> tables);

}  // namespace mira::sim

#endif  // MIRA_SIM_ATTRIBUTE_TABLES_H_
