#ifndef MIRA_BYTES_TEXT_H_
#define MIRA_BYTES_TEXT_H_

// Numbers, hexadecimal digits and letters of ASCII in texts, the same whatever the locale is.
//
//   ParseNumber("0x1F");       // 31; nothing for "", "+1", "12 " or "0x"
//   HexNumber(31, 4);          // "001f"
//   HexText(bytes);            // "0badcafe"
//   ParseHexText("0BadCafe");  // the bytes back

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"

namespace mira::bytes {

// ---- Letters ----

constexpr char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
constexpr char Upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

inline std::string Lower(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = Lower(c);
  return lower;
}

inline std::string Upper(std::string_view text) {
  std::string upper(text);
  for (char& c : upper) c = Upper(c);
  return upper;
}

// Whether the texts differ at most in the case of their letters.
constexpr bool SameText(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return Lower(x) == Lower(y); });
}

// Whether `part` stands in the text, in upper or lower case.
constexpr bool ContainsText(std::string_view text, std::string_view part) {
  return std::search(text.begin(), text.end(), part.begin(), part.end(),
                     [](char x, char y) { return Lower(x) == Lower(y); }) != text.end();
}

// Without the blanks at both ends.
constexpr std::string_view Trimmed(std::string_view text, std::string_view blanks = " \t") {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text.substr(0, text.find_last_not_of(blanks) + 1);
}

// ---- Numbers ----

// The number that the whole text is, in digits alone; nothing when it is none or above `highest`.
inline std::optional<std::uint64_t> ParseDigits(
    std::string_view text, int base,
    std::uint64_t highest = std::numeric_limits<std::uint64_t>::max()) {
  std::uint64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value, base);
  if (error != std::errc() || last != end || value > highest) return std::nullopt;
  return value;
}

// The text behind its "0x"; nothing when it has none.
constexpr std::optional<std::string_view> WithoutHexPrefix(std::string_view text) {
  if (!text.starts_with("0x") && !text.starts_with("0X")) return std::nullopt;
  return text.substr(2);
}

// The same for decimal digits, or hexadecimal ones behind "0x".
inline std::optional<std::uint64_t> ParseNumber(
    std::string_view text, std::uint64_t highest = std::numeric_limits<std::uint64_t>::max()) {
  const std::optional<std::string_view> digits = WithoutHexPrefix(text);
  return digits ? ParseDigits(*digits, 16, highest) : ParseDigits(text, 10, highest);
}

// ---- Hexadecimal ----

enum class HexCase { kLower, kUpper };

constexpr char HexDigit(std::uint64_t value, HexCase letters = HexCase::kLower) {
  return (letters == HexCase::kLower ? "0123456789abcdef" : "0123456789ABCDEF")[value & 0xF];
}

constexpr bool IsHexDigit(char c) {
  return (c >= '0' && c <= '9') || (Lower(c) >= 'a' && Lower(c) <= 'f');
}

// The number with at least `digits` digits, without a prefix.
inline std::string HexNumber(std::uint64_t value, std::size_t digits = 1,
                             HexCase letters = HexCase::kLower) {
  std::string text;
  for (; value != 0 || text.size() < digits; value >>= 4) text += HexDigit(value, letters);
  std::reverse(text.begin(), text.end());
  return text;
}

// Two digits a byte.
inline std::string HexText(ByteSpan bytes, HexCase letters = HexCase::kLower) {
  std::string text;
  text.reserve(2 * bytes.size());
  for (const std::uint8_t byte : bytes) {
    text += HexDigit(byte >> 4, letters);
    text += HexDigit(byte, letters);
  }
  return text;
}

// The bytes of such a text; nothing when it is none.
inline std::optional<std::vector<std::uint8_t>> ParseHexText(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 2);
  for (; !text.empty(); text.remove_prefix(2)) {
    const auto byte = ParseDigits(text.substr(0, 2), 16);
    if (!byte) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(*byte));
  }
  return bytes;
}

}  // namespace mira::bytes

#endif  // MIRA_BYTES_TEXT_H_
