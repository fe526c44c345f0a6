#include "console/face.h"

namespace mira::console {
namespace {

void Show(const Json& document, std::ostream& out) {
  const int boots = document.at("boots").get<int>();
  const Json& file = document.at("keptIn");
  WriteTable(out, {{"Profile", client::Readable(document.at("profile"))},
                   {"Machine", client::Readable(document.at("description"))},
                   {"Started", std::to_string(boots) + (boots == 1 ? " time" : " times")},
                   {"Power", document.at("off") == true ? "lost; 'sim reboot' starts it" : "on"},
                   {"Kept in", file.is_null() ? "nowhere" : client::Readable(file)}});
}

// The sentence of a machine that is changed now; otherwise its changes.
void RenderDone(const Json& document, const char* sentence, std::ostream& out) {
  if (document.value("changed", false)) {
    out << sentence;
  } else {
    RenderChanges(document, out);
  }
}

void Reboot(const Json& document, std::ostream& out) {
  RenderDone(document, "The machine has restarted.\n", out);
}

void Reset(const Json& document, std::ostream& out) {
  RenderDone(document, "The next command finds a new machine.\n", out);
}

}  // namespace

std::vector<Face> SimFaces() {
  return {
      {"sim.show",
       "  mira --sim sim show\n"
       "A simulated machine is kept between commands: later ones see what earlier ones changed.\n"
       "The environment variable MIRA_SIM_STATE names the folder; if it is set to nothing, every\n"
       "command finds a new machine. The file holds the machine's passwords, as the memory of a\n"
       "real one does.",
       Show},
      {"sim.reboot",
       "  mira --sim=locked sim reboot --yes\n"
       "  mira --sim sim reboot --power-loss --yes",
       Reboot},
      {"sim.reset", "  mira --sim sim reset --yes", Reset},
  };
}

}  // namespace mira::console
