#include <algorithm>
#include <iostream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include "client/nearest.h"
#include "console/command.h"
#include "console/grammar.h"
#include "console/terminal.h"
#include "transport/com_error.h"

namespace mira::console {
namespace {

constexpr char kCommonOptions[] =
    "Options of every command:\n"
    "  --sim[=PROFILE]  work on a simulated machine\n"
    "  --real           work on this PC (the default)\n"
    "  --json           print one JSON document; never ask\n"
    "  --yes            do not ask before a change\n"
    "  --what-if        check and show a change, write nothing\n";

constexpr const char* kCommonOptionNames[] = {"--sim", "--real", "--json", "--yes", "--what-if"};

std::string ProgramFooter() {
  std::string text =
      "Examples:\n"
      "  mira --sim tour\n"
      "  mira smbios --type 17\n"
      "  mira --sim=locked call 9 3 --json\n"
      "  mira smbios --help\n"
      "\n";
  text += kCommonOptions;
  text += "\nSimulated machines (PROFILE):\n";
  for (const sim::Profile& profile : sim::Profiles()) {
    text += "  " + profile.name + ": " + profile.description + "\n";
  }
  return text +
         "\n"
         "Exit status: 0 done, 1 unexpected, 2 usage, 3 not found, 4 not supported, 5 password\n"
         "needed or wrong, 6 invalid value, 7 administrator rights needed, 8 confirmation\n"
         "needed, 9 transport failed, 10 applied in part, 11 refused by the firmware, 12 differs\n"
         "(where a check was asked for).";
}

// The global options may stand anywhere before "--"; the rest goes to the parser. Fills `options`
// step by step, so that an error finds what was asked for before it.
void TakeGlobalOptions(std::vector<std::string>& arguments, Options& options) {
  constexpr std::string_view kSimulated = "--sim=";
  bool real = false;
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  std::vector<std::string> rest;
  for (auto argument = arguments.begin(); argument != end; ++argument) {
    if (*argument == "--sim") {
      options.simulated = true;
    } else if (argument->starts_with(kSimulated)) {
      options.simulated = true;
      options.profile = argument->substr(kSimulated.size());
    } else if (*argument == "--real") {
      real = true;
    } else if (*argument == "--json") {
      options.json = true;
    } else if (*argument == "--yes") {
      options.yes = true;
    } else if (*argument == "--what-if") {
      options.what_if = true;
    } else {
      rest.push_back(std::move(*argument));
    }
  }
  rest.insert(rest.end(), end, arguments.end());
  arguments = std::move(rest);
  if (real && options.simulated) {
    throw CommandError(kUsage, "usage", "--sim and --real exclude each other.");
  }
}

std::string FullName(const CLI::App& app) {
  const CLI::App* const parent = app.get_parent();
  return parent != nullptr ? FullName(*parent) + " " + app.get_name() : app.get_name();
}

// The names of an app's options, those of its nameless groups included, with the number of values
// that each takes.
void CollectOptions(const CLI::App& app, std::map<std::string, int>& options) {
  for (const CLI::Option* const option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      options["--" + name] = option->get_items_expected_max();
    }
  }
  for (const CLI::App* const group :
       app.get_subcommands([](auto* sub) { return sub->get_name().empty(); })) {
    CollectOptions(*group, options);
  }
}

template <typename Map>
std::vector<std::string> Keys(const Map& map) {
  std::vector<std::string> keys;
  for (const auto& entry : map) keys.push_back(entry.first);
  return keys;
}

// Names a command or an option that does not exist, with the nearest one that does. The parser's
// own messages do not.
void CheckNames(const CLI::App& root, const std::vector<std::string>& arguments) {
  const CLI::App* app = &root;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    const std::string help = "'" + FullName(*app) + " --help' shows what there is.";
    if (*argument == "--") return;
    if (argument->starts_with("--")) {
      const std::size_t value = argument->find('=');
      const std::string option = argument->substr(0, value);
      std::map<std::string, int> options;
      CollectOptions(*app, options);
      if (const auto found = options.find(option); found != options.end()) {
        const bool takes_next = found->second > 0 && value == std::string::npos;
        if (takes_next && std::next(argument) != arguments.end()) ++argument;
        continue;
      }
      for (const char* const name : kCommonOptionNames) options[name] = 0;
      throw CommandError(kUsage, "unknown-option",
                         "'" + FullName(*app) + "' has no option '" + option + "'.", option,
                         Suggest(option, Keys(options), help));
    }
    std::map<std::string, const CLI::App*> commands;
    for (const CLI::App* const sub : app->get_subcommands([](auto*) { return true; })) {
      if (!sub->get_name().empty()) commands[sub->get_name()] = sub;
    }
    if (commands.empty()) continue;
    const auto found = commands.find(*argument);
    if (found == commands.end() && app == &root && sim::FindProfile(*argument) != nullptr) {
      throw CommandError(kUsage, "unknown-command",
                         "'" + FullName(*app) + "' has no command '" + *argument + "'.", *argument,
                         "Did you mean '--sim=" + *argument + "'?");
    }
    if (found == commands.end()) {
      throw CommandError(kUsage, "unknown-command",
                         "'" + FullName(*app) + "' has no command '" + *argument + "'.", *argument,
                         Suggest(*argument, Keys(commands), help));
    }
    app = found->second;
  }
}

