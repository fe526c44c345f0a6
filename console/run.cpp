#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "console/command.h"

namespace mira::console {
namespace {

constexpr char kGlobalHelp[] =
    "Options of every command:\n"
    "  --sim[=PROFILE]  work on a simulated machine\n"
    "  --real           work on this PC (the default)\n"
    "  --json           print one JSON document; never ask\n"
    "  --yes            do not ask before a change\n"
    "  --what-if        check and show a change, write nothing\n"
    "\n"
    "Exit status: 0 done, 1 unexpected, 2 usage, 3 not found, 4 not supported, 5 password needed\n"
    "or wrong, 6 invalid value, 7 administrator rights needed, 8 confirmation needed, 9 transport\n"
    "failed, 10 applied in part, 11 refused by the firmware.\n";

// The global options may stand anywhere before "--"; the rest goes to the parser.
Options TakeGlobalOptions(std::vector<std::string>& arguments) {
  Options options;
  std::vector<std::string> rest;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--") {
      rest.insert(rest.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i), arguments.end());
      break;
    }
    if (argument == "--sim" || argument.starts_with("--sim=")) {
      options.simulated = true;
      if (argument.size() > 6) options.profile = argument.substr(6);
    } else if (argument == "--real") {
      options.simulated = false;
    } else if (argument == "--json") {
      options.json = true;
    } else if (argument == "--yes") {
      options.yes = true;
    } else if (argument == "--what-if") {
      options.what_if = true;
    } else {
      rest.push_back(argument);
    }
  }
  arguments = rest;
  return options;
}

std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t substituted = diagonal + (a[i - 1] == b[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, substituted});
    }
  }
  return row.back();
}

// An unknown command gets the nearest one named.
void CheckNoun(const std::vector<std::string>& arguments) {
  const auto first = std::find_if(arguments.begin(), arguments.end(),
                                  [](const std::string& a) { return !a.starts_with("-"); });
  if (first == arguments.end()) return;
  const Noun* nearest = nullptr;
  std::size_t best = 3;
  for (const Noun& noun : Nouns()) {
    if (*first == noun.name) return;
    const std::size_t distance = Distance(*first, noun.name);
    if (distance < best) {
      best = distance;
      nearest = &noun;
    }
  }
  throw CommandError(kUsage, "unknown-command", "There is no command '" + *first + "'.", *first,
                     nearest ? "Did you mean '" + std::string(nearest->name) + "'?"
                             : "'mira --help' lists the commands.");
}

ExitStatus Run(std::vector<std::string> arguments, const Options& options, std::istream& in,
               std::ostream& out) {
  CLI::App app(
      "Reads SMBIOS structures, drives the firmware's calling interface, and reads and "
      "writes BIOS attributes.",
      "mira");
  app.footer(kGlobalHelp);
  app.require_subcommand(1);
  app.set_version_flag("--version", "mira " MIRA_VERSION);
  app.get_formatter()->column_width(28);
  Command command;
  for (const Noun& noun : Nouns())
    noun.add(*app.add_subcommand(noun.name, noun.description), command);

  if (arguments.empty()) arguments = {"--help"};
  CheckNoun(arguments);
  std::reverse(arguments.begin(), arguments.end());
  try {
    app.parse(arguments);
  } catch (const CLI::CallForHelp&) {
    // The innermost command that was named gives its help.
    const CLI::App* asked = &app;
    while (!asked->get_subcommands().empty()) asked = asked->get_subcommands().front();
    out << asked->help();
    return kDone;
  } catch (const CLI::CallForVersion& version) {
    out << version.what() << '\n';
    return kDone;
  } catch (const CLI::ParseError& error) {
    throw CommandError(kUsage, "usage", error.what(), "", "--help shows how it is used.");
  }
  Context context(options, in, out);
  return command.Chosen()(context);
}

void PrintError(const CommandError& error, const Options& options, std::ostream& out,
                std::ostream& err) {
  if (options.json) {
    Json document = {{"schemaVersion", 1}};
    if (options.simulated) document["simulated"] = true;
    document["error"] = {{"code", static_cast<int>(error.status)},
                         {"name", error.name},
                         {"message", ToUtf8(std::string_view(error.what()))},
                         {"target", ToUtf8(std::string_view(error.target))},
                         {"hint", error.hint}};
    out << document.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    return;
  }
  err << "mira: " << error.what();
  if (!error.hint.empty()) err << ' ' << error.hint;
  err << '\n';
}

}  // namespace

int RunConsole(const std::vector<std::string>& arguments, std::istream& in, std::ostream& out,
               std::ostream& err) {
  std::vector<std::string> rest = arguments;
  const Options options = TakeGlobalOptions(rest);
  ExitStatus status = kUnexpected;
  try {
    status = Run(rest, options, in, out);
  } catch (const CommandError& error) {
    PrintError(error, options, out, err);
    status = error.status;
  } catch (const std::exception& error) {
    PrintError(CommandError(kUnexpected, "unexpected", error.what()), options, out, err);
  }
  out.flush();
  return status;
}

}  // namespace mira::console
