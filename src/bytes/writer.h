#ifndef MIRA_BYTES_WRITER_H_
#define MIRA_BYTES_WRITER_H_

// A bounded little-endian writer into bytes that are already there, such as a call record. A write
// that does not fit writes nothing and marks the writer failed; ask once at the end, which checked
// builds insist on.
//
//   Writer out(record_bytes, 44);
//   out.U32(length);
//   out.Text(password);       // with its NUL
//   return out.Ok();

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "bytes/cursor.h"
#include "bytes/reader.h"

namespace mira::bytes {

using MutableByteSpan = std::span<std::uint8_t>;

// Puts a little-endian number of `width` bytes behind the others.
inline void Append(std::vector<std::uint8_t>& bytes, std::uint64_t value, std::size_t width) {
  for (std::size_t i = 0; i < width; ++i) {
    bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
}

class Writer : public Cursor {
 public:
  explicit Writer(MutableByteSpan bytes, std::size_t offset = 0, Place made = Place::current())
      : Cursor(bytes.size(), offset, made), data_(bytes.data()) {}

  void U8(std::uint8_t value) { Number(value, 1); }
  void U16(std::uint16_t value) { Number(value, 2); }
  void U32(std::uint32_t value) { Number(value, 4); }
  void U64(std::uint64_t value) { Number(value, 8); }

  void Number(std::uint64_t value, std::size_t width) {
    std::uint8_t digits[8] = {};
    for (std::size_t i = 0; i < width; ++i) digits[i] = static_cast<std::uint8_t>(value >> (8 * i));
    Bytes({digits, width});
  }

  void Bytes(ByteSpan source) {
    if (!Pass(source.size()) || source.empty()) return;
    std::memcpy(data_ + Offset() - source.size(), source.data(), source.size());
  }

  // The text and its NUL.
  void Text(std::string_view text) {
    Bytes(AsBytes(text));
    U8(0);
  }

 private:
  std::uint8_t* data_;
};

}  // namespace mira::bytes

#endif  // MIRA_BYTES_WRITER_H_
