#include <utility>

#include "bytes/secure.h"
#include "client/commands.h"
#include "client/state/state_run.h"
#include "client/state/state_secrets.h"

namespace mira::client {
namespace {

constexpr char kState[] = "state";
constexpr char kTheState[] = "The state";

// The state, and the secrets that came with it.
struct StateInput {
  Json state;
  std::optional<SecretTexts> secrets;
};

StateInput ReadState(Request& request) {
  bytes::SecureString text;
  text.str() = PlainUtf8(request.Value(kState).get_ref<const std::string&>());
  StateInput input{.state = {}, .secrets = TakeSecretsBeside(text.str())};
  if (input.secrets && !request.Secrets().TakesThemInContent()) {
    throw Error(kUsage, "secret-in-request", "A secret may not stand in a request: give it apart.",
                "secrets");
  }
  input.state = ParseJson(text, kTheState);
  if (!input.state.is_object() || !input.state.contains(kState)) return input;
  for (const auto& [key, value] : input.state.items()) {
    if (key == kState || key == "secrets") continue;
    throw Error(kInvalidValue, "unknown-key",
                "/" + key + " is not known; beside a state stand its secrets alone.", "/" + key)
        .With("unknown", Json::array({key}));
  }
  Json state = input.state[kState];
  input.state = std::move(state);
  return input;
}

Json ApplyState(Request& request) {
  StateInput input = ReadState(request);
  StateSecrets secrets(request.Secrets(), std::move(input.secrets));
  const StateOptions options{.partial = request.Flag("partial"), .check = request.Flag("check")};
  if (options.check) request.OnlyCheck();
  const DesiredState state = ParseState(input.state);
  StatePlanner planner(request.GetSession(), secrets, request.Flag("writeSecrets"));
  return StateRun(request, secrets, planner.Plan(state), options).Run();
}

}  // namespace

std::vector<Command> ApplyCommands() {
  return {{.name = "apply",
           .summary = "Bring the machine into a desired state",
           .effect = Effect::kChanges,
           .arguments = {{.name = kState,
                          .type = Type::kContent,
                          .help = "the state's file, or - for standard input",
                          .required = true,
                          .positional = true},
                         {.name = "check",
                          .type = Type::kFlag,
                          .help = "write nothing; end with status 12 if something would change"},
                         {.name = "partial",
                          .type = Type::kFlag,
                          .help = "write what is possible, although other entries are impossible"},
                         {.name = "writeSecrets",
                          .type = Type::kFlag,
                          .help = "write password attributes, too"},
                         kClass10},
           .secrets = {"password", "secrets"},
           .run = ApplyState}};
}

}  // namespace mira::client
