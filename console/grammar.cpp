#include "console/grammar.h"

#include <algorithm>
#include <memory>

#include "bytes/secure.h"
#include "bytes/text.h"
#include "console/commands.h"
#include "console/face.h"
#include "console/input_file.h"
#include "console/run_command.h"
#include "console/secrets.h"

namespace mira::console {
namespace {

// The argument that asks for bytes to be saved; its first choice is the usual one.
constexpr char kForm[] = "form";

// The parser's places for one command's arguments.
struct Bound {
  const client::Argument* argument;
  CLI::Option* option = nullptr;
  std::string text = "";
  std::vector<std::string> texts = {};
  bool flag = false;
};

struct Leaf {
  const client::Command* command = nullptr;
  std::vector<std::unique_ptr<Bound>> arguments;
  SecretSlots secrets;
  std::string file;  // that the document, or its bytes, go to
};

void Bind(CLI::App& app, Leaf& leaf, const client::Argument& argument) {
  auto& bound = *leaf.arguments.emplace_back(std::make_unique<Bound>(Bound{&argument}));
  const std::string name = ArgumentName(argument);
  switch (argument.type) {
    case client::Type::kFlag:
      bound.option = app.add_flag(name, bound.flag, argument.help);
      return;
    case client::Type::kTexts:
      bound.option = app.add_option(name, bound.texts, argument.help);
      break;
    default:
      bound.option = app.add_option(name, bound.text, argument.help);
      break;
  }
  if (argument.required) bound.option->required();
}

Json ValueOf(Context& context, const Bound& bound) {
  switch (bound.argument->type) {
    case client::Type::kFlag:
      return bound.flag;
    case client::Type::kTexts:
      return bound.texts;
    case client::Type::kContent: {
      const auto& words = bound.argument->choices;
      if (std::find(words.begin(), words.end(), bound.text) != words.end()) return bound.text;
      std::vector<std::uint8_t> content = LoadFileOrInput(context, bound.text);
      Json text = std::string(content.begin(), content.end());
      // It may hold secrets beside what it is.
      bytes::Wipe(content.data(), content.size());
      return text;
    }
    default:
      return bound.text;
  }
}

ExitStatus RunLeaf(Context& context, const Leaf& leaf) {
  // An object that grows leaves copies of its values behind, which may hold secrets; beside the
  // arguments there may be "whatIf" and the form of what is saved.
  Json arguments = Json::object();
  arguments.get_ref<Json::object_t&>().reserve(leaf.arguments.size() + 2);
  for (const auto& bound : leaf.arguments) {
    if (bound->option->count() > 0) arguments[bound->argument->name] = ValueOf(context, *bound);
  }
  if (!leaf.file.empty() && !arguments.contains(kForm)) {
    const auto& known = leaf.command->arguments;
    const auto form = std::find_if(known.begin(), known.end(), [](const client::Argument& a) {
      return std::string_view(a.name) == kForm;
    });
    if (form != known.end()) arguments[kForm] = form->choices.front();
  }
  return RunCommand(context, *leaf.command, std::move(arguments), leaf.secrets, leaf.file);
}

void AddLeaf(CLI::App& app, const client::Command& client_command, Command& command) {
  auto leaf = std::make_shared<Leaf>();
  leaf->command = &client_command;
  for (const client::Argument& argument : client_command.arguments) Bind(app, *leaf, argument);
  for (const char* const slot : client_command.secrets) {
    leaf->secrets.push_back(AddSecretSlot(app, slot));
  }
  if (const Face* const face = FindFace(client_command.name)) {
    SetFooter(app, std::string("Examples:\n") + face->examples);
    if (face->saves != nullptr) {
      CLI::Option* const file =
          app.add_option("FILE", leaf->file, "the file, or - for standard output");
      if (face->is_private) {
        leaf->file = "-";
      } else {
        file->required();
      }
    }
    if (face->logs) {
      app.add_option("--log", leaf->file,
                     "append a line for each write to a file, before and after it");
    }
    if (face->save_field != nullptr) {
      app.add_option(face->save_option, leaf->file, face->save_help);
      if (face->saves_text) leaf->file = "-";
    }
  }
  command.Run(app, [leaf](Context& context) { return RunLeaf(context, *leaf); });
}

// Without a verb the default one runs, with its options.
void AddDefault(CLI::App& group, const client::Command& client_command, Command& command) {
  auto leaf = std::make_shared<Leaf>();
  leaf->command = &client_command;
  for (const client::Argument& argument : client_command.arguments) Bind(group, *leaf, argument);
  group.require_subcommand(0, 1);
  group.callback([&group, leaf, &command] {
    if (group.get_subcommands().empty()) {
      command.Choose([leaf](Context& context) { return RunLeaf(context, *leaf); });
      return;
    }
    // In front of a verb it would not be the verb's.
    for (const auto& bound : leaf->arguments) {
      if (bound->option->count() == 0) continue;
      const std::string name = bound->option->get_name();
      throw Error(kUsage, "usage", name + " belongs behind the verb.", name);
    }
  });
}

// The first example of each command below an app.
std::string FirstExamples(const CLI::App& app, const std::string& name) {
  std::string lines;
  for (const CLI::App* const verb : app.get_subcommands([](const CLI::App*) { return true; })) {
    const std::string below = name + "." + verb->get_name();
    const Face* const face = FindFace(below);
    if (face == nullptr) {
      lines += FirstExamples(*verb, below);
      continue;
    }
    const std::string_view examples = face->examples;
    lines += std::string(examples.substr(0, examples.find('\n'))) + "\n";
  }
  return lines;
}

// Gives the apps that only lead to commands their examples.
void SetGroupFooters(CLI::App& app, const std::string& name) {
  const auto verbs = app.get_subcommands([](const CLI::App*) { return true; });
  if (verbs.empty()) return;
  std::string examples = "Examples:\n" + FirstExamples(app, name);
  examples.pop_back();
  SetFooter(app, examples);
  for (CLI::App* const verb : verbs) SetGroupFooters(*verb, name + "." + verb->get_name());
}

// The app for a command's words behind the noun, made where it is missing.
CLI::App& AppFor(CLI::App& noun, std::string_view words, const client::Command& client_command) {
  CLI::App* app = &noun;
  while (!words.empty()) {
    const std::size_t dot = words.find('.');
    const std::string word(words.substr(0, dot));
    words = dot == std::string_view::npos ? "" : words.substr(dot + 1);
    const auto known =
        app->get_subcommands([&word](const CLI::App* sub) { return sub->get_name() == word; });
    app = known.empty() ? app->add_subcommand(word, client_command.summary) : known.front();
  }
  return *app;
}

}  // namespace

std::string ArgumentName(const client::Argument& argument) {
  std::string name;
  for (const char c : std::string_view(argument.name)) {
    if (c != bytes::Lower(c)) name += '-';
    name += bytes::Lower(c);
  }
  return argument.positional ? bytes::Upper(name) : "--" + name;
}

void AddCommands(CLI::App& app, const std::string& noun, Command& command) {
  bool has_verbs = false;
  bool has_default = false;
  for (const client::Command& client_command : Commands()) {
    const std::string_view name = client_command.name;
    if (name == noun) {
      AddLeaf(app, client_command, command);
      continue;
    }
    if (!name.starts_with(noun + ".")) continue;
    has_verbs = true;
    CLI::App& leaf = AppFor(app, name.substr(noun.size() + 1), client_command);
    AddLeaf(leaf, client_command, command);
    CLI::App* const group = leaf.get_parent();
    if (!client_command.is_default) {
      if (group != &app) group->require_subcommand(0, 1);
      continue;
    }
    // Without a verb the default one runs.
    has_default = has_default || group == &app;
    AddDefault(*group, client_command, command);
  }
  if (has_verbs && !has_default) app.require_subcommand(1);
  SetGroupFooters(app, noun);
}

void SetFooter(CLI::App& app, const std::string& text) {
  app.footer(text + "\n\n" + GlobalOptionsHelp());
}

}  // namespace mira::console
