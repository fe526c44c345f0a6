#ifndef MIRA_BUFFERS_CODE_TEXT_H_
#define MIRA_BUFFERS_CODE_TEXT_H_

#include <cstdint>
#include <iostream>
#include <span>

namespace mira::buffers {

// The text of a function-specific completion code for one select.
struct CodeText {
  std::int32_t code;
  std::uint16_t select;
  const char* text;
};

// Prints the text of the code for the select, if there is one, and ends the line.
inline void PrintCodeText(std::span<const CodeText> texts, std::int32_t code,
                          std::uint16_t select) {
  for (const CodeText& row : texts) {
    if (row.code != code || row.select != select) continue;
    std::cout << row.text << std::endl;
    return;
  }
}

}  // namespace mira::buffers

#endif  // MIRA_BUFFERS_CODE_TEXT_H_
