#include "console/commands.h"

namespace mira::console {
namespace {

ExitStatus ListTokens(Context& context) {
  std::map<std::uint16_t, CDAToken> tokens;
  context.Ready().GetAllDATokens(tokens);
  Json list = Json::array();
  std::ostream& out = context.Out();
  if (!context.IsJson()) out << "Token   Location  Value\n";
  for (const auto& [key, token] : tokens) {
    std::uint16_t id = 0;
    std::uint16_t location = 0;
    std::uint16_t value = 0;
    token.TokenInfo(id, location, value);
    if (context.IsJson()) {
      list.push_back({{"id", id}, {"location", location}, {"value", value}});
    } else {
      out << Hex(id, 4) << "  " << Hex(location, 4) << "    " << Hex(value, 4) << '\n';
    }
  }
  if (context.IsJson()) {
    context.Print({{"tokens", list}});
  } else if (tokens.empty()) {
    out << "(none)\n";
  }
  return kDone;
}

}  // namespace

void AddTokens(CLI::App& app, Command& command) {
  app.footer("Examples:\n  mira tokens\n  mira --sim tokens --json");
  command.Run(app, ListTokens);
}

}  // namespace mira::console
