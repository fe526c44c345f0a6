#include "client/commands.h"
#include "client/report/page.h"
#include "client/snapshot/redact.h"
#include "client/snapshot/snapshot.h"
#include "client/snapshot/subjects.h"

namespace mira::client {
namespace {

Json WriteReport(Request& request) {
  Json document = TakeSnapshot(request.GetSession());
  if (request.Flag("redact")) document = Redact(Snapshot(std::move(document)));
  return {{"html", ReportPage(document)}};
}

}  // namespace

std::vector<Command> ReportCommands() {
  return {{.name = "report",
           .summary = "Show all that can be read of a machine on one page for people",
           .arguments = {{.name = "redact",
                          .type = Type::kFlag,
                          .help = "leave out whatever may tell whose machine it is"}},
           .run = WriteReport}};
}

}  // namespace mira::client
