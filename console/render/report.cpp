#include "console/face.h"

namespace mira::console {
namespace {

// The page itself where it goes to standard output.
void ShowReport(const Json& document, std::ostream& out) {
  if (const auto page = document.find("html"); page != document.end()) {
    out << page->get_ref<const std::string&>();
    return;
  }
  const bool is_dry = document.at("whatIf").get<bool>();
  out << (is_dry ? "Would write" : "Wrote") << " the report to "
      << Escaped(client::Readable(document.at("savedTo"))) << ".\n";
  if (is_dry) out << "Nothing was written.\n";
}

}  // namespace

std::vector<Face> ReportFaces() {
  return {
      {.command = "report",
       .examples = "  mira --sim report --html pc.html\n"
                   "  mira report --html pc.html --from pc.snapshot",
       .render = ShowReport,
       .is_private = true,
       .save_field = "html",
       .save_help = "write the page to this file; without it, and with -, to standard output",
       .save_option = "--html",
       .saves_text = true},
  };
}

}  // namespace mira::console
