#include "console/call.h"
#include "console/commands.h"
#include "console/info.h"
#include "smbios/structure_factory.h"

namespace mira::console {
namespace {

// A token's location is a call that every calling interface answers.
constexpr std::uint16_t kReadTokenClass = 0;
constexpr std::uint16_t kReadTokenSelect = 0;

ExitStatus Tour(Context& context) {
  std::ostream& out = context.Out();
  out << "== Init\n";
  Opened& opened = context.Open();
  WriteSteps(out, opened);
  CMiraIntf& mira = *opened.mira;

  out << "\n== SMBIOS structures\nType  Count  Class\n";
  for (unsigned type = 0; type < 256; ++type) {
    unsigned count = 0;
    for (const CBIOSObject* object = mira.GetBIOSObject(static_cast<unsigned char>(type));
         object != nullptr; object = object->getNextObj()) {
      ++count;
    }
    if (count == 0) continue;
    const std::string type_text = std::to_string(type);
    const std::string count_text = std::to_string(count);
    out << std::string(4 - type_text.size(), ' ') << type_text
        << std::string(7 - count_text.size(), ' ') << count_text << "  "
        << smbios::ClassName(static_cast<unsigned char>(type)) << '\n';
  }
  if (const CBIOSObject* const bios = mira.GetBIOSObject(0)) {
    out << '\n';
    bios->DisplayOwn(out);
  }
  if (opened.status != STATUS_SUCCESS) throw InitError(opened);

  out << "\n== Calling interface\nCommand classes:";
  for (const unsigned cls : AnnouncedClasses(mira)) out << ' ' << cls;
  out << "\nTransfer buffer: " << mira.GetACPIBufSize() << " bytes\nToken   Location  Value\n";
  std::map<std::uint16_t, CDAToken> tokens;
  mira.GetAllDATokens(tokens);
  CSimpleTokenData data;
  for (const auto& [key, token] : tokens) {
    std::uint16_t id = 0;
    std::uint16_t location = 0;
    std::uint16_t value = 0;
    token.TokenInfo(id, location, value);
    if (data.Arg1 == 0) data.Arg1 = location;
    out << Hex(id, 4) << "  " << Hex(location, 4) << "    " << Hex(value, 4) << '\n';
  }
  out << "\n== One call: the value at location " << Hex(data.Arg1, 4) << '\n';
  const Status status =
      mira.ExecuteDACI(kReadTokenClass, kReadTokenSelect, data, "", PwdInfo::PWD_NONE);
  return ReportCall(context, kReadTokenClass, kReadTokenSelect, status, data);
}

}  // namespace

void AddTour(CLI::App& app, Command& command) {
  app.footer("Example:\n  mira --sim tour");
  command.Run(app, [](Context& context) {
    if (context.IsJson()) {
      throw CommandError(kUsage, "usage", "The tour is for people.", "tour",
                         "'mira info --json' and 'mira smbios --json' are for programs.");
    }
    return Tour(context);
  });
}

}  // namespace mira::console
