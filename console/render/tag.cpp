#include "console/face.h"

namespace mira::console {
namespace {

void ShowTag(const Json& document, std::ostream& out) {
  Rows rows;
  for (const Json& tag : document.at("tags")) {
    const std::string name = client::Readable(tag.at("tag")) + " tag";
    rows.push_back({name, tag.contains("problem")
                              ? "(" + client::Readable(tag["problem"].at("message")) + ")"
                              : client::Readable(tag.at("value"))});
  }
  WriteTable(out, rows);
}

}  // namespace

std::vector<Face> TagFaces() {
  return {
      {"tag.show", "  mira tag show\n  mira --sim tag show extended --command 0 --json", ShowTag},
      {"tag.set",
       "  mira --sim tag set extended \"Desk 14\" --what-if\n  mira tag set asset NF-004712\n"
       "  mira --sim=locked tag set ownership \"Reading room\" --password-env SETUP_PW --yes\n"
       "Asset and service tags are cut to 12 characters, ownership tags to 80."},
  };
}

}  // namespace mira::console
