#include "console/run_command.h"

#include <sstream>

#include "console/face.h"
#include "console/hints.h"
#include "console/saved_document.h"
#include "console/saved_field.h"
#include "console/terminal.h"

namespace mira::console {
namespace {

// Asks before anything is written. Throws Error (kNeedsConfirmation) when nobody can be asked, or
// the answer is no.
void Approve(Context& context, const client::Plan& plan) {
  const Json document = client::ToJson(plan, false);
  if (context.GetOptions().yes) {
    if (!context.IsJson()) RenderNotes(document, context.Out());
    return;
  }
  if (!context.IsInteractive()) {
    throw client::Error(kNeedsConfirmation, "confirmation-needed",
                        "This changes the machine and nobody can be asked.");
  }
  context.ClearProgress();
  std::ostringstream question;
  RenderChanges(document, question);
  RenderNotes(document, question);
  WriteToTerminal(question.str() + "Write this? [y/N] ");
  std::string answer;
  std::getline(context.In(), answer);
  if (answer != "y" && answer != "Y" && answer != "yes") {
    throw client::Error(kNeedsConfirmation, "not-confirmed", "Nothing was written.");
  }
}

// Gives the program's own hints to the errors that stand inside a document.
void FillHints(Json& value, const Options& options) {
  if (!value.is_structured()) return;
  for (Json& part : value) FillHints(part, options);
  if (!value.is_object()) return;
  const auto hint = value.find("hint");
  const auto name = value.find("name");
  if (hint == value.end() || name == value.end() || *hint != "" || !name->is_string()) return;
  *hint = HintFor(name->get<std::string>(), options);
}

// What there is to show although the command failed.
void RenderRest(const client::Command& command, const Json& document, std::ostream& out) {
  Json rest = document;
  rest.erase("error");
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
  if (command.effect == client::Effect::kChanges) arguments["whatIf"] = options.what_if;
  ConsoleSecrets secrets(context, slots);
  client::Request request(context.GetSession(), secrets,
                          [&](const client::Plan& plan) { Approve(context, plan); });
  client::Result result = client::Run(command, std::move(arguments), request);
  context.ClearProgress();
  FillHints(result.document, options);
  const Face* const face = FindFace(command.name);
  if (face != nullptr && face->saves != nullptr) return SaveDocument(context, *face, result, file);
  if (face != nullptr && face->save_field != nullptr && !file.empty()) {
    SaveField(options, face->save_field, file, result.document);
  }
  if (result.error) {
    const CommandError error = WithHint(*result.error, options);
    if (!context.IsJson()) {
      RenderRest(command, result.document, context.Out());
      throw error;
    }
    result.document["error"] = ErrorJson(error);
    context.Print(result.document);
    return result.status;
  }
  if (context.IsJson()) {
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
