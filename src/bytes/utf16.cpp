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

// Hands each code point of the text to `take`, a half of a pair that stands alone included. Wide
// texts are read so, too: where their characters are whole code points, no pairs are found.
template <typename Unit, typename Take>
void ForEachCodePoint(std::basic_string_view<Unit> text, const Take& take) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char32_t c = static_cast<char32_t>(text[i]);
    const char32_t next = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) : 0;
    const std::optional<char32_t> pair = PairOf(c, next);
    if (pair) ++i;
    take(pair.value_or(c));
  }
}

void AppendUnits(std::u16string& out, char32_t c) {
  if (c < kFirstPair) {
    out += static_cast<char16_t>(c);
    return;
  }
  out += static_cast<char16_t>(kFirstHigh + ((c - kFirstPair) >> 10));
  out += static_cast<char16_t>(kFirstLow + ((c - kFirstPair) & 0x3FF));
}

template <typename Unit>
std::string ToUtf8(std::basic_string_view<Unit> text) {
  std::string out;
  out.reserve(text.size());
  ForEachCodePoint(text, [&out](char32_t c) { AppendUtf8(out, c); });
  return out;
}

// Hands each code point of UTF-8 text to `take`; false at the first byte that is none.
template <typename Take>
bool ReadUtf8(std::string_view utf8, const Take& take) {
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
  while (!utf8.empty()) {
    const auto lead = static_cast<unsigned char>(utf8[0]);
    const Form* form = nullptr;
    for (const Form& row : kForms) {
      if ((lead & row.mask) == row.lead) form = &row;
    }
    if (form == nullptr || utf8.size() <= form->continuations) return false;
    char32_t c = lead & static_cast<unsigned char>(~form->mask);
    for (std::size_t i = 1; i <= form->continuations; ++i) {
      const auto next = static_cast<unsigned char>(utf8[i]);
      if ((next & 0xC0) != 0x80) return false;
      c = c << 6 | (next & 0x3F);
    }
    if (c < form->smallest || c > kLast || IsSurrogate(c)) return false;
    take(c);
    utf8.remove_prefix(1 + form->continuations);
  }
  return true;
}

}  // namespace

std::optional<char32_t> PairOf(char32_t high, char32_t low) {
  if (!IsHigh(high) || !IsLow(low)) return std::nullopt;
  return kFirstPair + ((high - kFirstHigh) << 10) + (low - kFirstLow);
}

bool IsSurrogate(char32_t c) { return IsHigh(c) || IsLow(c); }

void AppendUtf8(std::string& out, char32_t c) {
  if (IsSurrogate(c) || c > kLast) c = kReplacement;
  const auto continuation = [&out, c](int shift) {
    out += static_cast<char>(0x80 | (c >> shift & 0x3F));
  };
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | c >> 6);
    continuation(0);
  } else if (c < kFirstPair) {
    out += static_cast<char>(0xE0 | c >> 12);
    continuation(6);
    continuation(0);
  } else {
    out += static_cast<char>(0xF0 | c >> 18);
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

std::string Utf8(std::u16string_view text) { return ToUtf8(text); }

std::string Utf8(std::wstring_view text) { return ToUtf8(text); }

std::wstring Wide(std::u16string_view text) {
  if constexpr (sizeof(wchar_t) == sizeof(char16_t)) return {text.begin(), text.end()};
  std::wstring out;
  out.reserve(text.size());
  ForEachCodePoint(text, [&out](char32_t c) { out += static_cast<wchar_t>(c); });
  return out;
}

std::optional<std::u16string> Utf16(std::string_view utf8) {
  std::u16string out;
  out.reserve(utf8.size());
  if (!ReadUtf8(utf8, [&out](char32_t c) { AppendUnits(out, c); })) return std::nullopt;
  return out;
}

bool IsUtf8(std::string_view text) {
  return ReadUtf8(text, [](char32_t) {});
}

std::string Utf8OfLatin1(std::string_view latin1) {
  std::string out;
  out.reserve(latin1.size());
  for (const char c : latin1) AppendUtf8(out, static_cast<unsigned char>(c));
  return out;
}

std::optional<std::string> Latin1OfUtf8(std::string_view utf8) {
  std::string out;
  bool fits = true;
  const bool is_utf8 = ReadUtf8(utf8, [&](char32_t c) {
    fits = fits && c <= 0xFF;
    out += static_cast<char>(c);
  });
  if (!is_utf8 || !fits) return std::nullopt;
  return out;
}

}  // namespace mira::bytes
