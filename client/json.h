#ifndef MIRA_CLIENT_JSON_H_
#define MIRA_CLIENT_JSON_H_

// How values stand in JSON, wherever they appear: shown, planned, written, in a file.
//
// Numbers are numbers, except that those above 2^53-1 are decimal strings (RFC 7493). Bytes are
// hexadecimal. A text of the firmware is a string if it is ASCII; else an object with the text, the
// bytes read as UTF-8 or Latin-1, and the bytes themselves, which count when it is compared or
// written back:
//
//   {"text": "Café", "bytes": "436166e9"}

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"

namespace mira::client {

// Keeps the order in which fields are added.
using Json = nlohmann::ordered_json;

// Bytes as UTF-8: what is not UTF-8 is taken for Latin-1, so that nothing is lost.
std::string ToUtf8(std::string_view text);
std::string ToUtf8(std::wstring_view text);

Json NumberJson(std::uint64_t value);
// A number in either form; nothing for anything else.
std::optional<std::uint64_t> ToNumber(const Json& value);

// The bytes of hexadecimal text, blanks and a leading 0x allowed; nothing for another text.
std::optional<std::vector<std::uint8_t>> FromHexText(std::string_view text);

Json TextJson(std::string_view bytes);
// The bytes of a text in either form; nothing for anything else. A string stands for its UTF-8
// bytes.
std::optional<std::string> BytesOfText(const Json& value);
// The same of a field that must have one. Throws Error (kInvalidValue).
std::string TextFromJson(const Json& value);
// What a person reads: the text of either form, numbers in decimal, lists with commas, "" for null.
std::string Readable(const Json& value);

// A document from a file or a request. Accepts a byte order mark, and UTF-16 with or without one.
// Throws Error (kInvalidValue) that names line and column of the first mistake, or a key that is
// there twice; `name` names the document in it.
Json ParseJson(std::string_view text, const std::string& name);

// A JSON document, which may be UTF-16 or have a byte order mark, as plain UTF-8. UTF-16 may lack
// its mark: JSON begins with an ASCII character, so one of its first two bytes is NUL.
std::string PlainUtf8(std::string_view text);

// The document as text, two blanks a level, with a line end.
std::string ToText(const Json& document);

// Overwrites every string in the value before it goes.
void Wipe(Json& value) noexcept;

}  // namespace mira::client

#endif  // MIRA_CLIENT_JSON_H_
