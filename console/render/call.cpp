#include "console/face.h"

namespace mira::console {
namespace {

void ShowRequest(const Json& document, std::ostream& out) {
  const auto key_argument = document.at("keyArgument").get<std::size_t>();
  const Json& words = document.at("arguments");
  for (std::size_t i = 0; i < words.size(); ++i) {
    out << "cbArg" << i + 1 << " : "
        << (key_argument == i + 1 ? "the security key" : Hex(words[i].get<std::uint64_t>(), 8))
        << '\n';
  }
  out << "The call was not made.\n";
}

void ShowCall(const Json& document, std::ostream& out) {
  out << "class " << document.at("class").get<unsigned>() << " select "
      << document.at("select").get<unsigned>() << '\n';
  if (document.contains("whatIf")) return ShowRequest(document, out);
  const Json& results = document.at("results");
  out << "cbRES1 : " << results[0].get<int>() << "  "
      << client::Readable(document.at("completionText")) << '\n';
  for (std::size_t i = 1; i < results.size(); ++i) {
    out << "cbRES" << i + 1 << " : " << Hex(results[i].get<std::uint64_t>(), 8) << '\n';
  }
}

}  // namespace

std::vector<Face> CallFaces() {
  return {{.command = "call",
           .examples =
               "  mira call 0 0 --arg1 0x70\n"
               "  mira --sim call 0 0 --arg1 0x70 --value results.1\n"
               "  mira --sim=locked call 1 0 --arg1 0x70 --arg2 1 --key-arg 3 "
               "--password-env SETUP_PW\n"
               "Numbers are decimal, or hexadecimal with 0x. The call is made as it stands, "
               "without\n"
               "asking: --what-if shows it instead.",
           .render = ShowCall,
           .answers = true}};
}

}  // namespace mira::console
