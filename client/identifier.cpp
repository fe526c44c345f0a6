#include "client/identifier.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "buffers/aux_mac_buffer.h"
#include "buffers/eppid_buffer.h"
#include "buffers/tag_data.h"
#include "bytes/text.h"
#include "client/commands.h"
#include "client/image_server.h"
#include "client/snapshot/snapshot.h"
#include "client/text_checks.h"

namespace mira::client {
namespace {

template <std::size_t N>
std::string TextOf(const std::array<char, N>& field) {
  const std::string text(field.data(), field.size());
  return text.substr(0, text.find('\0'));
}

constexpr char kMac[] = "auxiliary MAC address";

std::string ReadMac(Session& session) {
  CMACAddr data;
  Execute(session, {11, 6}, data, {.target = kMac});
  return TextOf(data.MAC);
}

// Twelve digits, or six pairs with one kind of separator between them.
std::string CheckMac(std::string text) {
  constexpr std::size_t kPairs = 6;
  constexpr std::size_t kSeparated = 3 * kPairs - 1;
  std::string digits;
  const char separator = text.size() > 2 ? text[2] : '\0';
  const bool has_separators = text.size() == kSeparated && (separator == ':' || separator == '-');
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (has_separators && i % 3 == 2) {
      if (text[i] != separator) break;
      continue;
    }
    if (!bytes::IsHexDigit(text[i])) break;
    digits += bytes::Upper(text[i]);
  }
  const bool is_whole = text.size() == (has_separators ? kSeparated : 2 * kPairs);
  if (is_whole && digits.size() == 2 * kPairs) return digits;
  throw Error(kInvalidValue, "not-a-mac-address",
              "A MAC address has 12 hexadecimal digits, such as 02:A1:B2:C3:D4:E5.", kMac);
}

void WriteMac(Session& session, const std::string& text) {
  CMACAddr data;
  std::copy(text.begin(), text.end(), data.MAC.begin());
  Execute(session, {11, 7}, data, {.target = kMac});
}

constexpr char kEppid[] = "ePPID";

std::string ReadEppid(Session& session) {
  CEPPID data;
  Execute(session, {21, 1}, data, {.target = kEppid});
  return TextOf(data.EPPID);
}

std::string CheckEppid(std::string text) {
  constexpr std::size_t kSize = std::tuple_size_v<decltype(CEPPID::EPPID)>;
  RequireAscii(text, kEppid);
  if (text.size() == kSize) return text;
  throw Error(kInvalidValue, "wrong-length",
              "An ePPID has " + std::to_string(kSize) + " characters, not " +
                  std::to_string(text.size()) + ".",
              kEppid)
      .With("length", text.size());
}

void WriteEppid(Session& session, const std::string& text) {
  CEPPID data;
  std::copy(text.begin(), text.end(), data.EPPID.begin());
  Execute(session, {21, 2}, data, {.target = kEppid});
}

std::string CheckImageServer(std::string text) {
  constexpr std::size_t kLongest = 511;
  RequireAscii(text, kImageServer);
  RequireLength(text, kLongest, kImageServer);
  return text;
}

constexpr char kThinClient[] = "thin client";

std::string ReadThinClient(Session& session) {
  CThinClientInfo data;
  Execute(session, {26, 1}, data, {.target = kThinClient});
  return data.Tag;
}

std::string CheckThinClient(std::string text) {
  constexpr std::size_t kLongest = 19;
  RequireAscii(text, kThinClient);
  RequireLength(text, kLongest, kThinClient);
  return text;
}

void WriteThinClient(Session& session, const std::string& text) {
  CThinClientInfo data;
  data.Arg1 = 1;
  data.Tag = text;
  Execute(session, {26, 1}, data, {.target = kThinClient});
}

struct Item {
  const char* name;
  const char* title;
  std::string (*read)(Session& session);
  std::string (*check)(std::string text);  // gives the text in the firmware's form
  void (*write)(Session& session, const std::string& text);
  const char* show_command;
  const char* set_command;
  const char* show_summary;
  const char* set_summary;
};
constexpr Item kItems[] = {
    {"mac", kMac, ReadMac, CheckMac, WriteMac, "id.mac.show", "id.mac.set",
     "Show the auxiliary MAC address", "Set the auxiliary MAC address"},
    {"eppid", kEppid, ReadEppid, CheckEppid, WriteEppid, "id.eppid.show", "id.eppid.set",
     "Show the ePPID", "Set the ePPID"},
    {"image-server", kImageServer, ReadImageServer, CheckImageServer, WriteImageServer,
     "id.image-server.show", "id.image-server.set", "Show the image server",
     "Set the image server"},
    {"thin-client", kThinClient, ReadThinClient, CheckThinClient, WriteThinClient,
     "id.thin-client.show", "id.thin-client.set", "Show the thin client's text",
     "Set the thin client's text"},
};

const Item& FindItem(const std::string& name) {
  const auto* const found = std::find_if(std::begin(kItems), std::end(kItems),
                                         [&name](const Item& item) { return item.name == name; });
  if (found != std::end(kItems)) return *found;
  throw Error(kUsage, "bad-argument", "There is no identifier called '" + name + "'.", name);
}

template <std::size_t I>
Json ShowIdentifier(Request& request) {
  return ToJson(ReadIdentifier(request.GetSession(), kItems[I].name));
}

template <std::size_t I>
Json SetIdentifier(Request& request) {
  Plan plan = PlanIdentifier(request.GetSession(), kItems[I].name, request.Text("text"));
  return request.Carry(plan);
}

template <std::size_t I>
void AddCommands(std::vector<Command>& commands) {
  const Item& item = kItems[I];
  commands.push_back({.name = item.show_command,
                      .summary = item.show_summary,
                      .run = ShowIdentifier<I>,
                      .is_default = true});
  commands.push_back(
      {.name = item.set_command,
       .summary = item.set_summary,
       .effect = Effect::kChanges,
       .arguments =
           {{.name = "text", .help = "the new value", .required = true, .positional = true}},
       .run = SetIdentifier<I>});
}

template <std::size_t... I>
std::vector<Command> CommandsOf(std::index_sequence<I...>) {
  std::vector<Command> commands;
  (AddCommands<I>(commands), ...);
  return commands;
}

}  // namespace

