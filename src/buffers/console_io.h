#ifndef MIRA_BUFFERS_CONSOLE_IO_H_
#define MIRA_BUFFERS_CONSOLE_IO_H_

// Prompts of the command buffers: written to standard output without a line end, answered on
// standard input. Every answer takes a whole line. An answer that is not acceptable is asked again;
// false means that the input ended.
//
//   std::uint32_t value = 0;
//   if (!mira::console_io::AskHex("Arg1 : 0x", value)) return nullptr;

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace mira::console_io {

// A hexadecimal number of at most 32 bits, with or without "0x".
bool AskHex(const char* prompt, std::uint32_t& value);

// A decimal number from `lowest` to `highest`.
bool AskNumber(const char* prompt, std::uint32_t& value, std::uint32_t lowest = 0,
               std::uint32_t highest = 0xFFFFFFFF);

// As many decimal numbers as `count`, none above `highest`, on one line or on several.
bool AskNumbers(const char* prompt, std::vector<std::uint32_t>& values, std::size_t count,
                std::uint32_t highest);

// A line of at most `longest` characters. Its memory before the answer is wiped: it may be a
// password.
bool AskText(const char* prompt, std::string& text, std::size_t longest);

// One word: an answer up to its first white space.
bool AskWord(const char* prompt, std::string& text);

// Whether the answer begins with "y" or "Y".
bool AskYes(const char* prompt, bool& yes);

// Writes the text and a line end to the wide standard output, in order with what the narrow one
// got. Where both are the process's own standard output, which takes bytes or wide characters but
// not both, the text goes there as UTF-8.
void WriteWideLine(std::u16string_view text);

}  // namespace mira::console_io

#endif  // MIRA_BUFFERS_CONSOLE_IO_H_
