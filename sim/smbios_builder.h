#ifndef MIRA_SIM_SMBIOS_BUILDER_H_
#define MIRA_SIM_SMBIOS_BUILDER_H_

// Builds SMBIOS structures and tables (DSP0134), apart from the library's decoders.
//
//   SmbiosTable table(3, 2);
//   table.Add(Structure(0, 0x0000).Str("Maker").Str("1.0").Word(0xE000).Str("01/31/2026")
//                 .Byte(0xFF));
//   std::vector<std::uint8_t> bytes = table.Finish();

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"

namespace mira::sim {

class Structure {
 public:
  Structure(std::uint8_t type, std::uint16_t handle);

  Structure& Byte(std::uint64_t value) { return Number(value, 1); }
  Structure& Word(std::uint64_t value) { return Number(value, 2); }
  Structure& DWord(std::uint64_t value) { return Number(value, 4); }
  Structure& QWord(std::uint64_t value) { return Number(value, 8); }
  Structure& Bytes(bytes::ByteSpan bytes);
  // A string number in the formatted area, and the string in the set. An empty text is number 0.
  Structure& Str(std::string_view text);
  // A string of the set without a number in the formatted area.
  Structure& ExtraString(std::string_view text);
  // States this length instead of the real one, for tables that lie.
  Structure& ClaimLength(std::uint8_t length);

  // The structure with its string set and both final NULs.
  std::vector<std::uint8_t> Build() const;

 private:
  Structure& Number(std::uint64_t value, unsigned width);

  std::vector<std::uint8_t> formatted_;
  std::vector<std::string> strings_;
  int claimed_length_ = -1;
};

class SmbiosTable {
 public:
  SmbiosTable(std::uint8_t major, std::uint8_t minor) : major_(major), minor_(minor) {}

  SmbiosTable& Add(const Structure& structure);
  // Adds the end-of-table structure and the 8-byte header in front, as the firmware table service
  // returns it.
  std::vector<std::uint8_t> Finish();
  // The same without an end-of-table structure.
  std::vector<std::uint8_t> WithoutEnd() const;

 private:
  std::uint8_t major_;
  std::uint8_t minor_;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_SMBIOS_BUILDER_H_
