#ifndef MIRA_BUFFERS_PBA_TEXTS_H_
#define MIRA_BUFFERS_PBA_TEXTS_H_

// The texts of the completion codes that the password and pre-boot selects have of their own.

#include <cstdint>

namespace mira::buffers {

// Prints the text of the code for the select as a line; nothing where the select has none. False
// for the codes that mean the same for every command (below 1, above 9).
bool PrintPbaText(std::int32_t code, std::uint16_t select);

}  // namespace mira::buffers

#endif  // MIRA_BUFFERS_PBA_TEXTS_H_
