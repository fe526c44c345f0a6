#include "client/smbios_file.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "client/smbios_text.h"
#include "smbios/table.h"

namespace mira::client {
namespace {

using Bytes = std::vector<std::uint8_t>;
using bytes::ByteSpan;

constexpr std::size_t kHeaderSize = smbios::kFirmwareHeaderSize;
constexpr std::size_t kLengthOffset = 4;
constexpr std::size_t kDumpTableOffset = 32;

// A structure begins here as far as can be seen: a length of at least its header, and a string set
// behind it.
bool LooksLikeTable(ByteSpan table) {
  return smbios::TableWalk(table).Next() == smbios::TableWalk::Step::kStructure;
}

// DSP0134 5.2.1 and 5.2.2, and the form before them, whose version is one byte of two digits.
struct EntryPoint {
  std::string_view anchor;
  std::size_t version;
  bool version_is_digits;
  std::size_t length;
  std::size_t length_width;
  std::size_t address;
  std::size_t address_width;
  bool length_is_exact;  // else the most that the table may take
};
constexpr EntryPoint kEntryPoints[] = {
    {"_SM3_", 0x07, false, 0x0C, 4, 0x10, 8, false},
    {"_SM_", 0x06, false, 0x16, 2, 0x18, 4, true},
    {"_DMI_", 0x0E, true, 0x06, 2, 0x08, 4, true},
};

Bytes FromEntryPoint(ByteSpan file) {
  for (const EntryPoint& form : kEntryPoints) {
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
    const SmbiosVersion version = form.version_is_digits ? SmbiosVersion{major / 16u, major % 16u}
                                                         : RealVersion(major, minor);
    return WithHeader(
        version, form.length_is_exact ? static_cast<std::size_t>(length) : table.size(), table);
  }
  return {};
}

// Appends a little-endian number.
void Append(Bytes& bytes, std::uint64_t value, std::size_t width) {
  for (; width > 0; --width, value >>= 8) bytes.push_back(static_cast<std::uint8_t>(value));
}

void Append(Bytes& bytes, std::string_view text) {
  bytes.insert(bytes.end(), text.begin(), text.end());
}

// The byte with which all of them add up to 0.
std::uint8_t Checksum(ByteSpan bytes) {
  return static_cast<std::uint8_t>(0u - std::accumulate(bytes.begin(), bytes.end(), 0u));
}

Bytes EntryPoint64(ByteSpan header, std::size_t size) {
  constexpr std::uint8_t kSize = 0x18;
  Bytes entry;
  Append(entry, "_SM3_");
  for (const std::uint8_t byte : {std::uint8_t{0}, kSize, header[1], header[2], header[3]}) {
    Append(entry, byte, 1);
  }
  Append(entry, 1, 2);  // the entry point's own revision
  Append(entry, size, 4);
  Append(entry, kDumpTableOffset, 8);
  entry[5] = Checksum(entry);
  return entry;
}

Bytes EntryPoint32(ByteSpan header, ByteSpan table) {
  constexpr std::uint8_t kSize = 0x1F;
  constexpr std::size_t kIntermediate = 0x10;
  std::size_t count = 0;
  std::size_t largest = 0;
  smbios::TableWalk walk(table);
  for (; walk.Next() == smbios::TableWalk::Step::kStructure; ++count) {
    largest = std::max(largest, walk.Structure().size() + 1);
  }
  Bytes entry;
  Append(entry, "_SM_");
  for (const std::uint8_t byte : {std::uint8_t{0}, kSize, header[1], header[2]}) {
    Append(entry, byte, 1);
  }
  Append(entry, largest, 2);
  Append(entry, 0, 6);
  Append(entry, "_DMI_");
  Append(entry, 0, 1);
  Append(entry, table.size(), 2);
  Append(entry, kDumpTableOffset, 4);
  Append(entry, count, 2);
  Append(entry, header[1] * 16u + std::min<unsigned>(header[2], 9), 1);
  entry[kIntermediate + 5] = Checksum(ByteSpan(entry).subspan(kIntermediate));
  entry[4] = Checksum(entry);
  return entry;
}

}  // namespace

SmbiosVersion RealVersion(unsigned major, unsigned minor) {
  if (major == 2 && (minor == 31 || minor == 33)) return {2, 3};
  if (major == 2 && minor == 51) return {2, 6};
  return {major, minor};
}

Bytes WithHeader(SmbiosVersion version, std::size_t length, ByteSpan table) {
  Bytes result;
  Append(result, 0, 1);
  Append(result, version.major, 1);
  Append(result, version.minor, 1);
  Append(result, 0, 1);
  Append(result, length, 4);
  result.insert(result.end(), table.begin(), table.end());
  return result;
}

bool IsCutShort(ByteSpan firmware_table) {
  bytes::Reader in(firmware_table, kLengthOffset);
  const std::uint32_t length = in.U32();
  return !in.Ok() || length > in.Left();
}

Bytes TableFromFile(ByteSpan file) {
  Bytes text_bytes;
  // Text holds no NUL, a table always does.
  if (std::find(file.begin(), file.end(), 0) == file.end()) {
    if (Bytes table = FromListing(bytes::AsText(file)); !table.empty()) return table;
    text_bytes = FromHexDump(bytes::AsText(file));
    file = text_bytes;
  }
  if (Bytes table = FromEntryPoint(file); !table.empty()) return table;
  if (file.size() <= kHeaderSize) return {};
  // Byte 1 of the firmware table is the major version, of a bare table the length of the first
  // structure, which is at least 4.
  constexpr std::uint8_t kShortestStructure = 4;
  const std::uint64_t length = bytes::LittleEndian(bytes::Slice(file, kLengthOffset, 4));
  if (file[1] < kShortestStructure || length == file.size() - kHeaderSize) {
    if (!LooksLikeTable(bytes::Slice(file, kHeaderSize))) return {};
    Bytes table(file.begin(), file.end());
    const SmbiosVersion version = RealVersion(table[1], table[2]);
    table[2] = static_cast<std::uint8_t>(version.minor);
    return table;
  }
  const bool begins_with_end = file[0] == smbios::kEndOfTable;
  return LooksLikeTable(file) && !begins_with_end ? WithHeader({}, file.size(), file) : Bytes();
}

Bytes ToDump(ByteSpan firmware_table) {
  constexpr std::size_t kLargestShortLength = 0xFFFF;
  if (firmware_table.size() < kHeaderSize) return {};
  const ByteSpan header = firmware_table.first(kHeaderSize);
  const ByteSpan table = firmware_table.subspan(kHeaderSize);
  const bool needs_64 = header[1] >= 3 || table.size() > kLargestShortLength;
  Bytes dump = needs_64 ? EntryPoint64(header, table.size()) : EntryPoint32(header, table);
  dump.resize(kDumpTableOffset);
  dump.insert(dump.end(), table.begin(), table.end());
  return dump;
}

}  // namespace mira::client
