#include "console/tokens.h"

#include "console/commands.h"

namespace mira::console {
namespace {

ExitStatus ListTokens(Context& context) {
  const std::vector<TokenRow> tokens = ReadTokens(context.Ready());
  if (context.IsJson()) {
    Json list = Json::array();
    for (const TokenRow& token : tokens) {
      list.push_back({{"id", token.id}, {"location", token.location}, {"value", token.value}});
    }
    context.Print({{"tokens", list}});
  } else {
    WriteTokens(context.Out(), tokens);
  }
  return kDone;
}

}  // namespace

std::vector<TokenRow> ReadTokens(CMiraIntf& mira) {
  std::map<std::uint16_t, CDAToken> tokens;
  mira.GetAllDATokens(tokens);
  std::vector<TokenRow> rows;
  for (const auto& [id, token] : tokens) {
    TokenRow& row = rows.emplace_back();
    token.TokenInfo(row.id, row.location, row.value);
  }
  return rows;
}

void WriteTokens(std::ostream& out, const std::vector<TokenRow>& tokens) {
  if (tokens.empty()) {
    out << "The calling interface has no tokens.\n";
    return;
  }
  Rows rows = {{"Token", "Location", "Value"}};
  for (const TokenRow& token : tokens) {
    rows.push_back({Hex(token.id, 4), Hex(token.location, 4), Hex(token.value, 4)});
  }
  WriteTable(out, rows);
}

void AddTokens(CLI::App& app, Command& command) {
  app.footer(
      "Examples:\n"
      "  mira tokens\n"
      "  mira --sim tokens --json");
  command.Run(app, ListTokens);
}

}  // namespace mira::console
