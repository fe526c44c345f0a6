// Scripts that complete command lines, and the manual: both written from the parser's tables.

#include "console/completion.h"

#include "console/commands.h"
#include "console/manual.h"

namespace mira::console {
namespace {

// The commands that list names.
constexpr const char* kLists[] = {"attr.list", "boot.list"};

// The names in the first list of a document, "attributes" or "lists".
std::vector<std::string> NamesIn(const Json& document) {
  std::vector<std::string> names;
  for (const Json& part : document) {
    if (!part.is_array()) continue;
    for (const Json& thing : part) {
      const auto name = thing.is_object() ? thing.find("name") : thing.end();
      if (thing.is_object() && name != thing.end()) names.push_back(client::Readable(*name));
    }
    break;
  }
  return names;
}

// What a document of one of the lists, or an export, holds.
KnownNames ReadNames(const std::string& content) {
  const Json document = client::ParseJson(content, "the file");
  KnownNames known;
  if (document.is_object() && document.contains("attributes")) {
    known["attr.list"] = NamesIn({{"attributes", document["attributes"]}});
  } else if (document.is_object() && document.contains("lists")) {
    known["boot.list"] = NamesIn({{"lists", document["lists"]}});
  } else {
    throw Error(kInvalidValue, "malformed-file",
                "The file holds neither attributes nor boot lists.", "from");
  }
  return known;
}

template <std::string (*kWrite)(const KnownNames&)>
Json Script(client::Request& request) {
  KnownNames known;
  if (request.Has("from")) known = ReadNames(request.Text("from"));
  return {{"text", kWrite(known)}};
}

Json Manual(client::Request&) { return {{"text", ManualPage()}}; }

Json Names(client::Request& request) {
  // A shell asks this whenever Tab is pressed.
  if (!request.GetSession().IsSimulated()) {
    throw Error(kUsage, "not-simulated", "Names are only looked up on a simulated machine.");
  }
  client::Request same(request.GetSession(), request.Secrets());
  same.SetArguments(Json::object());
  return {{"names", NamesIn(FindCommand(request.Text("list"))->run(same))}};
}

}  // namespace

std::vector<client::Command> CompletionCommands() {
  const client::Argument from = {.name = "from",
                                 .type = client::Type::kContent,
                                 .help =
                                     "a document of 'attr export', 'attr list' or 'boot list' "
                                     "whose names are offered, too"};
  return {
      {.name = "completion.bash",
       .summary = "Write the completion script for bash",
       .effect = client::Effect::kOffline,
       .arguments = {from},
       .run = Script<BashCompletion>},
      {.name = "completion.powershell",
       .summary = "Write the completion script for PowerShell",
       .effect = client::Effect::kOffline,
       .arguments = {from},
       .run = Script<PowerShellCompletion>},
      {.name = "completion.man",
       .summary = "Write the manual page",
       .effect = client::Effect::kOffline,
       .run = Manual},
      {.name = "completion.names",
       .summary = "List the names that a simulated machine's command shows",
       .arguments = {{.name = "list",
                      .help = "the command",
                      .required = true,
                      .positional = true,
                      .choices = {std::begin(kLists), std::end(kLists)}}},
       .run = Names},
  };
}

}  // namespace mira::console
