#ifndef MIRA_TESTS_SUPPORT_BYTE_BUILDER_H_
#define MIRA_TESTS_SUPPORT_BYTE_BUILDER_H_

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace mira::test {

using Bytes = std::vector<std::uint8_t>;

// Bytes from their hexadecimal digits, two each, apart.
inline Bytes Hex(const std::string& digits) {
  Bytes bytes;
  std::istringstream in(digits);
  for (std::string pair; in >> pair;) {
    bytes.push_back(static_cast<std::uint8_t>(std::strtoul(pair.c_str(), nullptr, 16)));
  }
  return bytes;
}

// Little-endian bytes, one field after another.
class ByteBuilder {
 public:
  ByteBuilder& U8(std::uint64_t value) { return Number(value, 1); }
  ByteBuilder& U16(std::uint64_t value) { return Number(value, 2); }
  ByteBuilder& U32(std::uint64_t value) { return Number(value, 4); }
  ByteBuilder& U64(std::uint64_t value) { return Number(value, 8); }
  ByteBuilder& Raw(std::string_view text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return *this;
  }
  // A 16-bit length, then the text.
  ByteBuilder& Text(std::string_view text) { return U16(text.size()).Raw(text); }
  // An entry of the string table, and one of string data.
  ByteBuilder& String(std::uint16_t handle, std::string_view text) {
    return U16(handle).Text(text);
  }
  ByteBuilder& String(std::uint16_t handle, std::u16string_view text) {
    U16(handle).U16(text.size());
    for (const char16_t unit : text) U16(unit);
    return *this;
  }
  // What DSP0247 puts behind the last entry: pad bytes, then a checksum, here of no value.
  Bytes Table() {
    while (bytes_.size() % 4 != 0) U8(0);
    return U32(0xC5C5C5C5).bytes_;
  }
  const Bytes& Done() const { return bytes_; }

 private:
  ByteBuilder& Number(std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i) bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    return *this;
  }
  Bytes bytes_;
};

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_BYTE_BUILDER_H_
