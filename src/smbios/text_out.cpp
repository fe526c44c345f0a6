#include "smbios/text_out.h"

#include <charconv>

#include "bytes/text.h"

namespace mira::smbios {
namespace {

template <typename... Arguments>
void WriteChars(TextOut& out, Arguments... arguments) {
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof(digits), arguments...).ptr;
  out << std::string_view(digits, static_cast<std::size_t>(end - digits));
}

}  // namespace

TextOut& TextOut::WriteDecimal(std::uint64_t number) {
  WriteChars(*this, number);
  return *this;
}

TextOut& TextOut::WriteLong(std::string_view text) {
  MakeRoom();
  if (text.size() <= kPiece) return *this << text;
  if (stream_ != nullptr) {
    stream_->write(text.data(), static_cast<std::streamsize>(text.size()));
  } else {
    overflow_.append(text);
  }
  return *this;
}

TextOut& TextOut::operator<<(Hex number) {
  char digits[16];
  char* first = digits + sizeof(digits);
  std::uint64_t rest = number.value;
  do {
    *--first = bytes::HexDigit(rest);
    rest >>= 4;
  } while (rest != 0);
  return *this << std::string_view(first,
                                   static_cast<std::size_t>(digits + sizeof(digits) - first));
}

TextOut& TextOut::operator<<(double number) {
  WriteChars(*this, number, std::chars_format::general, 6);
  return *this;
}

TextOut& TextOut::operator<<(bytes::ByteSpan bytes) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i > 0) *this << ' ';
    *this << Hex(bytes[i]);
  }
  return *this;
}

void TextOut::MakeRoom() {
  if (stream_ != nullptr) {
    Flush();
  } else {
    overflow_.append(piece_, used_);
    used_ = 0;
  }
}

void TextOut::Flush() {
  if (stream_ != nullptr && used_ > 0) {
    stream_->write(piece_, static_cast<std::streamsize>(used_));
    used_ = 0;
  }
}

std::string_view TextOut::Text() {
  if (overflow_.empty()) return {piece_, used_};
  MakeRoom();
  return overflow_;
}

}  // namespace mira::smbios
