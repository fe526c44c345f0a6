#include "bytes/utf16.h"

namespace mira::bytes {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kFirstHigh = 0xD800;
constexpr char32_t kFirstLow = 0xDC00;
constexpr char32_t kBehindSurrogates = 0xE000;
constexpr char32_t kFirstPair = 0x10000;
constexpr char32_t kLast = 0x10FFFF;

constexpr bool IsHigh(char32_t c) { return c >= kFirstHigh && c < kFirstLow; }
constexpr bool IsLow(char32_t c) { return c >= kFirstLow && c < kBehindSurrogates; }

// Hands each code point of the text to `take`.
template <typename Take>
void ForEachCodePoint(std::u16string_view text, const Take& take) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = text[i];
    if (IsHigh(c) && i + 1 < text.size() && IsLow(text[i + 1])) {
      c = kFirstPair + ((c - kFirstHigh) << 10) + (text[++i] - kFirstLow);
    } else if (IsHigh(c) || IsLow(c)) {
      c = kReplacement;
    }
    take(c);
  }
}

// Appends a code point as units of 16 bits.
template <typename String>
void AppendUnits(String& out, char32_t c) {
  using Unit = typename String::value_type;
  if (c < kFirstPair) {
    out += static_cast<Unit>(c);
    return;
  }
  out += static_cast<Unit>(kFirstHigh + ((c - kFirstPair) >> 10));
  out += static_cast<Unit>(kFirstLow + ((c - kFirstPair) & 0x3FF));
}

}  // namespace

std::string Utf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  const auto continuation = [&out](char32_t c, int shift) {
    out += static_cast<char>(0x80 | (c >> shift & 0x3F));
  };
  ForEachCodePoint(text, [&](char32_t c) {
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += static_cast<char>(0xC0 | c >> 6);
      continuation(c, 0);
    } else if (c < kFirstPair) {
      out += static_cast<char>(0xE0 | c >> 12);
      continuation(c, 6);
      continuation(c, 0);
    } else {
      out += static_cast<char>(0xF0 | c >> 18);
      continuation(c, 12);
      continuation(c, 6);
      continuation(c, 0);
    }
  });
  return out;
}

std::wstring Wide(std::u16string_view text) {
  std::wstring out;
  out.reserve(text.size());
  ForEachCodePoint(text, [&](char32_t c) {
    if constexpr (sizeof(wchar_t) == sizeof(char16_t)) {
      AppendUnits(out, c);
    } else {
      out += static_cast<wchar_t>(c);
    }
  });
  return out;
}

std::optional<std::u16string> Utf16(std::string_view utf8) {
  // How a sequence begins: its first byte under a mask, its continuation bytes, and the smallest
  // code point that may be written so.
  struct Form {
    unsigned char mask;
    unsigned char lead;
    std::size_t continuations;
    char32_t smallest;
  };
  static constexpr Form kForms[] = {{0x80, 0x00, 0, 0},
                                    {0xE0, 0xC0, 1, 0x80},
                                    {0xF0, 0xE0, 2, 0x800},
                                    {0xF8, 0xF0, 3, kFirstPair}};
  std::u16string out;
  out.reserve(utf8.size());
  while (!utf8.empty()) {
    const auto lead = static_cast<unsigned char>(utf8[0]);
    const Form* form = nullptr;
    for (const Form& row : kForms) {
      if ((lead & row.mask) == row.lead) form = &row;
    }
    if (form == nullptr || utf8.size() <= form->continuations) return std::nullopt;
    char32_t c = lead & static_cast<unsigned char>(~form->mask);
    for (std::size_t i = 1; i <= form->continuations; ++i) {
      const auto next = static_cast<unsigned char>(utf8[i]);
      if ((next & 0xC0) != 0x80) return std::nullopt;
      c = c << 6 | (next & 0x3F);
    }
    if (c < form->smallest || c > kLast || IsHigh(c) || IsLow(c)) return std::nullopt;
    AppendUnits(out, c);
    utf8.remove_prefix(1 + form->continuations);
  }
  return out;
}

}  // namespace mira::bytes
