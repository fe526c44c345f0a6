#include "client/commands.h"
#include "client/snapshot/subjects.h"

namespace mira::client {
namespace {

Json Snap(Request& request) { return TakeSnapshot(request.GetSession()); }

}  // namespace

std::vector<Command> SnapshotCommands() {
  return {{.name = "snapshot",
           .summary = "Keep all that can be read of a machine in one document",
           .run = Snap}};
}

}  // namespace mira::client
