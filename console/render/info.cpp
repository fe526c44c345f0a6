#include "console/render/info.h"

#include "console/face.h"

namespace mira::console {
namespace {

void ShowInfo(const Json& document, std::ostream& out) {
  out << "mira " << client::Readable(document.at("version"));
  if (document.contains("profile")) {
    out << ", on the simulated machine '" << Escaped(client::Readable(document["profile"])) << "'";
  }
  out << "\n\n";
  RenderSteps(document, out);
  const auto known = [](const Json& value) {
    const std::string text = client::Readable(value);
    return text.empty() || text == "0" ? std::string("not known") : text;
  };
  std::string buffer = known(document.at("transferBufferSize"));
  if (buffer != "not known") buffer += " bytes";
  out << '\n';
  WriteTable(out, {{"SMBIOS version", known(document.at("smbiosVersion"))},
                   {"Transfer buffer", buffer},
                   {"Instance key", known(document.at("instanceKey"))},
                   {"Command classes", ClassList(document.at("announcedClasses"))}});
}

}  // namespace

void RenderSteps(const Json& document, std::ostream& out) {
  constexpr std::size_t kWidth = 38;
  for (const Json& step : document.at("steps")) {
    const std::string name = step.at("step");
    out << name << std::string(kWidth - std::min(kWidth, name.size()), '.') << ' '
        << client::Readable(step.at("outcome"));
    if (step.contains("code") && step["outcome"] == "failed")
      out << " (" << client::Readable(step["code"]) << ")";
    out << '\n';
    if (!step.contains("meaning")) continue;
    out << "  " << client::Readable(step["meaning"]) << '\n';
    if (step.contains("advice")) out << "  " << client::Readable(step["advice"]) << '\n';
  }
  for (const Json& line : document.at("diagnostics")) {
    out << "  " << Escaped(client::Readable(line)) << '\n';
  }
  out << "Init: " << document.at("status").get<int>() << " ("
      << client::Readable(document.at("statusName")) << "). "
      << Escaped(client::Readable(document.at("message"))) << '\n';
}

std::string ClassList(const Json& classes) {
  std::string list;
  for (const Json& cls : classes) list += (list.empty() ? "" : " ") + client::Readable(cls);
  return list.empty() ? "none" : list;
}

std::vector<Face> InfoFaces() {
  return {{"info",
           "  mira info\n  mira --sim=no-calling-interface info --json\n"
           "Ends with 0 when calls can be made, otherwise with the status of the step that failed.",
           ShowInfo}};
}

}  // namespace mira::console
