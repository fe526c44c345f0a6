#ifndef MIRA_SMBIOS_TEXT_OUT_H_
#define MIRA_SMBIOS_TEXT_OUT_H_

// Where the texts of dumps and attributes go: a stream, which is written to piece by piece, so that
// a dump of any length needs the same little memory; or a buffer, whose text is taken whole.
//
//   TextOut out(stream);
//   out << "Handle : " << Hex(handle) << '\n';
//   out.Flush();
//
//   TextOut value;
//   value << Decimal(speed) << "MHz";
//   list.emplace_back("Speed", value.Text());

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>

#include "bytes/reader.h"

namespace mira::smbios {

struct Decimal {
  explicit constexpr Decimal(std::uint64_t number) : value(number) {}
  std::uint64_t value;
};

// In lower case, without prefix or leading zeros.
struct Hex {
  explicit constexpr Hex(std::uint64_t number) : value(number) {}
  std::uint64_t value;
};

class TextOut {
 public:
  TextOut() = default;
  explicit TextOut(std::ostream& stream) : stream_(&stream) {}
  TextOut(const TextOut&) = delete;
  TextOut& operator=(const TextOut&) = delete;

  TextOut& operator<<(std::string_view text) {
    if (text.size() > kPiece - used_) return WriteLong(text);
    Copy(text, piece_ + used_);
    used_ += text.size();
    return *this;
  }
  TextOut& operator<<(char character) {
    if (used_ == kPiece) MakeRoom();
    piece_[used_++] = character;
    return *this;
  }
  TextOut& operator<<(Decimal number) {
    if (number.value > 9) return WriteDecimal(number.value);
    return *this << static_cast<char>('0' + number.value);
  }
  TextOut& operator<<(Hex number);
  // With six significant digits, as a stream writes a double.
  TextOut& operator<<(double number);
  // Each byte in hexadecimal, with a blank in between.
  TextOut& operator<<(bytes::ByteSpan bytes);

  // Hands what is held back to the stream. Without it the end of the text is lost.
  void Flush();

  // Without a stream: the whole text, until the next one is written or begun.
  std::string_view Text();
  void Clear() {
    used_ = 0;
    overflow_.clear();
  }

 private:
  static constexpr std::size_t kPiece = 2048;

  // Most texts are short, and copied before a library function for any length would have begun.
  static void Copy(std::string_view text, char* to) {
    const char* const from = text.data();
    const std::size_t size = text.size();
    if (size > 32) {
      std::memcpy(to, from, size);
    } else if (size >= 16) {
      CopyEnds<16>(from, size, to);
    } else if (size >= 8) {
      CopyEnds<8>(from, size, to);
    } else if (size >= 4) {
      CopyEnds<4>(from, size, to);
    } else if (size > 0) {
      to[0] = from[0];
      to[size / 2] = from[size / 2];
      to[size - 1] = from[size - 1];
    }
  }
  // The first and the last N bytes, which may overlap.
  template <std::size_t N>
  static void CopyEnds(const char* from, std::size_t size, char* to) {
    std::memcpy(to, from, N);
    std::memcpy(to + size - N, from + size - N, N);
  }

  TextOut& WriteDecimal(std::uint64_t number);
  TextOut& WriteLong(std::string_view text);
  void MakeRoom();

  std::ostream* stream_ = nullptr;
  std::size_t used_ = 0;
  std::string overflow_;  // without a stream: what stands before the piece
  char piece_[kPiece];
};

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_TEXT_OUT_H_
