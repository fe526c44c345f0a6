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

namespace mira::console_io {

// A hexadecimal number of at most 32 bits, with or without "0x".
bool AskHex(const char* prompt, std::uint32_t& value);

// A decimal number from `lowest` to `highest`.
bool AskNumber(const char* prompt, std::uint32_t& value, std::uint32_t lowest = 0,
               std::uint32_t highest = 0xFFFFFFFF);

// A line of at most `longest` characters. Its memory before the answer is wiped: it may be a
// password.
bool AskText(const char* prompt, std::string& text, std::size_t longest);

// One word: an answer up to its first white space.
bool AskWord(const char* prompt, std::string& text);

// Whether the answer begins with "y" or "Y".
bool AskYes(const char* prompt, bool& yes);

}  // namespace mira::console_io

#endif  // MIRA_BUFFERS_CONSOLE_IO_H_
