#include "console/face.h"

namespace mira::console {
namespace {

void ShowIdentifier(const Json& document, std::ostream& out) {
  out << Escaped(client::Readable(document.at("value"))) << '\n';
}

}  // namespace

std::vector<Face> IdFaces() {
  return {
      {"id.mac.show", "  mira --sim id mac\n  mira --sim id mac show --json", ShowIdentifier},
      {"id.mac.set", "  mira --sim id mac set 02:A1:B2:C3:D4:E5 --what-if"},
      {"id.eppid.show", "  mira --sim id eppid show", ShowIdentifier},
      {"id.eppid.set", "  mira --sim id eppid set NF0F4D1K4873461Q0012A00 --what-if"},
      {"id.image-server.show", "  mira --sim id image-server show", ShowIdentifier},
      {"id.image-server.set", "  mira --sim id image-server set images.example --what-if"},
      {"id.thin-client.show", "  mira --sim id thin-client show", ShowIdentifier},
      {"id.thin-client.set", "  mira --sim id thin-client set kiosk-08 --what-if"},
  };
}

}  // namespace mira::console
