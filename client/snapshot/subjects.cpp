#include "client/snapshot/subjects.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "bytes/text.h"
#include "client/attribute_file.h"
#include "client/boot.h"
#include "client/command.h"
#include "client/identifier.h"
#include "client/smbios.h"
#include "client/smbios_file.h"
#include "client/snapshot/kept_attributes.h"

namespace mira::client {
namespace {

// What a command that reads gives.
Json DocumentOf(Session& session, const char* name, const Json& arguments = Json::object()) {
  const Command& command = *FindCommand(name);
  NoSecrets none;
  Request request(session, none);
  request.SetArguments(CheckArguments(command, arguments));
  return command.run(request);
}

template <const char* kName>
Json ReadByCommand(Session& session) {
  return DocumentOf(session, kName);
}

// The structures are not kept: they follow from the bytes.
Json ReadTableSubject(Session& session) {
  const std::vector<std::uint8_t> table = ReadTable(session);
  const StructureList list = ReadStructures(table);
  return {{"smbiosVersion", list.smbios_version.empty() ? Json() : Json(list.smbios_version)},
          {"complete", list.is_complete},
          {"table", bytes::HexText(table)}};
}

Json ReadIdentifierSubject(Session& session) {
  const std::vector<Identifier> identifiers = ReadIdentifiers(session);
  Json list = Json::array();
  for (const Identifier& identifier : identifiers) list.push_back(ToJson(identifier));
  Json value = {{"identifiers", std::move(list)}};
  const bool is_any_read =
      std::any_of(identifiers.begin(), identifiers.end(), [](auto& i) { return i.text; });
  if (is_any_read) return value;
  Error error = *identifiers.front().problem;
  error.document = std::move(value);
  throw error;
}

Json ReadBatterySubject(Session& session) {
  return DocumentOf(session, "battery.show", {{"battery", "all"}});
}

// One list that cannot be read is no reason to leave the others out.
Json ReadBootSubject(Session& session) {
  const BootLists lists = ReadBootLists(session);
  Json shown = Json::array();
  for (const BootList& list : lists.lists) {
    try {
      shown.push_back(ToJson(ReadBootOptions(session, list)));
    } catch (const Error& error) {
      Json json = ToJson(list);
      json["error"] = ToJson(error);
      shown.push_back(std::move(json));
    }
  }
  return {{"lists", std::move(shown)}, {"complete", lists.complete}};
}

Json ReadFirmwareLists(Session& session) {
  struct List {
    const char* field;
    const char* command;
    Json arguments;
  };
  const List lists[] = {{"entries", "log", {{"list", "entries"}}},
                        {"messages", "log", {{"list", "messages"}}},
                        {"scanCodes", "log", {{"list", "scan-codes"}}},
                        {"sensors", "thermal", Json::object()}};
  Json value = Json::object();
  Json problems = Json::object();
  std::optional<Error> first;
  for (const List& list : lists) {
    try {
      value.update(DocumentOf(session, list.command, list.arguments));
    } catch (const Error& error) {
      problems[list.field] = ToJson(error);
      if (!first) first = error;
    }
  }
  if (value.empty()) throw Error(*first);
  if (!problems.empty()) value["problems"] = std::move(problems);
  return value;
}

constexpr char kInfoCommand[] = "info";
constexpr char kInventoryCommand[] = "inventory";
constexpr char kTokensCommand[] = "tokens";
constexpr char kPasswordCommand[] = "password.status";
constexpr char kDriveCommand[] = "hdd.list";
constexpr char kTagCommand[] = "tag.show";
constexpr char kLegacyCommand[] = "boot.legacy.show";

Json ReadSubject(Session& session, const Subject& subject) {
  Json json = Json::object();
  try {
    json["value"] = subject.read(session);
  } catch (const Error& error) {
    if (!error.document.empty()) json["value"] = error.document;
    json["error"] = ToJson(error);
  }
  return json;
}

}  // namespace

const std::vector<Subject>& Subjects() {
  static const std::vector<Subject> all = {
      {kStartUpSubject, "Start-up", ReadByCommand<kInfoCommand>},
      {kInventorySubject, "Inventory", ReadByCommand<kInventoryCommand>},
      {kTableSubject, "SMBIOS table", ReadTableSubject},
      {kTokensSubject, "Tokens", ReadByCommand<kTokensCommand>},
      {kPasswordsSubject, "Passwords", ReadByCommand<kPasswordCommand>},
      {kDrivesSubject, "Drives", ReadByCommand<kDriveCommand>},
      {kTagsSubject, "Tags", ReadByCommand<kTagCommand>},
      {kIdentifiersSubject, "Identifiers", ReadIdentifierSubject},
      {kBatteriesSubject, "Batteries", ReadBatterySubject},
      {kBootSubject, "Boot lists", ReadBootSubject},
      {kLegacyBootSubject, "Legacy boot priorities", ReadByCommand<kLegacyCommand>},
      {kAttributesSubject, "BIOS attributes", KeepAttributes},
      {kFirmwareListsSubject, "Firmware lists", ReadFirmwareLists},
  };
  return all;
}

const Subject* FindSubject(const std::string& name) {
  const auto& all = Subjects();
  const auto found =
      std::find_if(all.begin(), all.end(), [&name](const Subject& s) { return s.name == name; });
  return found != all.end() ? &*found : nullptr;
}

Json TakeSnapshot(Session& session) {
  if (const Snapshot* const kept = session.Kept()) return kept->Document();
  Json document = Json::object();
  if (session.IsSimulated()) document["simulated"] = true;
  document["kind"] = "snapshot";
  document["takenAt"] = session.Now();
  document["program"] = {{"name", "mira"}, {"version", MIRA_VERSION}};
  document["redacted"] = false;
  document["machine"] = MachineJson(session);
  Json& subjects = document["subjects"] = Json::object();
  bool is_any_read = false;
  std::size_t done = 0;
  for (const Subject& subject : Subjects()) {
    session.Report("Taking a snapshot", done++, Subjects().size());
    const Json& read = subjects[subject.name] = ReadSubject(session, subject);
    is_any_read = is_any_read || !read.contains("error");
  }
  if (is_any_read) return document;
  Error error(kUnexpected, "nothing-read",
              "Nothing of this machine could be read. The first reason: " +
                  Readable(subjects.front().at("error").at("message")));
  error.document = std::move(document);
  throw error;
}

}  // namespace mira::client
