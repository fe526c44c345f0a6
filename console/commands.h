#ifndef MIRA_CONSOLE_COMMANDS_H_
#define MIRA_CONSOLE_COMMANDS_H_

// What the program can be asked to do: the first words of its commands, and the rows behind them.

#include <string>
#include <string_view>
#include <vector>

#include "client/command.h"
#include "console/command.h"

namespace mira::console {

// The first word of a command. Where `add` is missing, its verbs are the commands whose names begin
// with it.
struct Noun {
  const char* name;
  const char* description;
  void (*add)(CLI::App& app, Command& command);
};
// In the order of the help text.
const std::vector<Noun>& Nouns();

// The commands of the client layer, and then the program's own.
const std::vector<client::Command>& Commands();
const client::Command* FindCommand(std::string_view name);
// Whether a command is the program's own.
bool IsOwn(const client::Command& command);

// What the program's own commands work with beside their arguments.
class OwnRequest : public client::Request {
 public:
  OwnRequest(Context& context, client::SecretProvider& secrets, Approval approve)
      : Request(context.GetSession(), secrets, std::move(approve)), context_(context) {}
  Context& GetContext() const { return context_; }
  // The handlers of own commands are only given such requests.
  static Context& ContextOf(client::Request& request) {
    return static_cast<OwnRequest&>(request).GetContext();
  }

 private:
  Context& context_;
};

// One source in console/commands/ each.
void AddConsole(CLI::App& app, Command& command);
void AddTour(CLI::App& app, Command& command);
std::vector<client::Command> CompletionCommands();
std::vector<client::Command> SimCommands();
std::vector<client::Command> SimFaultCommands();
std::vector<client::Command> SimProfileCommands();
std::vector<client::Command> SimStateCommands();

// The context of a command about the simulated machine. Throws Error on a real one, and where the
// machine that was kept cannot be read.
Context& SimulatedContext(client::Request& request);
Context& ReadableContext(client::Request& request);

}  // namespace mira::console

#endif  // MIRA_CONSOLE_COMMANDS_H_
