#include "console/outline.h"

#include <algorithm>
#include <string_view>

#include "console/commands.h"
#include "console/grammar.h"
#include "console/parser.h"

namespace mira::console {
namespace {

// The arguments that take a name from what another command lists.
struct NamesRow {
  const char* command;
  const char* argument;
  const char* list;
};
constexpr NamesRow kNames[] = {
    {"attr.get", "NAMES", "attr.list"},  {"attr.reset", "NAMES", "attr.list"},
    {"attr.set", "NAME", "attr.list"},   {"boot.show", "LIST", "boot.list"},
    {"boot.order", "LIST", "boot.list"}, {"boot.first", "--list", "boot.list"},
};

// The row of "mira boot order", or null.
const client::Command* RowOf(const std::string& path) {
  std::string name = path.substr(path.find(' ') + 1);
  std::replace(name.begin(), name.end(), ' ', '.');
  return FindCommand(name);
}

OutlineArgument ArgumentOf(const CLI::Option& option, const client::Command* row) {
  OutlineArgument argument;
  argument.name = Name(option);
  argument.help = option.get_description();
  argument.is_option = !option.get_lnames().empty();
  argument.takes_value = option.get_items_expected_max() > 0;
  argument.takes_many = option.get_items_expected_max() > 1;
  argument.is_required = option.get_required();
  argument.is_file =
      argument.takes_value &&
      (argument.name == "FILE" || argument.name == "--save" || argument.name.ends_with("-file"));
  if (row == nullptr) return argument;
  for (const NamesRow& names : kNames) {
    if (row->name == std::string_view(names.command) && argument.name == names.argument) {
      argument.names_from = names.list;
    }
  }
  for (const client::Argument& known : row->arguments) {
    if (argument.name != ArgumentName(known)) continue;
    argument.choices = known.choices;
    argument.is_file = known.type == client::Type::kContent;
  }
  return argument;
}

void Add(const CLI::App& app, std::vector<OutlineCommand>& outline) {
  OutlineCommand command;
  command.path = FullName(app);
  command.summary = app.get_description();
  command.footer = app.get_footer();
  const client::Command* const row = RowOf(command.path);
  const std::vector<const CLI::App*> verbs = Verbs(app);
  for (const CLI::App* const verb : verbs) command.verbs.push_back(verb->get_name());
  for (const CLI::Option* const option : app.get_options()) {
    command.arguments.push_back(ArgumentOf(*option, row));
  }
  outline.push_back(std::move(command));
  for (const CLI::App* const verb : verbs) Add(*verb, outline);
}

}  // namespace

std::vector<OutlineCommand> Outline() {
  Command command;
  std::vector<OutlineCommand> outline;
  Add(*MakeParser(command), outline);
  return outline;
}

}  // namespace mira::console
