#ifndef MIRA_CONSOLE_COMMAND_H_
#define MIRA_CONSOLE_COMMAND_H_

// The frame of the program's commands. A command is one source: it describes its arguments and
// options to the parser and hands over what to do. console/commands.cpp lists them all.
//
//   void AddTokens(CLI::App& app, Command& command) {
//     command.Run(app, [](Context& context) { ... });
//   }

#include <CLI/CLI.hpp>
#include <functional>
#include <istream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "console/exit_status.h"
#include "facade/mira_intf.h"
#include "sim/machine.h"

namespace mira::console {

using Json = nlohmann::ordered_json;

// What ended a command early. The program prints it as a sentence, or as the error document, and
// ends with `status`.
struct CommandError : std::runtime_error {
  CommandError(ExitStatus exit_status, std::string error_name, const std::string& message,
               std::string error_target = "", std::string error_hint = "")
      : std::runtime_error(message),
        status(exit_status),
        name(std::move(error_name)),
        target(std::move(error_target)),
        hint(std::move(error_hint)) {}
  ExitStatus status;
  std::string name;    // "not-found", for programs
  std::string target;  // what it was about, if one thing
  std::string hint;    // what to do
};

struct Options {
  bool simulated = false;
  std::string profile = "laptop";
  bool json = false;
  bool yes = false;
  bool what_if = false;
};

// A facade and what its Init said.
struct Opened {
  std::unique_ptr<CMiraIntf> mira;
  Status status = STATUS_FAILURE;
  std::vector<std::string> diagnostics;  // the lines that the facade wrote
};

class Context {
 public:
  Context(Options options, std::istream& in, std::ostream& out);
  ~Context();

  const Options& GetOptions() const { return options_; }
  bool IsJson() const { return options_.json; }
  std::ostream& Out() { return out_; }
  std::istream& In() { return in_; }

  // Runs Init once and gives the facade, whatever Init said.
  Opened& Open(bool load_attributes = false);
  // The same, but a failed Init is an error.
  CMiraIntf& Ready(bool load_attributes = false);

  // Prints a document, with the schema version and the machine's kind in front.
  void Print(const Json& document);

 private:
  Options options_;
  std::istream& in_;
  std::ostream& out_;
  std::unique_ptr<sim::Machine> machine_;
  std::unique_ptr<sim::Session> session_;
  std::ostringstream diagnostics_;
  Opened opened_;
};

using Action = std::function<ExitStatus(Context&)>;

// What the parser found to do.
class Command {
 public:
  // Runs `action` when the arguments name `app`.
  void Run(CLI::App& app, Action action);
  const Action& Chosen() const { return chosen_; }

 private:
  Action chosen_;
};

struct Noun {
  const char* name;
  const char* description;
  void (*add)(CLI::App& app, Command& command);
};
// All commands, in the order of the help text.
const std::vector<Noun>& Nouns();

// What an Init status means and what to do about it.
struct StatusText {
  const char* name;
  const char* meaning;
  const char* hint;
  ExitStatus exit_status;
};
StatusText Explain(Status status);
CommandError InitError(const Opened& opened);

// A number in decimal, or in hexadecimal with 0x, of at most `largest`. `what` names it in the
// error.
std::uint32_t ParseNumber(const std::string& text, const std::string& what,
                          std::uint32_t largest = 0xFFFFFFFF);
// "0x1f", with at least `digits` digits.
std::string Hex(std::uint64_t value, int digits = 1);
// Bytes as UTF-8: what is none is taken for Latin-1, so that nothing is lost.
std::string ToUtf8(std::string_view text);
std::string ToUtf8(std::wstring_view text);
// The text of a completion code, without the leading blank of the buffers' own texts.
std::string CompletionText(std::int32_t code);

// The program: arguments without the program's name. Gives the exit status.
int RunConsole(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
               std::ostream& err);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_COMMAND_H_
