#include <map>

#include "client/raw_call.h"
#include "client/smbios.h"
#include "client/start_up.h"
#include "client/token.h"
#include "console/commands.h"
#include "console/face.h"
#include "console/hints.h"
#include "console/render/info.h"
#include "smbios/table.h"

namespace mira::console {
namespace {

// Reading a token's value is a call that every calling interface answers.
constexpr callif::Command kReadToken = {0, 0};

void WriteStructures(std::ostream& out, const client::StructureList& list) {
  std::map<unsigned, std::vector<const client::StructureValue*>> by_type;
  for (const client::StructureValue& structure : list.structures) {
    by_type[structure.type].push_back(&structure);
  }
  Rows rows = {{"Type", "Count", "Class"}};
  for (const auto& [type, structures] : by_type) {
    rows.push_back(
        {std::to_string(type), std::to_string(structures.size()), structures.front()->class_name});
  }
  WriteTable(out, rows, {0, 1});
  constexpr unsigned kShown[] = {0, 1};
  for (const unsigned type : kShown) {
    const auto found = by_type.find(type);
    if (found == by_type.end()) continue;
    out << '\n';
    client::WriteDump(found->second.front()->bytes, Escaped, out);
  }
}

ExitStatus Tour(Context& context) {
  std::ostream& out = context.Out();
  out << "== Init\n";
  context.CheckMachine();
  client::Session& session = context.GetSession();
  const client::StartUp start_up = client::ReadStartUp(session);
  RenderSteps(client::ToJson(start_up), out);

  out << "\n== SMBIOS structures\n";
  WriteStructures(out, client::ReadStructures(smbios::ReadFirmwareTable()));
  if (start_up.problem) throw *start_up.problem;

  const std::vector<client::Token> tokens = client::ReadTokens(session);
  out << "\n== Calling interface\nCommand classes: " << ClassList(start_up.announced_classes)
      << "\nTransfer buffer: " << start_up.transfer_buffer_size << " bytes\n";
  Json list = Json::array();
  for (const client::Token& token : tokens) list.push_back(client::ToJson(token));
  FindFace("tokens")->render({{"tokens", list}}, out);
  if (tokens.empty()) return kDone;

  client::RawCall call;
  call.command = kReadToken;
  call.arguments[0] = tokens.front().location;
  out << "\n== One call: the value at location " << Hex(call.arguments[0], 4) << '\n';
  client::Make(session, call, {});
  FindFace("call")->render(client::ToJson(call), out);
  return kDone;
}

}  // namespace

void AddTour(CLI::App& app, Command& command) {
  app.footer(
      "Example:\n"
      "  mira --sim tour");
  command.Run(app, [](Context& context) {
    if (context.GetOptions().IsForPrograms()) {
      throw WithHint(Error(kUsage, "usage", "The tour is for people.", "tour"),
                     "'mira info --json' and 'mira smbios --json' are for programs.");
    }
    return Tour(context);
  });
}

}  // namespace mira::console
