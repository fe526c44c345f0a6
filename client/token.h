#ifndef MIRA_CLIENT_TOKEN_H_
#define MIRA_CLIENT_TOKEN_H_

// The calling interface's tokens: what firmware settings are called in its table.

#include <cstdint>
#include <vector>

#include "client/json.h"
#include "client/session.h"

namespace mira::client {

struct Token {
  std::uint16_t id = 0;
  std::uint16_t location = 0;
  std::uint16_t value = 0;
};

// In ascending order of their numbers.
std::vector<Token> ReadTokens(Session& session);
// {"id", "location", "value"}
Json ToJson(const Token& token);
Token TokenFromJson(const Json& json);

}  // namespace mira::client

#endif  // MIRA_CLIENT_TOKEN_H_
