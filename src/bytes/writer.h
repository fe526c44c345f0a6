#ifndef MIRA_BYTES_WRITER_H_
#define MIRA_BYTES_WRITER_H_

// A bounded little-endian writer into bytes that are already there, such as a call record. A write
// that does not fit writes nothing and marks the writer failed; ask once at the end.
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

#include "bytes/reader.h"

namespace mira::bytes {

using MutableByteSpan = std::span<std::uint8_t>;

class Writer {
 public:
  explicit Writer(MutableByteSpan bytes, std::size_t offset = 0) : bytes_(bytes) { Seek(offset); }

  bool Ok() const { return ok_; }
  std::size_t Offset() const { return offset_; }

  void Seek(std::size_t offset) {
    if (offset > bytes_.size()) {
      ok_ = false;
    } else {
      offset_ = offset;
    }
  }

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
    if (!ok_ || source.size() > bytes_.size() - offset_) {
      ok_ = false;
      return;
    }
    if (!source.empty()) std::memcpy(bytes_.data() + offset_, source.data(), source.size());
    offset_ += source.size();
  }

  // The text and its NUL.
  void Text(std::string_view text) {
    Bytes(AsBytes(text));
    U8(0);
  }

 private:
  MutableByteSpan bytes_;
  std::size_t offset_ = 0;
  bool ok_ = true;
};

}  // namespace mira::bytes

#endif  // MIRA_BYTES_WRITER_H_
