#include "bytes/text.h"
#include "client/boot.h"
#include "client/commands.h"

namespace mira::client {
namespace {

Json ListBoot(Request& request) {
  const BootLists lists = ReadBootLists(request.GetSession());
  Json list = Json::array();
  for (const BootList& one : lists.lists) list.push_back(ToJson(one));
  return {{"lists", std::move(list)}, {"complete", lists.complete}};
}

Json ShowBoot(Request& request) {
  Session& session = request.GetSession();
  BootLists lists = ReadBootLists(session, request.Text("kind"));
  if (request.Has("list")) {
    lists = {.lists = {FindBootList(lists, request.Text("list"))}, .complete = true};
  }
  Json shown = Json::array();
  for (const BootList& list : lists.lists) {
    shown.push_back(ToJson(ReadBootOptions(session, list)));
  }
  return {{"lists", std::move(shown)}, {"complete", lists.complete}};
}

Json SetOrder(Request& request) {
  Plan plan = PlanBootOrder(request.GetSession(), request.Text("list"), request.Texts("order"),
                            request.Flag("force"));
  return request.Carry(plan);
}

Json First(Request& request) {
  Plan plan = PlanBootFirst(request.GetSession(), request.Text("option"), request.Text("list"));
  return request.Carry(plan);
}

// The document of what was decoded. Throws Error with the document in it where a path of it is
// malformed.
Json Decoded(Json document, const std::vector<devicepath::Path>& paths) {
  for (const devicepath::Path& path : paths) {
    if (!path.problem) continue;
    Error error(kInvalidValue, "malformed-path",
                "The path is malformed at byte " + std::to_string(path.problem->offset) + ": " +
                    path.problem->message);
    error.With("offset", path.problem->offset);
    error.document = std::move(document);
    throw error;
  }
  return document;
}

Json Decode(Request& request) {
  const std::string content = request.Text("file");
  if (!request.Flag("path")) {
    const BootOption option = DecodeBootOption(content);
    return Decoded({{"option", ToJson(option)}}, option.paths);
  }
  const std::vector<devicepath::Path> paths = DecodeBootPaths(content);
  Json list = Json::array();
  for (const devicepath::Path& path : paths) list.push_back(ToJson(path));
  return Decoded({{"path", paths.front().text}, {"paths", std::move(list)}}, paths);
}

Json Encode(Request& request) {
  const std::string text = request.Text("path");
  devicepath::Problem problem;
  const auto path = devicepath::DevicePathFromText(text, &problem);
  if (!path) {
    throw Error(kInvalidValue, "no-path", "'" + text + "' is not a device path: " + problem.message,
                text)
        .With("offset", problem.offset);
  }
  return {{"path", devicepath::DevicePathToText(*path)}, {"bytes", bytes::HexText(*path)}};
}

}  // namespace

std::vector<Command> BootCommands() {
  const Argument list = {.name = "list",
                         .help = "a boot list by its number or its name",
                         .required = true,
                         .positional = true};
  Argument any_list = list;
  any_list.required = false;
  any_list.help = "a boot list by its number or its name; without it, all lists";
  Argument list_option = any_list;
  list_option.positional = false;
  list_option.help = "the option's boot list, where several lists have such an option";
  return {
      {.name = "boot.list", .summary = "List the boot lists", .run = ListBoot},
      {.name = "boot.show",
       .summary = "Show the options of a list in boot order",
       .arguments = {any_list,
                     {.name = "kind",
                      .help =
                          "what the options are, uefi or legacy, where the list's name does not "
                          "say",
                      .choices = {"uefi", "legacy"}}},
       .run = ShowBoot},
      {.name = "boot.order",
       .summary = "Set the order of a list",
       .effect = Effect::kChanges,
       .arguments = {list,
                     {.name = "order",
                      .type = Type::kTexts,
                      .help = "all options with commas between them: numbers (decimal, with 0x, or "
                              "Boot####) or descriptions",
                      .required = true,
                      .positional = true},
                     {.name = "force",
                      .type = Type::kFlag,
                      .help = "send the order without checking it"},
                     kClass10},
       .secrets = {"password"},
       .run = SetOrder},
      {.name = "boot.first",
       .summary = "Put one option in front of the others of its list",
       .effect = Effect::kChanges,
       .arguments = {{.name = "option",
                      .help = "an option by its number or its description",
                      .required = true,
                      .positional = true},
                     list_option,
                     kClass10},
       .secrets = {"password"},
       .run = First},
      {.name = "boot.decode",
       .summary = "Decode a load option from a file; works offline",
       .effect = Effect::kOffline,
       .arguments = {{.name = "file",
                      .type = Type::kContent,
                      .help = "bytes, or hexadecimal",
                      .required = true,
                      .positional = true},
                     {.name = "path",
                      .type = Type::kFlag,
                      .help = "the file holds a device path alone"}},
       .run = Decode},
      {.name = "boot.encode",
       .summary = "Turn a device path's text into its bytes; works offline",
       .effect = Effect::kOffline,
       .arguments = {{.name = "path",
                      .help = "the path in the standard's text form",
                      .required = true,
                      .positional = true}},
       .run = Encode},
  };
}

}  // namespace mira::client
