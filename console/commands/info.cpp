#include "console/info.h"

#include "console/commands.h"

namespace mira::console {

std::vector<StepOutcome> InitSteps(Status status) {
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
  };
  std::vector<StepOutcome> outcomes;
  bool failed = false;
  for (const Step& step : kSteps) {
    const bool fails_here = step.failure == status;
    outcomes.push_back({step.name, failed ? "not tried" : fails_here ? "failed" : "done"});
    failed = failed || fails_here;
  }
  return outcomes;
}

std::vector<unsigned> AnnouncedClasses(CMiraIntf& mira) {
  std::vector<unsigned> classes;
  const auto* const calling = dynamic_cast<CCallingInterface*>(mira.GetBIOSObject(0xDA));
  for (unsigned i = 0; calling != nullptr && i < 32; ++i) {
    if ((calling->SupportedCommands() >> i & 1) != 0) classes.push_back(i);
  }
  return classes;
}

namespace {

ExitStatus ShowInfo(Context& context) {
  Opened& opened = context.Open();
  CMiraIntf& mira = *opened.mira;
  const StatusText text = Explain(opened.status);
  const std::vector<unsigned> classes = AnnouncedClasses(mira);
  const CComBSTR& key = mira.GetACPIInstanceName();
  const std::string instance_key =
      ToUtf8(std::wstring_view(key.m_str != nullptr ? key.m_str : L"", key.Length()));
  if (context.IsJson()) {
    Json steps = Json::array();
    for (const StepOutcome& step : InitSteps(opened.status)) {
      steps.push_back({{"step", step.name}, {"outcome", step.outcome}});
    }
    context.Print({{"version", MIRA_VERSION},
                   {"status", static_cast<int>(opened.status)},
                   {"statusName", text.name},
                   {"message", text.meaning},
                   {"hint", text.hint},
                   {"diagnostics", opened.diagnostics},
                   {"steps", steps},
                   {"smbiosMajorVersion", CMiraIntf::m_SMBIOSMajorVersion},
                   {"transferBufferSize", mira.GetACPIBufSize()},
                   {"instanceKey", instance_key},
                   {"announcedClasses", classes}});
    return kDone;
  }
  std::ostream& out = context.Out();
  out << "mira " << MIRA_VERSION
      << (context.GetOptions().simulated
              ? ", on the simulated machine '" + context.GetOptions().profile + "'"
              : std::string())
      << "\n\n";
  WriteSteps(out, opened);
  out << "\nSMBIOS major version  " << CMiraIntf::m_SMBIOSMajorVersion << "\nTransfer buffer       "
      << mira.GetACPIBufSize() << " bytes"
      << "\nInstance key          " << instance_key << "\nCommand classes      ";
  for (const unsigned cls : classes) out << ' ' << cls;
  out << '\n';
  return kDone;
}

}  // namespace

void WriteSteps(std::ostream& out, const Opened& opened) {
  for (const StepOutcome& step : InitSteps(opened.status)) {
    out << step.name << std::string(38 - step.name.size(), '.') << ' ' << step.outcome << '\n';
  }
  for (const std::string& line : opened.diagnostics) out << "  " << line << '\n';
  const StatusText text = Explain(opened.status);
  out << "Init: " << static_cast<int>(opened.status) << " (" << text.name << "). " << text.meaning;
  if (*text.hint != '\0') out << ' ' << text.hint;
  out << '\n';
}

void AddInfo(CLI::App& app, Command& command) {
  app.footer("Examples:\n  mira info\n  mira --sim=no-calling-interface info --json");
  command.Run(app, ShowInfo);
}

}  // namespace mira::console
