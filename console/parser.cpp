#include "console/parser.h"

#include <algorithm>
#include <iterator>

#include "console/commands.h"
#include "console/exit_status.h"
#include "console/grammar.h"
#include "console/hints.h"

namespace mira::console {
namespace {

std::string ProgramFooter() {
  std::string text =
      "Examples:\n"
      "  mira --sim tour\n"
      "  mira smbios --type 17\n"
      "  mira --sim=locked call 9 3 --json\n"
      "  mira --sim info --value transferBufferSize\n"
      "  mira smbios --help\n"
      "\n";
  text += GlobalOptionsHelp();
  text += "\nSimulated machines (PROFILE):\n";
  for (const sim::Profile& profile : sim::Profiles()) {
    text += "  " + profile.name + ": " + profile.description + "\n";
  }
  text += "\nExit status:\n";
  for (const ExitStatusText& row : kExitStatusTexts) {
    text +=
        "  " + std::to_string(row.status) + (row.status < 10 ? "   " : "  ") + row.meaning + "\n";
  }
  return text;
}

template <typename Map>
std::vector<std::string> Keys(const Map& map) {
  std::vector<std::string> keys;
  for (const auto& entry : map) keys.push_back(entry.first);
  return keys;
}

Error UnknownOption(const CLI::App& app, const std::string& option, const std::string& help) {
  if (option == "--from" && Verbs(app).empty()) {
    throw Error(kUsage, "snapshot-is-only-read",
                "A snapshot is only read: '" + FullName(app) + "' works on a machine alone.",
                option);
  }
  std::vector<std::string> names = Keys(LongOptions(app));
  for (const GlobalOption& global : GlobalOptions()) names.push_back(global.name);
  return WithHint(Error(kUsage, "unknown-option",
                        "'" + FullName(app) + "' has no option '" + option + "'.", option),
                  Suggest(option, names, help));
}

Error UnknownCommand(const CLI::App& app, const std::string& word, const std::string& help) {
  const Error error(kUsage, "unknown-command",
                    "'" + FullName(app) + "' has no command '" + word + "'.", word);
  // "mira --sim laptop", "mira sim laptop"
  const bool may_be_profile = app.get_parent() == nullptr || app.get_name() == "sim";
  if (may_be_profile && sim::FindProfile(word) != nullptr) {
    return WithHint(error, "Did you mean '--sim=" + word + "'?");
  }
  std::vector<std::string> names;
  for (const CLI::App* const verb : Verbs(app)) names.push_back(verb->get_name());
  return WithHint(error, Suggest(word, names, help));
}

}  // namespace

std::unique_ptr<CLI::App> MakeParser(Command& command) {
  auto app = std::make_unique<CLI::App>(
      "Reads SMBIOS structures, drives the firmware's calling interface, and reads and "
      "writes BIOS attributes.",
      "mira");
  app->set_help_flag("--help", "show this help");
  app->set_version_flag("--version", "mira " MIRA_VERSION);
  app->require_subcommand(1);
  app->get_formatter()->column_width(28);
  for (const Noun& noun : Nouns()) {
    CLI::App& added = *app->add_subcommand(noun.name, noun.description);
    if (noun.add != nullptr) {
      noun.add(added, command);
      SetFooter(added, added.get_footer());
    } else {
      AddCommands(added, noun.name, command);
    }
  }
  // Last, since commands take over the footer of what they are added to.
  app->footer(ProgramFooter());
  return app;
}

std::string FullName(const CLI::App& app) {
  const CLI::App* const parent = app.get_parent();
  return parent != nullptr ? FullName(*parent) + " " + app.get_name() : app.get_name();
}

std::vector<const CLI::App*> Verbs(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* sub) { return !sub->get_name().empty(); });
}

std::map<std::string, const CLI::Option*> LongOptions(const CLI::App& app) {
  std::map<std::string, const CLI::Option*> options;
  for (const CLI::Option* const option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) options["--" + name] = option;
  }
  for (const CLI::App* const group :
       app.get_subcommands([](const CLI::App* sub) { return sub->get_name().empty(); })) {
    options.merge(LongOptions(*group));
  }
  return options;
}

std::string Name(const CLI::Option& option) {
  const auto& names = option.get_lnames();
  return names.empty() ? option.get_name() : "--" + names.front();
}

void CheckNames(const CLI::App& root, const std::vector<std::string>& arguments) {
  const CLI::App* app = &root;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    const std::string help = "'" + FullName(*app) + " --help' shows what there is.";
    if (*argument == "--") return;
    if (argument->starts_with("--")) {
      const std::size_t value = argument->find('=');
      const std::string option = argument->substr(0, value);
      const auto options = LongOptions(*app);
      const auto found = options.find(option);
      if (found == options.end()) throw UnknownOption(*app, option, help);
      const bool takes_next =
          found->second->get_items_expected_max() > 0 && value == std::string::npos;
      if (takes_next && std::next(argument) != arguments.end()) ++argument;
      continue;
    }
    const std::vector<const CLI::App*> verbs = Verbs(*app);
    if (verbs.empty()) continue;
    const auto found = std::find_if(verbs.begin(), verbs.end(), [&](const CLI::App* verb) {
      return verb->get_name() == *argument;
    });
    if (found == verbs.end()) throw UnknownCommand(*app, *argument, help);
    app = *found;
  }
}

}  // namespace mira::console
