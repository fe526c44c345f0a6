#ifndef MIRA_BYTES_UTF16_H_
#define MIRA_BYTES_UTF16_H_

// The firmware's UTF-16 texts in the forms in which hosts and consoles want them. A half of a
// surrogate pair that stands alone becomes U+FFFD.
//
//   std::cout << mira::bytes::Utf8(item.Name);

#include <optional>
#include <string>
#include <string_view>

#include "platform/api.h"

namespace mira::bytes {

MIRA_API std::string Utf8(std::u16string_view text);

// Wide characters are UTF-16 on Windows and whole code points elsewhere.
MIRA_API std::wstring Wide(std::u16string_view text);

// Nothing when the bytes are no UTF-8.
MIRA_API std::optional<std::u16string> Utf16(std::string_view utf8);

}  // namespace mira::bytes

#endif  // MIRA_BYTES_UTF16_H_
