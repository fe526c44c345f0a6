#ifndef MIRA_BYTES_READER_H_
#define MIRA_BYTES_READER_H_

// A bounded little-endian cursor over bytes that nobody vouches for. A read past the end yields
// zero or empty, marks the reader failed and moves nothing; later reads yield zero too. Read a
// whole header, then ask once:
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

class Reader {
 public:
  constexpr Reader() = default;
  explicit constexpr Reader(ByteSpan bytes, std::size_t offset = 0) : bytes_(bytes) {
    Seek(offset);
  }

  constexpr bool Ok() const { return ok_; }
  constexpr std::size_t Offset() const { return offset_; }
  constexpr std::size_t Left() const { return ok_ ? bytes_.size() - offset_ : 0; }

  // Moves to an offset counted from the start of the bytes.
  constexpr void Seek(std::size_t offset) {
    if (offset > bytes_.size()) {
      ok_ = false;
    } else {
      offset_ = offset;
    }
  }

  constexpr std::uint8_t U8() { return static_cast<std::uint8_t>(Number(1)); }
  constexpr std::uint16_t U16() { return static_cast<std::uint16_t>(Number(2)); }
  constexpr std::uint32_t U32() { return static_cast<std::uint32_t>(Number(4)); }
  constexpr std::uint64_t U64() { return Number(8); }

  // A little-endian number of `width` bytes, 0 to 8.
  constexpr std::uint64_t Number(std::size_t width) {
    const ByteSpan taken = Take(width);
    std::uint64_t value = 0;
    for (std::size_t i = taken.size(); i-- > 0;) value = value << 8 | taken[i];
    return value;
  }

  // The next `size` bytes.
  constexpr ByteSpan Take(std::size_t size) {
    if (!ok_ || size > bytes_.size() - offset_) {
      ok_ = false;
      return {};
    }
    const ByteSpan taken = bytes_.subspan(offset_, size);
    offset_ += size;
    return taken;
  }

  // Everything that is left.
  constexpr ByteSpan Rest() { return Take(Left()); }

  // The text up to the next NUL, which is passed over; fails when there is none.
  std::string_view CString() {
    const std::string_view rest = AsText(Slice(bytes_, offset_));
    const std::size_t end = rest.find('\0');
    if (!ok_ || end == std::string_view::npos) {
      ok_ = false;
      return {};
    }
    offset_ += end + 1;
    return rest.substr(0, end);
  }

  // A text field of fixed width, which ends at its first NUL if it has one.
  std::string_view FixedText(std::size_t width) {
    const std::string_view field = AsText(Take(width));
    return field.substr(0, field.find('\0'));
  }

 private:
  ByteSpan bytes_;
  std::size_t offset_ = 0;
  bool ok_ = true;
};

}  // namespace mira::bytes

#endif  // MIRA_BYTES_READER_H_