const std::vector<std::string>& IdentifierNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> list;
    for (const Item& item : kItems) list.emplace_back(item.name);
    return list;
  }();
  return names;
}

Identifier ReadIdentifier(Session& session, const std::string& name) {
  if (session.Kept() != nullptr) {
    for (Identifier& identifier : ReadIdentifiers(session)) {
      if (identifier.name != name) continue;
      if (identifier.problem) throw *identifier.problem;
      return std::move(identifier);
    }
    throw NotInSnapshot(FindItem(name).title);
  }
  return {name, FindItem(name).read(session)};
}

std::vector<Identifier> ReadIdentifiers(Session& session) {
  if (const Snapshot* const kept = session.Kept()) {
    return kept->List(kIdentifiersSubject, "identifiers", IdentifierFromJson);
  }
  session.Ready();
  std::vector<Identifier> list;
  for (const Item& item : kItems) {
    Identifier& identifier = list.emplace_back(Identifier{item.name, std::nullopt});
    try {
      identifier.text = item.read(session);
    } catch (const Error& error) {
      identifier.problem = error;
    }
  }
  return list;
}

Plan PlanIdentifier(Session& session, const std::string& name, const std::string& text) {
  const Item& item = FindItem(name);
  const std::string after = item.check(text);
  Plan plan;
  plan.subject = {{"item", item.name}};
  plan.needs_key = false;
  plan.steps.push_back(
      {.changes = {{.target = item.title, .before = TextJson(item.read(session)), .after = after}},
       .read = [&item](Session& s) { return std::vector{TextJson(item.read(s))}; },
       .write = [&item, after](Session& s, const Key&) { item.write(s, after); }});
  return plan;
}

Json ToJson(const Identifier& identifier) {
  Json json = {{"item", identifier.name},
               {"value", identifier.text ? TextJson(*identifier.text) : Json()}};
  if (identifier.problem) json["problem"] = ToJson(*identifier.problem);
  return json;
}

Identifier IdentifierFromJson(const Json& json) {
  Identifier identifier = {.name = json.at("item"), .text = std::nullopt};
  if (!json.at("value").is_null()) identifier.text = TextFromJson(json.at("value"));
  if (json.contains("problem")) identifier.problem = ErrorFromJson(json.at("problem"));
  return identifier;
}

std::vector<Command> IdentifierCommands() {
  return CommandsOf(std::make_index_sequence<std::size(kItems)>());
}

}  // namespace mira::client
