#include "console/table_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "bytes/reader.h"
#include "console/command.h"
#include "console/input_file.h"
#include "console/table_text.h"
#include "smbios/table.h"

namespace mira::console {
namespace {

using Bytes = std::vector<std::uint8_t>;
using bytes::ByteSpan;

constexpr std::size_t kHeaderSize = smbios::kFirmwareHeaderSize;
constexpr std::size_t kLengthOffset = 4;
constexpr std::size_t kDumpTableOffset = 32;

// A structure begins here as far as one can tell: a length of at least its header, and a string set
// behind it.
bool LooksLikeTable(ByteSpan table) {
  if (table.size() < 6 || table[1] < 4 || table[1] + std::size_t{2} > table.size()) return false;
  const auto strings = table.subspan(table[1]);
  constexpr std::uint8_t kEnd[2] = {0, 0};
  return std::search(strings.begin(), strings.end(), std::begin(kEnd), std::end(kEnd)) !=
         strings.end();
}

// The entry points of DSP0134 5.2.1 and 5.2.2.
Bytes FromEntryPoint(ByteSpan file) {
  struct Form {
    std::string_view anchor;
    std::size_t version;
    std::size_t length;
    std::size_t length_width;
    std::size_t address;
    std::size_t address_width;
    bool length_is_exact;
  };
  static constexpr Form kForms[] = {
      {"_SM3_", 7, 0x0C, 4, 0x10, 8, false},
      {"_SM_", 6, 0x16, 2, 0x18, 4, true},
  };
  for (const Form& form : kForms) {
    if (!bytes::AsText(file).starts_with(form.anchor)) continue;
    bytes::Reader in(file, form.version);
    const std::uint8_t major = in.U8();
    const std::uint8_t minor = in.U8();
    in.Seek(form.length);
    const std::uint64_t length = in.Number(form.length_width);
    in.Seek(form.address);
    const std::uint64_t address = in.Number(form.address_width);
    if (!in.Ok()) return {};
    // Dump programs rewrite the address to the table's place in the file; others leave the memory
    // address.
    const bool inside = address >= in.Offset() && address < file.size() &&
                        LooksLikeTable(bytes::Slice(file, static_cast<std::size_t>(address)));
    const std::size_t offset = inside ? static_cast<std::size_t>(address) : kDumpTableOffset;
    const ByteSpan table = bytes::Slice(file, offset, static_cast<std::size_t>(length));
    if (!LooksLikeTable(table)) return {};
    // A 64-bit entry point states the most that the table may take, not what it takes.
    const std::size_t stated =
        form.length_is_exact ? static_cast<std::size_t>(length) : table.size();
    return WithHeader(major, minor, stated, Bytes(table.begin(), table.end()));
  }
  return {};
}

}  // namespace

Bytes WithHeader(std::uint8_t major, std::uint8_t minor, std::size_t length, const Bytes& table) {
  Bytes result = {0, major, minor, 0};
  for (unsigned i = 0; i < 4; ++i) result.push_back(static_cast<std::uint8_t>(length >> (8 * i)));
  result.insert(result.end(), table.begin(), table.end());
  return result;
}

bool IsCutShort(const Bytes& table) {
  bytes::Reader in(table, kLengthOffset);
  const std::uint32_t length = in.U32();
  return !in.Ok() || length > in.Left();
}

Bytes NormalizeTable(Bytes bytes) {
  // Text holds no NUL, a table always does.
  if (std::find(bytes.begin(), bytes.end(), 0) == bytes.end()) {
    if (Bytes table = FromListing(bytes::AsText(bytes)); !table.empty()) return table;
    bytes = FromHexDump(bytes::AsText(bytes));
  }
  if (Bytes table = FromEntryPoint(bytes); !table.empty()) return table;
  if (bytes.size() <= kHeaderSize) return {};
  // Byte 1 of the firmware table is the major version, of a bare table the length of the first
  // structure, which is at least 4.
  constexpr std::uint8_t kShortestStructure = 4;
  bytes::Reader length(bytes, kLengthOffset);
  if (bytes[1] < kShortestStructure || length.U32() == bytes.size() - kHeaderSize) {
    return LooksLikeTable(bytes::Slice(bytes, kHeaderSize)) ? bytes : Bytes();
  }
  const bool begins_with_end = bytes[0] == smbios::kEndOfTable;
  return LooksLikeTable(bytes) && !begins_with_end ? WithHeader(0, 0, bytes.size(), bytes)
                                                   : Bytes();
}

Bytes LoadTableFile(const std::string& path) {
  Bytes table = NormalizeTable(LoadFile(path));
  if (table.empty()) {
    throw CommandError(kInvalidValue, "no-table", "'" + path + "' holds no SMBIOS table.", path,
                       "A table saved by 'mira smbios --save', a dump with its entry point, a bare "
                       "table, or one of these in hexadecimal is wanted.");
  }
  return table;
}

void SaveTableFile(const std::string& path, const Bytes& table) {
  std::ofstream file(ToPath(path), std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(table.data()),
             static_cast<std::streamsize>(table.size()));
  file.close();
  if (!file) {
    throw CommandError(kUnexpected, "not-written", "The file '" + path + "' could not be written.",
                       path);
  }
}

}  // namespace mira::console
