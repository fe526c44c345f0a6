#include "client/commands.h"
#include "client/report/page.h"
#include "client/snapshot/subjects.h"

namespace mira::client {
namespace {

Json WriteReport(Request& request) {
  return {{"html", ReportPage(TakeSnapshot(request.GetSession()))}};
}

}  // namespace

std::vector<Command> ReportCommands() {
  return {{.name = "report",
           .summary = "Show all that can be read of a machine on one page for people",
           .run = WriteReport}};
}

}  // namespace mira::client
