#include "client/raw_call.h"

#include "buffers/bios_data.h"
#include "client/commands.h"

namespace mira::client {
namespace {

CSimpleTokenData DataOf(const RawCall& call) {
  CSimpleTokenData data;
  data.Arg1 = call.arguments[0];
  data.Arg2 = call.arguments[1];
  data.Arg3 = call.arguments[2];
  data.Arg4 = call.arguments[3];
  data.KeyArgIndex = call.key_argument;
  return data;
}

std::string CallTarget(const RawCall& call) {
  return std::to_string(call.command.cls) + "/" + std::to_string(call.command.select);
}

Json Run(Request& request) {
  Session& session = request.GetSession();
  RawCall call;
  call.command = {static_cast<std::uint16_t>(request.Number("class")),
                  static_cast<std::uint16_t>(request.Number("select"))};
  constexpr const char* kWords[] = {"arg1", "arg2", "arg3", "arg4"};
  for (std::size_t i = 0; i < call.arguments.size(); ++i) {
    call.arguments[i] = static_cast<std::uint32_t>(request.Number(kWords[i]));
  }
  call.key_argument = static_cast<std::uint32_t>(request.Number("keyArg"));
  CMiraIntf& mira = session.Ready();
  if (request.WhatIf() && call.command.cls != callif::kUncheckedClass &&
      !IsAnnounced(mira, call.command.cls)) {
    throw ErrorOf(STATUS_NOT_SUPPORTED, CallTarget(call));
  }
  Key key;
  // Without a place for a key, only a password that was given is exchanged for one.
  if (call.key_argument != 0 || request.Secrets().IsGiven("password")) {
    key = ObtainKey(session, request.Secrets(), request.Flag(kClass10.name),
                    request.WhatIf() ? Check::kYes : Check::kNo);
  }
  if (request.WhatIf()) {
    return {{"whatIf", true},
            {"class", call.command.cls},
            {"select", call.command.select},
            {"arguments", call.arguments},
            {"keyArgument", call.key_argument}};
  }
  Make(session, call, key);
  return ToJson(call);
}

Argument Word(const char* name, const char* help) {
  return {.name = name, .type = Type::kNumber, .help = help};
}

}  // namespace

void Make(Session& session, RawCall& call, const Key& key) {
  CSimpleTokenData data = DataOf(call);
  std::optional<Error> error;
  try {
    const Session::Changing changing(session);
    Execute(session, call.command, data, {.target = CallTarget(call), .key = &key});
  } catch (const Error& failure) {
    error = failure;
  }
  call.results = {static_cast<std::uint32_t>(data.Res1), data.Res2, data.Res3, data.Res4};
  if (!error) return;
  // A completion code of the password's check is none of this call.
  const bool was_made = CMiraIntf::GetLastOperation().failure.step != mira::Step::kSecurityKey;
  if (error->completion && was_made) error->document = ToJson(call);
  throw *error;
}

Json ToJson(const RawCall& call) {
  return {{"class", call.command.cls},
          {"select", call.command.select},
          {"results", {call.Completion(), call.results[1], call.results[2], call.results[3]}},
          {"completionText", CompletionText(call.Completion())}};
}

std::vector<Command> CallCommands() {
  constexpr std::uint64_t kLargestWord = 0xFFFF;
  return {{.name = "call",
           .summary = "Make one calling-interface call",
           .effect = Effect::kChanges,
           .arguments = {{.name = "class",
                          .type = Type::kNumber,
                          .help = "command class",
                          .required = true,
                          .positional = true,
                          .max = kLargestWord},
                         {.name = "select",
                          .type = Type::kNumber,
                          .help = "select within the class",
                          .required = true,
                          .positional = true,
                          .max = kLargestWord},
                         Word("arg1", "argument word 1"),
                         Word("arg2", "argument word 2"),
                         Word("arg3", "argument word 3"),
                         Word("arg4", "argument word 4"),
                         {.name = "keyArg",
                          .type = Type::kNumber,
                          .help = "number of the argument word that receives the security key",
                          .min = 1,
                          .max = 4},
                         kClass10},
           .secrets = {"password"},
           .run = Run}};
}

}  // namespace mira::client
