#include "console/call.h"
#include "console/commands.h"
#include "console/info.h"
#include "console/structures.h"
#include "console/tokens.h"
#include "smbios/structure_factory.h"

namespace mira::console {
namespace {

// Reading a token's value is a call that every calling interface answers.
constexpr std::uint16_t kReadTokenClass = 0;
constexpr std::uint16_t kReadTokenSelect = 0;

void WriteStructures(std::ostream& out, const Structures& structures) {
  Rows rows = {{"Type", "Count", "Class"}};
  for (const auto& [type, head] : structures.Objects()) {
    unsigned count = 0;
    for (const CBIOSObject* object = head; object != nullptr; object = object->getNextObj()) {
      ++count;
    }
    rows.push_back({std::to_string(type), std::to_string(count), smbios::ClassName(type)});
  }
  WriteTable(out, rows, {0, 1});
  constexpr unsigned char kShown[] = {0, 1};
  for (const unsigned char type : kShown) {
    const CBIOSObject* const object = structures.Find(type);
    if (object == nullptr) continue;
    out << '\n';
    object->DisplayOwn(out);
    out << std::dec;
  }
}

ExitStatus Tour(Context& context) {
  std::ostream& out = context.Out();
  out << "== Init\n";
  const Opened& opened = context.Open();
  WriteSteps(out, opened);

  const Structures structures(smbios::ReadFirmwareTable());
  out << "\n== SMBIOS structures\n";
  WriteStructures(out, structures);
  if (opened.status != STATUS_SUCCESS) throw InitError(opened);

  CMiraIntf& mira = *opened.mira;
  const std::vector<TokenRow> tokens = ReadTokens(mira);
  out << "\n== Calling interface\nCommand classes: " << ClassList(structures.AnnouncedClasses())
      << "\nTransfer buffer: " << mira.GetACPIBufSize() << " bytes\n";
  WriteTokens(out, tokens);
  if (tokens.empty()) return kDone;

  CSimpleTokenData data;
  data.Arg1 = tokens.front().location;
  out << "\n== One call: the value at location " << Hex(data.Arg1, 4) << '\n';
  const Status status =
      mira.ExecuteDACI(kReadTokenClass, kReadTokenSelect, data, "", PwdInfo::PWD_NONE);
  return ReportCall(context, kReadTokenClass, kReadTokenSelect, status, data);
}

}  // namespace

void AddTour(CLI::App& app, Command& command) {
  app.footer(
      "Example:\n"
      "  mira --sim tour");
  command.Run(app, [](Context& context) {
    if (context.IsJson()) {
      throw CommandError(kUsage, "usage", "The tour is for people.", "tour",
                         "'mira info --json' and 'mira smbios --json' are for programs.");
    }
    return Tour(context);
  });
}

}  // namespace mira::console
