#include "console/table_file.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>

#include "bytes/reader.h"
#include "console/command.h"

namespace mira::console {
namespace {

using Bytes = std::vector<std::uint8_t>;
using bytes::ByteSpan;

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kDumpTableOffset = 32;
constexpr std::size_t kLargestFile = 64 * 1024 * 1024;

Bytes WithHeader(std::uint8_t major, std::uint8_t minor, ByteSpan table) {
  Bytes result = {0, major, minor, 0};
  for (unsigned i = 0; i < 4; ++i) {
    result.push_back(static_cast<std::uint8_t>(table.size() >> (8 * i)));
  }
  result.insert(result.end(), table.begin(), table.end());
  return result;
}

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
  };
  static constexpr Form kForms[] = {
      {"_SM3_", 7, 0x0C, 4, 0x10, 8},
      {"_SM_", 6, 0x16, 2, 0x18, 4},
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
    return LooksLikeTable(table) ? WithHeader(major, minor, table) : Bytes();
  }
  return {};
}

// Pairs of hexadecimal digits between blanks; nothing when there is anything else.
Bytes FromHex(ByteSpan file) {
  Bytes result;
  int high = -1;
  for (const std::uint8_t c : file) {
    if (std::isspace(c) != 0) {
      if (high >= 0) return {};
      continue;
    }
    if (std::isxdigit(c) == 0) return {};
    const int digit = std::isdigit(c) != 0 ? c - '0' : std::tolower(c) - 'a' + 10;
    if (high < 0) {
      high = digit;
    } else {
      result.push_back(static_cast<std::uint8_t>(high * 16 + digit));
      high = -1;
    }
  }
  return high < 0 ? result : Bytes();
}

}  // namespace

Bytes NormalizeTable(Bytes bytes) {
  if (Bytes decoded = FromHex(bytes); !decoded.empty()) bytes = std::move(decoded);
  if (Bytes table = FromEntryPoint(bytes); !table.empty()) return table;
  if (bytes.size() > kHeaderSize) {
    bytes::Reader in(bytes, 4);
    const std::uint32_t length = in.U32();
    if (length != 0 && length <= in.Left() && LooksLikeTable(bytes::Slice(bytes, kHeaderSize))) {
      return bytes;
    }
  }
  if (LooksLikeTable(bytes)) return WithHeader(0, 0, bytes);
  return {};
}

Bytes LoadTableFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file)
    throw CommandError(kNotFound, "no-file", "The file '" + path + "' cannot be read.", path);
  Bytes content;
  content.reserve(64 * 1024);
  for (std::istreambuf_iterator<char> next(file), end; next != end; ++next) {
    if (content.size() == kLargestFile) break;
    content.push_back(static_cast<std::uint8_t>(*next));
  }
  Bytes table = NormalizeTable(std::move(content));
  if (table.empty()) {
    throw CommandError(kInvalidValue, "no-table", "'" + path + "' holds no SMBIOS table.", path,
                       "A table saved by 'mira smbios --save', a dump with its entry point, a bare "
                       "table, or one of them in hexadecimal is wanted.");
  }
  return table;
}

void SaveTableFile(const std::string& path, const Bytes& table) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(table.data()),
             static_cast<std::streamsize>(table.size()));
  file.close();
  if (!file) {
    throw CommandError(kUnexpected, "not-written", "The file '" + path + "' could not be written.",
                       path);
  }
}

}  // namespace mira::console
