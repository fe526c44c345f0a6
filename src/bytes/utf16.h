#ifndef MIRA_BYTES_UTF16_H_
#define MIRA_BYTES_UTF16_H_

// Texts of the firmware in the forms in which hosts and consoles want them. A half of a surrogate
// pair that stands alone stays as it is in a wide text, which has room for it; UTF-8 has no form
// for it, so U+FFFD stands in its place there.
//
//   std::cout << mira::bytes::Utf8(item.Name);

#include <optional>
#include <string>
#include <string_view>

#include "platform/api.h"

namespace mira::bytes {

MIRA_API std::string Utf8(std::u16string_view text);
MIRA_API std::string Utf8(std::wstring_view text);

// Wide characters are UTF-16 on Windows and whole code points elsewhere.
MIRA_API std::wstring Wide(std::u16string_view text);

// Nothing when the bytes are no UTF-8 (RFC 3629).
MIRA_API std::optional<std::u16string> Utf16(std::string_view utf8);
MIRA_API bool IsUtf8(std::string_view text);

// The code point of a pair of UTF-16 units; nothing when they are no pair.
MIRA_API std::optional<char32_t> PairOf(char32_t high, char32_t low);
// Half of a pair.
MIRA_API bool IsSurrogate(char32_t c);
MIRA_API void AppendUtf8(std::string& out, char32_t c);

// Each byte is the code point of its number; back, nothing when a code point has no such byte or
// the text is no UTF-8.
MIRA_API std::string Utf8OfLatin1(std::string_view latin1);
MIRA_API std::optional<std::string> Latin1OfUtf8(std::string_view utf8);

}  // namespace mira::bytes

#endif  // MIRA_BYTES_UTF16_H_
