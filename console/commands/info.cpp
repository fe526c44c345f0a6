#include "console/info.h"

#include "console/commands.h"
#include "console/structures.h"

namespace mira::console {
namespace {

constexpr const char* kFailed = "failed";

ExitStatus ShowInfo(Context& context) {
  const Opened& opened = context.Open();
  CMiraIntf& mira = *opened.mira;
  const Structures structures(smbios::ReadFirmwareTable());
  const StatusText& text = Explain(opened.status);
  const CComBSTR& key = mira.GetACPIInstanceName();
  const std::string instance_key =
      ToUtf8(std::wstring_view(key.m_str != nullptr ? key.m_str : L"", key.Length()));
  const std::string version = structures.Version();
  const Options& options = context.GetOptions();
  if (context.IsJson()) {
    Json steps = Json::array();
    for (const StepOutcome& step : InitSteps(opened.status)) {
      steps.push_back({{"step", step.name}, {"outcome", step.outcome}});
    }
    Json document = {{"version", MIRA_VERSION}};
    if (options.simulated) document["profile"] = options.profile;
    document.update({{"status", static_cast<int>(opened.status)},
                     {"statusName", text.name},
                     {"message", text.meaning},
                     {"hint", text.hint},
                     {"diagnostics", opened.diagnostics},
                     {"steps", steps},
                     {"smbiosVersion", version.empty() ? Json() : Json(version)},
                     {"transferBufferSize", mira.GetACPIBufSize()},
                     {"instanceKey", instance_key},
                     {"announcedClasses", structures.AnnouncedClasses()}});
    if (opened.status != STATUS_SUCCESS) return context.Fail(InitError(opened), document);
    context.Print(document);
    return kDone;
  }
  std::ostream& out = context.Out();
  out << "mira " << MIRA_VERSION;
  if (options.simulated) out << ", on the simulated machine '" << options.profile << "'";
  out << "\n\n";
  WriteSteps(out, opened);
  out << '\n';
  const auto or_unknown = [](const std::string& value) {
    return value.empty() ? "not known" : value;
  };
  WriteTable(
      out, {{"SMBIOS version", or_unknown(version)},
            {"Transfer buffer", or_unknown(mira.GetACPIBufSize() == 0
                                               ? ""
                                               : std::to_string(mira.GetACPIBufSize()) + " bytes")},
            {"Instance key", or_unknown(instance_key)},
            {"Command classes", ClassList(structures.AnnouncedClasses())}});
  return text.exit_status;
}

}  // namespace

std::vector<StepOutcome> InitSteps(Status status, bool attributes_asked_for) {
  struct Step {
    const char* name;
    Status failure;
  };
  // In the order in which Init runs them; the status names the one that failed.
  static constexpr Step kSteps[] = {
      {"Administrator check", STATUS_NOT_ADMIN},
      {"COM and the connection to ROOT\\WMI", STATUS_COM_INIT_FAILED},
      {"SMBIOS table", STATUS_SMBIOS_READ_FAILED},
      {"WMI instance and transfer buffer", STATUS_WMI_INSTANCE_NOT_FOUND},
      {"Support for calls through WMI", STATUS_ACPI_NOT_SUPPORTED},
      {"BIOS attributes", STATUS_PLDM_INIT_FAILED},
  };
  std::vector<StepOutcome> outcomes;
  bool failed = false;
  for (const Step& step : kSteps) {
    const bool fails_here = step.failure == status;
    const bool asked_for = step.failure != STATUS_PLDM_INIT_FAILED || attributes_asked_for;
    outcomes.push_back({step.name, !asked_for   ? "not asked for"
                                   : failed     ? "not tried"
                                   : fails_here ? kFailed
                                                : "done"});
    failed = failed || fails_here;
  }
  return outcomes;
}

void WriteSteps(std::ostream& out, const Opened& opened) {
  constexpr std::size_t kWidth = 38;
  for (const StepOutcome& step : InitSteps(opened.status)) {
    out << step.name << std::string(kWidth - step.name.size(), '.') << ' ' << step.outcome << '\n';
    if (step.outcome != kFailed) continue;
    for (const std::string& line : opened.diagnostics) out << "  " << line << '\n';
  }
  const StatusText& text = Explain(opened.status);
  out << "Init: " << static_cast<int>(opened.status) << " (" << text.name << "). " << text.meaning;
  if (*text.hint != '\0') out << ' ' << text.hint;
  out << '\n';
}

std::string ClassList(const std::vector<unsigned>& classes) {
  std::string list;
  for (const unsigned cls : classes) list += (list.empty() ? "" : " ") + std::to_string(cls);
  return list.empty() ? "none" : list;
}

void AddInfo(CLI::App& app, Command& command) {
  app.footer(
      "Ends with the exit status that fits what Init said: 0 when calls can be made.\n"
      "Examples:\n"
      "  mira info\n"
      "  mira --sim=no-calling-interface info --json");
  command.Run(app, ShowInfo);
}

}  // namespace mira::console
