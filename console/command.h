#ifndef MIRA_CONSOLE_COMMAND_H_
#define MIRA_CONSOLE_COMMAND_H_

// The frame of the program's commands. A command is one source: it describes its arguments and
// options to the parser and hands over what to do. console/commands.cpp lists them all.
//
//   void AddTokens(CLI::App& app, Command& command) {
//     command.Run(app, [](Context& context) { ... });
//   }

#include <CLI/CLI.hpp>
#include <filesystem>
#include <functional>
#include <istream>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "client/error.h"
#include "client/session.h"
#include "console/console.h"
#include "console/exit_status.h"
#include "console/output.h"
#include "facade/mira_intf.h"
#include "sim/kept_machine.h"
#include "sim/machine.h"

namespace mira::console {

// What ended a command early, with a hint of the program's own. The program prints it as a
// sentence, or as the error document, and ends with `status`.
struct CommandError : client::Error {
  CommandError(ExitStatus exit_status, std::string error_name, const std::string& message,
               std::string error_target = "", std::string error_hint = "")
      : Error(exit_status, std::move(error_name), message, std::move(error_target)),
        hint(std::move(error_hint)) {}
  CommandError(const client::Error& error, std::string error_hint)
      : Error(error), hint(std::move(error_hint)) {}
  std::string hint;  // what to do
};

struct Options {
  bool simulated = false;
  std::string profile = "laptop";
  bool json = false;
  bool yes = false;
  bool what_if = false;
  // Where simulated machines are kept between commands; empty: each command gets a new one.
  std::filesystem::path machines;
};

// A facade and what its Init said.
struct Opened {
  CMiraIntf* mira = nullptr;
  Status status = STATUS_FAILURE;
  std::vector<std::string> diagnostics;  // the lines that the facade wrote
};

class Context {
 public:
  Context(Options options, std::istream& in, std::ostream& out);
  ~Context();

  const Options& GetOptions() const { return options_; }
  bool IsJson() const { return options_.json; }
  // Whether there is somebody to ask: a terminal, and no JSON wanted.
  bool IsInteractive() const;
  std::ostream& Out() { return out_; }
  std::istream& In() { return in_; }
  // The simulated machine; null on a real one.
  sim::Machine* Machine() { return machine_.get(); }
  // The file that the simulated machine is kept in; empty where it is not.
  std::filesystem::path MachineFile() const;
  // Throws CommandError when the machine that was kept could not be read back.
  void CheckMachine() const;
  // Throws CommandError when the last call on a simulated machine could not be kept.
  void CheckKept() const;

  // The machine as the client layer works with it.
  client::Session& GetSession();
  // How far a long command is, on the terminal.
  void ShowProgress(const std::string& what, std::size_t done, std::size_t total);
  void ClearProgress();

  // Runs Init once and gives the facade, whatever Init said. Attributes may come with their display
  // and help texts.
  Opened& Open(bool load_attributes = false, bool load_texts = false);
  // The same, but a failed Init is an error.
  CMiraIntf& Ready(bool load_attributes = false, bool load_texts = false);
  // The lines that the facade has written since this was last asked, or since Init.
  std::vector<std::string> TakeDiagnostics();

  // Prints a document, with the schema version and the machine's kind in front.
  void Print(const Json& document);
  // Ends a command that failed with something to show: in JSON mode prints the document with the
  // error in it and gives the exit status; else throws the error, the rest being shown already.
  ExitStatus Fail(const CommandError& error, const Json& document);

 private:
  Options options_;
  std::istream& in_;
  std::ostream& out_;
  std::unique_ptr<sim::Machine> machine_;
  std::unique_ptr<sim::Session> session_;
  std::unique_ptr<sim::KeptMachine> kept_;
  std::string unreadable_;
  std::unique_ptr<client::Session> client_;
  std::string progress_line_;
  Opened opened_;
};

using Action = std::function<ExitStatus(Context&)>;

// What the parser found to do.
class Command {
 public:
  // Runs `action` when the arguments name `app`.
  void Run(CLI::App& app, Action action);
  void Choose(Action action) { chosen_ = std::move(action); }
  const Action& Chosen() const { return chosen_; }

 private:
  Action chosen_;
};

// The first word of a command. Where `add` is missing, the verbs are those of the client layer's
// commands that begin with the name.
struct Noun {
  const char* name;
  const char* description;
  void (*add)(CLI::App& app, Command& command);
  const char* footer = "";
};
// All commands, in the order of the help text.
const std::vector<Noun>& Nouns();

// What a status of the library means and what to do about it.
struct StatusText {
  Status status;
  ExitStatus exit_status;
  const char* name;
  const char* meaning;
  const char* hint;
};
const StatusText& Explain(Status status);
CommandError InitError(const Opened& opened);

// The text of a completion code, without the leading blank of the buffers' own texts.
std::string CompletionText(std::int32_t code);

// A number in decimal, or in hexadecimal with 0x, from `smallest` to `largest`. `what` names it in
// the error.
std::uint32_t ParseNumber(const std::string& text, const std::string& what,
                          std::uint32_t largest = 0xFFFFFFFF, std::uint32_t smallest = 0);

// "Did you mean 'smbios'?", or `otherwise` when none of the names is near.
std::string Suggest(const std::string& word, const std::vector<std::string>& names,
                    const std::string& otherwise);

// {"code", "name", "message", "target", "hint"}
Json ErrorJson(const CommandError& error);

// The error with the program's own hint for one of that name.
CommandError WithHint(const client::Error& error, const Options& options);
// "mira", with the options that name the machine.
std::string ProgramText(const Options& options);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_COMMAND_H_
