#include "callif/scan_codes.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace mira::callif {
namespace {

constexpr std::uint8_t kEscape = 0x01;
constexpr std::uint8_t kSpace = 0x39;
constexpr std::uint8_t kControlTwo = 0x03;  // NUL is typed as Ctrl+2

// Set-1 make codes of the printable keys, row by row: the unshifted characters, their shifted
// twins, the first code.
struct KeyRow {
  const char* plain;
  const char* shifted;
  std::uint8_t first;
};
constexpr KeyRow kRows[] = {
    {"1234567890-=", "!@#$%^&*()_+", 0x02},
    {"qwertyuiop[]", "QWERTYUIOP{}", 0x10},
    {"asdfghjkl;'`", "ASDFGHJKL:\"~", 0x1E},
    {"\\zxcvbnm,./", "|ZXCVBNM<>?", 0x2B},
};

constexpr std::array<std::uint8_t, 128> MakeTable() {
  std::array<std::uint8_t, 128> table{};
  for (const KeyRow& row : kRows) {
    for (std::size_t i = 0; row.plain[i] != '\0'; ++i) {
      const std::uint8_t code = static_cast<std::uint8_t>(row.first + i);
      table[static_cast<std::size_t>(row.plain[i])] = code;
      table[static_cast<std::size_t>(row.shifted[i])] = code;
    }
  }
  // Control characters are their letter's key with control held; a few have a key of their own.
  for (std::size_t c = 1; c < 27; ++c) table[c] = table['a' + c - 1];
  table['\0'] = kControlTwo;
  table['\b'] = 0x0E;
  table['\t'] = 0x0F;
  table['\r'] = 0x1C;
  table['\n'] = 0x1C;
  table[0x1B] = kEscape;
  table[0x1C] = table['\\'];
  table[0x1D] = table[']'];
  table[0x1E] = table['6'];
  table[0x1F] = table['-'];
  table[' '] = kSpace;
  table[0x7F] = 0x0E;
  return table;
}

constexpr std::array<std::uint8_t, 128> kScanCodes = MakeTable();

}  // namespace

bool ToScanCodes(const std::string& text, bytes::SecureString& codes) {
  codes = bytes::SecureString(text);
  for (char& c : codes.str()) {
    const std::size_t index = static_cast<unsigned char>(c);
    if (index >= kScanCodes.size()) {
      codes.Clear();
      return false;
    }
    c = static_cast<char>(kScanCodes[index]);
  }
  return true;
}

}  // namespace mira::callif