// "-h" and "mira help COMMAND" are asked as "--help".
void TakeHelp(std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  std::replace(arguments.begin(), end, std::string("-h"), std::string("--help"));
  if (arguments.empty() || arguments.front() != "help") return;
  arguments.erase(arguments.begin());
  arguments.emplace_back("--help");
}

void PrintText(const char* name, const std::string& text, const Options& options,
               std::ostream& out) {
  if (options.json) {
    Json document = {{"schemaVersion", 1}};
    if (options.simulated) document["simulated"] = true;
    document[name] = text;
    WriteJson(out, document);
  } else {
    out << text << (text.ends_with('\n') ? "" : "\n");
  }
}

ExitStatus Run(std::vector<std::string> arguments, const Options& options, std::istream& in,
               std::ostream& out) {
  CLI::App app(
      "Reads SMBIOS structures, drives the firmware's calling interface, and reads and "
      "writes BIOS attributes.",
      "mira");
  app.set_help_flag("--help", "show this help");
  app.set_version_flag("--version", "mira " MIRA_VERSION);
  app.require_subcommand(1);
  app.footer(ProgramFooter());
  app.get_formatter()->column_width(28);
  Command command;
  for (const Noun& noun : Nouns()) {
    CLI::App& added = *app.add_subcommand(noun.name, noun.description);
    if (noun.add != nullptr) {
      noun.add(added, command);
    } else {
      AddClientCommands(added, noun.name, command);
    }
    added.footer(added.get_footer() + "\n\n" + kCommonOptions);
  }

  TakeHelp(arguments);
  if (arguments.empty()) arguments = {"--help"};
  CheckNames(app, arguments);
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(arguments);
  } catch (const CLI::CallForHelp&) {
    // That of the innermost command that was named.
    PrintText("help", app.help(), options, out);
    return kDone;
  } catch (const CLI::CallForVersion& version) {
    PrintText("version", version.what(), options, out);
    return kDone;
  } catch (const CLI::ParseError& error) {
    std::string message = error.what();
    while (message.ends_with('\n')) message.pop_back();
    if (!message.ends_with('.')) message += '.';
    throw CommandError(kUsage, "usage", message, "", "--help shows how it is used.");
  }
  Context context(options, in, out);
  // What a command says of calls that could not be kept is not the cause.
  try {
    const ExitStatus status = command.Chosen()(context);
    context.CheckKept();
    return status;
  } catch (const CommandError&) {
    context.CheckKept();
    throw;
  }
}

void PrintError(const CommandError& error, const Options& options, std::ostream& out,
                std::ostream& err) {
  if (options.json) {
    Json document = {{"schemaVersion", 1}};
    if (options.simulated) document["simulated"] = true;
    document["error"] = ErrorJson(error);
    WriteJson(out, document);
    return;
  }
  err << "mira: " << ToUtf8(std::string_view(error.what()));
  if (!error.hint.empty()) err << ' ' << ToUtf8(std::string_view(error.hint));
  err << '\n';
}

}  // namespace

std::string Suggest(const std::string& word, const std::vector<std::string>& names,
                    const std::string& otherwise) {
  const auto nearest = client::Nearest(word, names);
  return nearest ? "Did you mean '" + *nearest + "'?" : otherwise;
}

int RunConsole(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
               std::ostream& err, const std::filesystem::path& machines) {
  Options options;
  options.machines = machines;
  const auto fail = [&](const CommandError& error) {
    PrintError(error, options, out, err);
    return error.status;
  };
  ExitStatus status = kUnexpected;
  try {
    std::vector<std::string> rest = arguments;
    TakeGlobalOptions(rest, options);
    if (options.json && &out == &std::cout) {
      std::ostringstream document;
      {
        const SilentOutput silent;
        status = Run(rest, options, in, document);
      }
      out << document.str();
    } else {
      status = Run(rest, options, in, out);
    }
  } catch (const client::Error& error) {
    status = fail(WithHint(error, options));
  } catch (const transport::ComError&) {
    status = fail(CommandError(kUnexpected, "out-of-memory", "The system ran out of memory."));
  } catch (const std::bad_cast&) {
    status = fail(CommandError(kUnexpected, "unexpected",
                               "The command met data of a kind that it does not take."));
  } catch (const std::exception& error) {
    status = fail(CommandError(kUnexpected, "unexpected",
                               std::string("The program failed unexpectedly: ") + error.what()));
  }
  out.flush();
  if (!out) {
    err << "mira: The output could not be written: what was asked for is not there.\n";
    if (status == kDone) status = kUnexpected;
  }
  return status;
}

}  // namespace mira::console
