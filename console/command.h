#ifndef MIRA_CONSOLE_COMMAND_H_
#define MIRA_CONSOLE_COMMAND_H_

// The frame of the program: what a command works with, and how it is entered into the parser.
// Most commands are rows of tables (client/command.h); those that are conversations enter
// themselves:
//
//   void AddTour(CLI::App& app, Command& command) {
//     command.Run(app, [](Context& context) { ...; return kDone; });
//   }

#include <CLI/CLI.hpp>
#include <filesystem>
#include <functional>
#include <istream>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "client/error.h"
#include "client/session.h"
#include "console/console.h"
#include "console/options.h"
#include "console/output.h"
#include "sim/kept_machine.h"
#include "sim/machine.h"

namespace mira::console {

using client::Error;
using client::ExitStatus;
using enum client::ExitStatus;

// What became of the machine, for whoever cannot read the command's output.
enum class WhatWasDone { kNothing, kChanged, kChangedInPart, kUnknown, kCalled };

class Context {
 public:
  Context(Options options, std::istream& in, std::ostream& out);
  ~Context();

  const Options& GetOptions() const { return options_; }
  // Whether there is somebody to ask: a terminal, and no program that reads the output.
  bool IsInteractive() const;
  std::ostream& Out() { return out_; }
  std::istream& In() { return in_; }

  WhatWasDone Done() const { return done_; }
  void SetDone(WhatWasDone done) { done_ = done; }

  // The simulated machine; null on a real one.
  sim::Machine* Machine() { return machine_.get(); }
  // The same as other programs share it; null where it is not kept.
  sim::KeptMachine* KeptMachine() { return kept_.get(); }
  // The file that the simulated machine is kept in; empty where it is not.
  std::filesystem::path MachineFile() const;
  // Why the machine that was kept could not be read back; empty if it could.
  const std::string& MachineProblem() const { return unreadable_; }
  // Throws Error when the machine that was kept could not be read back.
  void CheckMachine() const;
  // Throws Error when the last call on a simulated machine could not be kept.
  void CheckKept() const;

  // The machine as the client layer works with it.
  client::Session& GetSession();
  // Shows on the terminal how much of a long command is done.
  void ShowProgress(const std::string& what, std::size_t done, std::size_t total);
  void ClearProgress();

  // Prints a document as JSON, with the schema version and the machine's kind in front; or, with
  // --value, the one field of it. Throws Error (kUsage) for a field that it does not have.
  void Print(const Json& document);
  // Ends a command that failed with a document: prints it with the error in it where JSON is
  // wanted; otherwise prints what --value asks for, if it is there, and throws the error.
  ExitStatus Fail(const Error& error, const Json& document);

 private:
  Json Whole(const Json& document) const;
  void KeepMemory();

  Options options_;
  std::istream& in_;
  std::ostream& out_;
  std::unique_ptr<sim::Machine> machine_;
  std::unique_ptr<sim::Session> session_;
  std::unique_ptr<sim::KeptMachine> kept_;
  std::string unreadable_;
  std::unique_ptr<client::Session> client_;
  std::string progress_line_;
  WhatWasDone done_ = WhatWasDone::kNothing;
};

using Action = std::function<ExitStatus(Context&)>;

// What the parser found to do.
class Command {
 public:
  // Runs `action` when the arguments name `app`.
  void Run(CLI::App& app, Action action) {
    app.callback([this, action = std::move(action)] { chosen_ = action; });
  }
  void Choose(Action action) { chosen_ = std::move(action); }
  const Action& Chosen() const { return chosen_; }

 private:
  Action chosen_;
};

}  // namespace mira::console

#endif  // MIRA_CONSOLE_COMMAND_H_
