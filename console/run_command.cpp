#include "console/run_command.h"

#include <algorithm>
#include <sstream>

#include "console/commands.h"
#include "console/face.h"
#include "console/hints.h"
#include "console/interrupt.h"
#include "console/saved_document.h"
#include "console/saved_field.h"
#include "console/terminal.h"
#include "support/append.h"

namespace mira::console {
namespace {

// Asks before anything is written. Throws Error (kNeedsConfirmation) when nobody can be asked, or
// the answer is no.
void Approve(Context& context, const client::Plan& plan) {
  // From here on the machine is written to, and what is under way is finished.
  const auto begin = [] { FinishOnInterrupt(); };
  const Json document = client::ToJson(plan, false);
  if (context.GetOptions().yes) {
    if (!context.GetOptions().IsForPrograms()) RenderNotes(document, context.Out());
    return begin();
  }
  if (!context.IsInteractive()) {
    throw Error(kNeedsConfirmation, "confirmation-needed",
                "This changes the machine, and there is nobody to ask.");
  }
  context.ClearProgress();
  std::ostringstream question;
  RenderChanges(document, question);
  RenderNotes(document, question);
  WriteToTerminal(question.str() + "Write this? [y/N] ");
  std::string answer;
  std::getline(context.In(), answer);
  if (answer != "y" && answer != "Y" && answer != "yes") {
    throw Error(kNeedsConfirmation, "not-confirmed", "Nothing was written.");
  }
  begin();
}

// Adds a line to a log.
void AppendLog(const std::string& file, const Json& line) {
  const std::string text = line.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
  const std::error_code error = support::AppendToDisk(ToPath(file), text);
  if (!error) return;
  throw Error(kUnexpected, "log-not-written",
              "The log '" + file + "' could not be written: " + error.message() +
                  ". Nothing more was written to the machine.",
              file);
}

// What a command that may change something did, by its document.
WhatWasDone DoneBy(const Json& document) {
  if (document.value("whatIf", false)) return WhatWasDone::kNothing;
  if (document.contains("results")) return WhatWasDone::kCalled;
  const Json changes = document.value("changes", Json::array());
  const auto has = [&changes](const char* outcome) {
    return std::any_of(changes.begin(), changes.end(),
                       [outcome](const Json& change) { return change.at("outcome") == outcome; });
  };
  if (document.value("changed", false)) {
    return document.contains("error") || has("unknown") ? WhatWasDone::kChangedInPart
                                                        : WhatWasDone::kChanged;
  }
  return has("unknown") ? WhatWasDone::kUnknown : WhatWasDone::kNothing;
}

// What there is to show although the command failed.
void RenderRest(const client::Command& command, const Json& document, std::ostream& out) {
  Json rest = document;
  for (const char* const key : {"error", "from", "simulated"}) rest.erase(key);
  if (rest.empty()) return;
  const Face* const face = FindFace(command.name);
  if (face != nullptr && face->render != nullptr) {
    face->render(rest, out);
  } else if (rest.contains("changes")) {
    RenderChanges(rest, out);
  }
}

}  // namespace

ExitStatus RunCommand(Context& context, const client::Command& command, Json arguments,
                      const SecretSlots& slots, const std::string& file) {
  const Options& options = context.GetOptions();
  const bool changes = command.effect == client::Effect::kChanges;
  const Face* const face = FindFace(command.name);
  if (changes && !options.value.empty() && (face == nullptr || !face->answers)) {
    throw Error(kUsage, "usage", "--value is for commands that show something.", "--value");
  }
  if (changes) arguments["whatIf"] = options.what_if;
  // The program's own commands are about the kept machine itself.
  if (!IsOwn(command)) context.CheckMachine();
  ConsoleSecrets secrets(context, slots);
  OwnRequest request(context, secrets, [&](const client::Plan& plan) { Approve(context, plan); });
  if (face != nullptr && face->logs && !file.empty()) {
    request.SetLog([&file](const Json& line) { AppendLog(file, line); });
  }
  client::Result result = client::Run(command, std::move(arguments), request);
  context.ClearProgress();
  if (changes) context.SetDone(DoneBy(result.document));
  FillHints(result.document, options);
  if (face != nullptr && face->saves != nullptr) return SaveDocument(context, *face, result, file);
  if (face != nullptr && face->save_field != nullptr && !file.empty()) {
    SaveField(options, *face, file, result.document);
  }
  if (result.error) {
    if (!options.IsForPrograms()) RenderRest(command, result.document, context.Out());
    return context.Fail(*result.error, result.document);
  }
  if (options.IsForPrograms()) {
    context.Print(result.document);
    return result.status;
  }
  if (face != nullptr && face->render != nullptr) {
    face->render(result.document, context.Out());
  } else {
    RenderChanges(result.document, context.Out());
  }
  if (face != nullptr && face->undo != nullptr && result.document.value("changed", false)) {
    context.Out() << "'" << ProgramText(options) << ' ' << face->undo(result.document)
                  << "' puts it back.\n";
  }
  return result.status;
}

}  // namespace mira::console
