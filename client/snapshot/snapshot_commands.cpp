#include "client/commands.h"
#include "client/snapshot/compare.h"
#include "client/snapshot/redact.h"
#include "client/snapshot/state_from.h"
#include "client/snapshot/subjects.h"

namespace mira::client {
namespace {

Json Snap(Request& request) {
  Json document = TakeSnapshot(request.GetSession());
  return request.Flag("redact") ? Redact(Snapshot(std::move(document))) : document;
}

Json CompareMachines(Request& request) {
  Session& session = request.GetSession();
  const Json a = SideOf(session, request.Text("a"));
  const Json b = SideOf(session, request.Text("b"));
  Json document;
  try {
    document = Compare(a, b,
                       {.all = request.Flag("all"),
                        .only = request.Texts("only"),
                        .ignore = request.Texts("ignore")});
  } catch (const Json::exception&) {
    throw MalformedSnapshot("What it has of a subject is not what the subject consists of.");
  }
  if (!request.Flag("check") || document.at("same").get<bool>()) return document;
  Error error(kDiffers, "differs", "The two differ.");
  error.document = std::move(document);
  throw error;
}

Json MakeState(Request& request) {
  try {
    return StateFrom(Snapshot::FromText(request.Text("snapshot")), StateScope::kSettings);
  } catch (const Json::exception&) {
    throw MalformedSnapshot("What it has of a subject is not what the subject consists of.");
  }
}

}  // namespace

std::vector<Command> SnapshotCommands() {
  const auto side = [](const char* name) {
    return Argument{.name = name,
                    .type = Type::kContent,
                    .help = "a snapshot, a desired state, or live",
                    .required = true,
                    .positional = true,
                    .choices = {kLiveSide}};
  };
  return {
      {.name = "snapshot",
       .summary = "Keep all that can be read of a machine in one document",
       .arguments = {{.name = "redact",
                      .type = Type::kFlag,
                      .help = "leave out whatever may tell whose machine it is"}},
       .run = Snap},
      {.name = "compare",
       .summary = "Show what differs between two machines, or between one and what it should be",
       .arguments =
           {side("a"),
            side("b"),
            {.name = "all", .type = Type::kFlag, .help = "identity, readings and metadata, too"},
            {.name = "check",
             .type = Type::kFlag,
             .help = "end with status 12 if something differs"},
            {.name = "only",
             .type = Type::kTexts,
             .help = "only what is at or below a path, such as attributes"},
            {.name = "ignore", .type = Type::kTexts, .help = "all but what is at or below a path"}},
       .run = CompareMachines},
      {.name = "state.from",
       .summary = "Make a desired state of a snapshot; works offline",
       .effect = Effect::kOffline,
       .arguments = {{.name = "snapshot",
                      .type = Type::kContent,
                      .help = "the snapshot",
                      .required = true,
                      .positional = true}},
       .run = MakeState},
  };
}

}  // namespace mira::client
