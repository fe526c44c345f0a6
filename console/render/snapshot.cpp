#include "console/face.h"

namespace mira::console {
namespace {

void ShowKept(const Json& document, std::ostream& out) {
  const bool is_dry = document.at("whatIf").get<bool>();
  out << (is_dry ? "Would keep " : "Kept ") << document.at("exported") << " subjects in "
      << Escaped(client::Readable(document.at("file"))) << ".\n";
  if (is_dry) out << "Nothing was written.\n";
}

}  // namespace

std::vector<Face> SnapshotFaces() {
  return {
      {.command = "snapshot",
       .examples = "  mira --sim snapshot pc.snapshot\n"
                   "  mira --sim snapshot --value machine.product\n"
                   "  mira boot show --from pc.snapshot",
       .render = ShowKept,
       .saves = "subjects",
       .is_private = true},
  };
}

}  // namespace mira::console
