#include "client/token.h"

#include <map>

#include "client/commands.h"
#include "client/snapshot/snapshot.h"

namespace mira::client {
namespace {

Json ShowTokens(Request& request) {
  Json list = Json::array();
  for (const Token& token : ReadTokens(request.GetSession())) list.push_back(ToJson(token));
  return {{"tokens", std::move(list)}};
}

}  // namespace

std::vector<Token> ReadTokens(Session& session) {
  if (const Snapshot* const kept = session.Kept()) {
    return kept->List(kTokensSubject, "tokens", TokenFromJson);
  }
  std::map<std::uint16_t, CDAToken> tokens;
  session.Ready().GetAllDATokens(tokens);
  std::vector<Token> list;
  list.reserve(tokens.size());
  for (const auto& [id, token] : tokens) {
    Token& row = list.emplace_back();
    token.TokenInfo(row.id, row.location, row.value);
  }
  return list;
}

Json ToJson(const Token& token) {
  return {{"id", token.id}, {"location", token.location}, {"value", token.value}};
}

Token TokenFromJson(const Json& json) {
  return {.id = json.at("id"), .location = json.at("location"), .value = json.at("value")};
}

std::vector<Command> TokenCommands() {
  return {{.name = "tokens", .summary = "List the calling interface's tokens", .run = ShowTokens}};
}

}  // namespace mira::client
