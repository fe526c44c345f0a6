#include "client/report/characters.h"

#include <algorithm>
#include <iterator>

#include "bytes/text.h"
#include "client/json.h"

namespace mira::client {
namespace {

struct CodeRange {
  char32_t first, last;
};

constexpr CodeRange kDrivesDisplay[] = {
    {0x00, 0x1F},      // C0
    {0x7F, 0x9F},      // delete, C1
    {0x061C, 0x061C},  // Arabic letter mark
    {0x200E, 0x200F},  // left-to-right and right-to-left mark
    {0x2028, 0x2029},  // line and paragraph separator
    {0x202A, 0x202E},  // embeddings and overrides
    {0x2066, 0x2069},  // isolates
};

constexpr CodeRange kTakesNoRoom[] = {
    {0x00AD, 0x00AD},    // soft hyphen
    {0x034F, 0x034F},    // combining grapheme joiner
    {0x115F, 0x1160},    // Hangul fillers
    {0x180E, 0x180E},    // Mongolian vowel separator
    {0x200B, 0x200D},    // zero-width space, non-joiner and joiner
    {0x2060, 0x2065},    // word joiner, invisible operators
    {0x206A, 0x206F},    // shaping controls
    {0x3164, 0x3164},    // Hangul filler
    {0xFEFF, 0xFEFF},    // byte order mark
    {0xFFA0, 0xFFA0},    // halfwidth Hangul filler
    {0xFFF9, 0xFFFB},    // interlinear annotation
    {0xE0000, 0xE007F},  // tags
};

template <std::size_t kCount>
bool IsIn(const CodeRange (&ranges)[kCount], char32_t code) {
  return std::any_of(std::begin(ranges), std::end(ranges), [code](const CodeRange& range) {
    return code >= range.first && code <= range.last;
  });
}

char32_t CodePointOf(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  if (character.size() == 1) return first;
  constexpr unsigned kFirstBits[] = {0, 0, 0x1F, 0x0F, 0x07};
  char32_t code = first & kFirstBits[std::min<std::size_t>(character.size(), 4)];
  for (const char c : character.substr(1)) code = code << 6 | (static_cast<unsigned>(c) & 0x3F);
  return code;
}

}  // namespace

std::string RewriteCharacters(std::string_view text, RewriteCharacter rewrite) {
  const std::string utf8 = ToUtf8(text);
  std::string rewritten;
  rewritten.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    std::size_t end = i + 1;
    while (end < utf8.size() && (static_cast<unsigned char>(utf8[end]) & 0xC0) == 0x80) ++end;
    const std::string_view character = std::string_view(utf8).substr(i, end - i);
    rewritten += rewrite(character, CodePointOf(character));
    i = end;
  }
  return rewritten;
}

bool DrivesDisplay(char32_t code) { return IsIn(kDrivesDisplay, code); }

bool IsInvisible(char32_t code) { return DrivesDisplay(code) || IsIn(kTakesNoRoom, code); }

std::string EscapeOf(char32_t code) {
  return code < 0x100 ? "\\x" + bytes::HexNumber(code, 2) : "\\u" + bytes::HexNumber(code, 4);
}

}  // namespace mira::client
