#include "console/face.h"

namespace mira::console {
namespace {

void ShowTokens(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& token : document.at("tokens")) {
    rows.push_back({Hex(token.at("id").get<unsigned>(), 4),
                    Hex(token.at("location").get<unsigned>(), 4),
                    Hex(token.at("value").get<unsigned>(), 4)});
  }
  if (rows.empty()) {
    out << "The calling interface has no tokens.\n";
    return;
  }
  RenderList(out, {"Token", "Location", "Value"}, rows);
}

}  // namespace

std::vector<Face> TokenFaces() {
  return {{"tokens", "  mira tokens\n  mira --sim tokens --json", ShowTokens}};
}

}  // namespace mira::console
