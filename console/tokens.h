#ifndef MIRA_CONSOLE_TOKENS_H_
#define MIRA_CONSOLE_TOKENS_H_

#include <cstdint>
#include <ostream>
#include <vector>

#include "facade/mira_intf.h"

namespace mira::console {

struct TokenRow {
  std::uint16_t id = 0;
  std::uint16_t location = 0;
  std::uint16_t value = 0;
};

// The tokens of all calling-interface structures, each once, ascending by id.
std::vector<TokenRow> ReadTokens(CMiraIntf& mira);
void WriteTokens(std::ostream& out, const std::vector<TokenRow>& tokens);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_TOKENS_H_
