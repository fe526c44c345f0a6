#ifndef MIRA_CONSOLE_OUTPUT_H_
#define MIRA_CONSOLE_OUTPUT_H_

// How the commands write: numbers, text of unknown encoding, columns, JSON.

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "client/json.h"

namespace mira::console {

using client::Json;
using client::ToUtf8;

// "0x1f", with at least `digits` digits.
std::string Hex(std::uint64_t value, int digits = 1);

// A text for the terminal, as UTF-8: control characters, and those that turn the direction of
// writing, stand as escapes, so that no text forges a line or drives the terminal.
std::string Escaped(std::string_view text);
// A path from UTF-8 text, whatever the system's own encoding is.
std::filesystem::path ToPath(const std::string& utf8);
std::string PathText(const std::filesystem::path& path);

// Rows in columns as wide as their contents, escaped. The first row holds the headings. Columns of
// `right` (counted from 0) are aligned to the right.
using Rows = std::vector<std::vector<std::string>>;
void WriteTable(std::ostream& out, const Rows& rows, const std::vector<std::size_t>& right = {});

// The document and a line end.
void WriteJson(std::ostream& out, const Json& document);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_OUTPUT_H_
