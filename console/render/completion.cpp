#include "console/face.h"

namespace mira::console {
namespace {

void Text(const Json& document, std::ostream& out) {
  out << document.at("text").get<std::string>();
}

void Names(const Json& document, std::ostream& out) {
  for (const Json& name : document.at("names")) out << Escaped(client::Readable(name)) << '\n';
}

}  // namespace

std::vector<Face> CompletionFaces() {
  return {
      {"completion.bash",
       "  mira completion bash\n  mira completion bash --from pc.json\n"
       "In ~/.bashrc: source <(mira completion bash). Pressing Tab never works on this PC: names "
       "of\n"
       "attributes and boot lists are offered where the command line has --sim, or from the file.",
       Text},
      {"completion.powershell",
       "  mira completion powershell\n"
       "In the profile: mira completion powershell | Out-String | Invoke-Expression",
       Text},
      {"completion.man", "  mira completion man", Text},
      {"completion.names", "  mira --sim completion names attr.list", Names},
  };
}

}  // namespace mira::console
