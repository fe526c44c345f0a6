#ifndef MIRA_SMBIOS_TEXT_OUT_H_
#define MIRA_SMBIOS_TEXT_OUT_H_

// Where the texts of dumps and attributes go: a stream, which is written to piece by piece, so that
// a dump of any length needs the same little memory; or a string.
//
//   TextOut out(stream);
//   out << "Handle : " << Hex(handle) << '\n';
//   out.Flush();

#include <cstddef>
#include <cstdint>
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
  explicit TextOut(std::ostream& stream) : stream_(&stream) {}
  explicit TextOut(std::string& text) : text_(&text) {}
  TextOut(const TextOut&) = delete;
  TextOut& operator=(const TextOut&) = delete;

  TextOut& operator<<(std::string_view text);
  TextOut& operator<<(char character) { return *this << std::string_view(&character, 1); }
  TextOut& operator<<(Decimal number);
  TextOut& operator<<(Hex number);
  // With six significant digits, as a stream writes a double.
  TextOut& operator<<(double number);
  // Each byte in hexadecimal, with a blank in between.
  TextOut& operator<<(bytes::ByteSpan bytes);

  // Hands what is held back to the stream. Without it the end of the text is lost.
  void Flush();

 private:
  static constexpr std::size_t kPiece = 2048;

  std::ostream* stream_ = nullptr;
  std::string* text_ = nullptr;
  std::size_t used_ = 0;
  char piece_[kPiece];
};

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_TEXT_OUT_H_
