#include "smbios/text_out.h"

#include <charconv>

namespace mira::smbios {
namespace {

template <typename... Arguments>
void WriteChars(TextOut& out, Arguments... arguments) {
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof(digits), arguments...).ptr;
  out << std::string_view(digits, static_cast<std::size_t>(end - digits));
}

}  // namespace

TextOut& TextOut::operator<<(std::string_view text) {
  if (text_ != nullptr) {
    text_->append(text);
    return *this;
  }
  if (text.size() > kPiece - used_) {
    Flush();
    if (text.size() > kPiece) {
      stream_->write(text.data(), static_cast<std::streamsize>(text.size()));
      return *this;
    }
  }
  used_ += text.copy(piece_ + used_, text.size());
  return *this;
}

TextOut& TextOut::operator<<(Decimal number) {
  WriteChars(*this, number.value);
  return *this;
}

TextOut& TextOut::operator<<(Hex number) {
  WriteChars(*this, number.value, 16);
  return *this;
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

void TextOut::Flush() {
  if (stream_ != nullptr && used_ > 0) {
    stream_->write(piece_, static_cast<std::streamsize>(used_));
  }
  used_ = 0;
}

}  // namespace mira::smbios
