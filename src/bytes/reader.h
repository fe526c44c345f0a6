#ifndef MIRA_BYTES_READER_H_
#define MIRA_BYTES_READER_H_

// A bounded little-endian cursor over bytes that nobody vouches for. A read past the end yields
// zero or empty, marks the reader failed and moves nothing; later reads yield zero too. Read a
// whole header, then ask once, which checked builds insist on:
//
//   Reader in(bytes);
//   const std::uint16_t id = in.U16();
//   const std::uint32_t size = in.U32();
//   if (!in.Ok()) return {};

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "bytes/cursor.h"

namespace mira::bytes {

using ByteSpan = std::span<const std::uint8_t>;

// The part of `bytes` from `offset` on, at most `size` bytes long; empty when the offset lies
// outside.
constexpr ByteSpan Slice(ByteSpan bytes, std::size_t offset,
                         std::size_t size = std::dynamic_extent) {
  if (offset > bytes.size()) return {};
  const std::size_t rest = bytes.size() - offset;
  return bytes.subspan(offset, size < rest ? size : rest);
}

inline std::string_view AsText(ByteSpan bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

inline ByteSpan AsBytes(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// A text field, which ends at its first NUL if it has one.
constexpr std::string_view FixedText(std::string_view field) {
  return field.substr(0, field.find('\0'));
}

// The number that up to 8 bytes are.
constexpr std::uint64_t LittleEndian(ByteSpan bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) value = value << 8 | bytes[i];
  return value;
}

class Reader : public Cursor {
 public:
  constexpr Reader() : Reader(ByteSpan()) {}
  explicit constexpr Reader(ByteSpan bytes, std::size_t offset = 0, Place made = Place::current())
      : Cursor(bytes.size(), offset, made), data_(bytes.data()) {}

  // One that nobody has to ask, for those who take zeros for bytes that are not there.
  static constexpr Reader Lenient(ByteSpan bytes, std::size_t offset = 0) {
    Reader reader(bytes, offset);
    reader.Waive();
    return reader;
  }

  constexpr std::uint8_t U8() { return static_cast<std::uint8_t>(Number(1)); }
  constexpr std::uint16_t U16() { return static_cast<std::uint16_t>(Number(2)); }
  constexpr std::uint32_t U32() { return static_cast<std::uint32_t>(Number(4)); }
  constexpr std::uint64_t U64() { return Number(8); }

  // A little-endian number of `width` bytes, 0 to 8.
  constexpr std::uint64_t Number(std::size_t width) { return LittleEndian(Take(width)); }

  // The next `size` bytes.
  constexpr ByteSpan Take(std::size_t size) {
    return Pass(size) ? ByteSpan(data_ + Offset() - size, size) : ByteSpan();
  }

  // Everything that is left; Ahead() does not move.
  constexpr ByteSpan Rest() {
    const ByteSpan rest = Ahead();
    Seek(Offset() + rest.size());
    return rest;
  }
  constexpr ByteSpan Ahead() const { return {data_ + Offset(), Room()}; }

  // The text up to the next NUL, which is passed over; fails when there is none.
  std::string_view CString() {
    const std::string_view rest = AsText(Ahead());
    const std::size_t end = rest.find('\0');
    if (end == std::string_view::npos) {
      Fail();
      return {};
    }
    Pass(end + 1);
    return rest.substr(0, end);
  }

  // A text field of fixed width, which ends at its first NUL if it has one.
  std::string_view FixedText(std::size_t width) { return bytes::FixedText(AsText(Take(width))); }

 private:
  const std::uint8_t* data_;
};

}  // namespace mira::bytes

#endif  // MIRA_BYTES_READER_H_
