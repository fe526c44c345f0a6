#include "client/tag.h"

#include <algorithm>
#include <iterator>

#include "buffers/tag_data.h"
#include "client/commands.h"
#include "client/snapshot/snapshot.h"
#include "client/text_checks.h"

namespace mira::client {
namespace {

constexpr std::uint16_t kOwnershipClasses[] = {20, 23};  // alike; either may be announced

struct Kind {
  const char* name;
  std::uint16_t cls;
  std::uint16_t read;
  std::uint16_t write;
  std::size_t longest;  // a longer text is cut; 0: as long as a call can carry
};
constexpr Kind kTagKinds[] = {
    {"asset", 11, 0, 1, 12},
    {"service", 11, 2, 3, 12},
    {"ownership", kOwnershipClasses[0], 0, 1, 80},
    {"extended", 11, 8, 9, 0},
};

const Kind& FindKind(const std::string& name) {
  const auto* const found = std::find_if(std::begin(kTagKinds), std::end(kTagKinds),
                                         [&name](const Kind& kind) { return kind.name == name; });
  if (found != std::end(kTagKinds)) return *found;
  throw Error(kUsage, "bad-argument", "There is no kind of tag called '" + name + "'.", name);
}

bool IsExtended(const Kind& kind) { return kind.longest == 0; }

std::string TagTarget(const Kind& kind) { return kind.name + std::string(" tag"); }

std::uint16_t ClassOf(CMiraIntf& mira, const Kind& kind) {
  const bool is_ownership = kind.cls == kOwnershipClasses[0];
  return is_ownership && !IsAnnounced(mira, kind.cls) ? kOwnershipClasses[1] : kind.cls;
}

// Ownership tags are filled up with blanks, so blanks at the end are none of theirs.
std::string WithoutBlanksAtEnd(const Kind& kind, const std::string& text) {
  return kind.cls == kOwnershipClasses[0] ? text.substr(0, text.find_last_not_of(' ') + 1) : text;
}

// The text as the firmware keeps it.
std::string Kept(Session& session, const Kind& kind, std::string text) {
  constexpr std::size_t kRecordBesideTag = 49;
  RequireAscii(text, TagTarget(kind));
  if (IsExtended(kind)) {
    const std::size_t buffer = session.Ready().GetACPIBufSize();
    RequireLength(text, buffer < kRecordBesideTag ? 0 : buffer - kRecordBesideTag, TagTarget(kind));
    return text;
  }
  text = text.substr(0, kind.longest);
  return WithoutBlanksAtEnd(kind, text);
}

// What an impossible wish for a text that is too long ends with: the tag has the part of it that it
// can have, and can have no more.
Error AlreadyCut(const Kind& kind) {
  const std::string target = TagTarget(kind);
  return Error(kInvalidValue, kAlreadyCut,
               target + ": The text is too long. The tag has its first " +
                   std::to_string(kind.longest) + " characters already, and holds no more.",
               target);
}

std::string ReadNamed(Session& session, const Kind& kind, std::uint32_t command) {
  CTagData data;
  if (IsExtended(kind)) data.Arg1 = command;
  Execute(session, {ClassOf(session.Ready(), kind), kind.read}, data, {.target = TagTarget(kind)});
  return data.Tag.substr(0, data.Tag.find('\0'));
}

Json ShowTag(Request& request) {
  Session& session = request.GetSession();
  const auto command = static_cast<std::uint32_t>(request.Number("command"));
  std::vector<Tag> tags;
  if (request.Has("kind")) {
    tags.push_back(ReadTag(session, request.Text("kind"), command));
  } else {
    tags = ReadTags(session, command);
  }
  Json list = Json::array();
  for (const Tag& tag : tags) list.push_back(ToJson(tag));
  Json document = {{"tags", std::move(list)}};
  // Of several tags, one that this machine does not have is no reason to hide the others.
  if (std::none_of(tags.begin(), tags.end(), [](const Tag& t) { return t.text.has_value(); })) {
    Error error = *tags.front().problem;
    error.document = std::move(document);
    throw error;
  }
  return document;
}

Json SetTag(Request& request) {
  Plan plan = PlanTag(request.GetSession(), request.Text("kind"), request.Text("text"),
                      static_cast<std::uint32_t>(request.Number("command")));
  return request.Carry(plan);
}

}  // namespace

const std::vector<std::string>& TagKinds() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> list;
    for (const Kind& kind : kTagKinds) list.emplace_back(kind.name);
    return list;
  }();
  return names;
}

Tag ReadTag(Session& session, const std::string& kind, std::uint32_t command) {
  if (session.Kept() != nullptr) {
    for (Tag& tag : ReadTags(session, command)) {
      if (tag.kind != kind) continue;
      if (tag.problem) throw *tag.problem;
      return std::move(tag);
    }
    throw NotInSnapshot(kind + " tag");
  }
  return {.kind = kind, .command = command, .text = ReadNamed(session, FindKind(kind), command)};
}

std::vector<Tag> ReadTags(Session& session, std::uint32_t command) {
  if (const Snapshot* const kept = session.Kept()) {
    std::vector<Tag> tags = kept->List(kTagsSubject, "tags", TagFromJson);
    for (Tag& tag : tags) {
      // Of the extended tags a snapshot holds the one of command 0.
      if (tag.kind == "extended" && command != 0)
        tag = {tag.kind, command, {}, NotInSnapshot(tag.kind)};
    }
    return tags;
  }
  session.Ready();
  std::vector<Tag> tags;
  for (const Kind& kind : kTagKinds) {
    Tag& tag = tags.emplace_back(Tag{kind.name, command, std::nullopt});
    try {
      tag.text = ReadNamed(session, kind, command);
    } catch (const Error& error) {
      tag.problem = error;
    }
  }
  return tags;
}

Plan PlanTag(Session& session, const std::string& kind_name, const std::string& text,
             std::uint32_t command) {
  const Kind& kind = FindKind(kind_name);
  const std::string after = Kept(session, kind, text);
  const auto read = [&kind, command](Session& s) {
    return std::vector{TextJson(ReadNamed(s, kind, command))};
  };
  const auto write = [&kind, command, after](Session& s, const Key& key) {
    CTagData data;
    if (IsExtended(kind)) data.Arg1 = command;
    data.Tag = after;
    Execute(s, {ClassOf(s.Ready(), kind), kind.write}, data,
            {.target = TagTarget(kind), .key = &key});
  };
  Plan plan;
  plan.subject = {{"tag", kind.name}};
  if (IsExtended(kind)) plan.subject["command"] = command;
  const bool is_cut = after.size() < WithoutBlanksAtEnd(kind, text).size();
  plan.subject["cut"] = is_cut;
  Change change{.target = TagTarget(kind), .before = read(session).front(), .after = after};
  if (is_cut && change.before == change.after) change.problem = AlreadyCut(kind);
  plan.steps.push_back({.changes = {std::move(change)}, .read = read, .write = write});
  return plan;
}

Json ToJson(const Tag& tag) {
  Json json = {{"tag", tag.kind}};
  if (tag.kind == "extended") json["command"] = tag.command;
  json["value"] = tag.text ? TextJson(*tag.text) : Json();
  if (tag.problem) json["problem"] = ToJson(*tag.problem);
  return json;
}

Tag TagFromJson(const Json& json) {
  Tag tag = {.kind = json.at("tag"), .command = json.value("command", 0U)};
  if (!json.at("value").is_null()) tag.text = TextFromJson(json.at("value"));
  if (json.contains("problem")) tag.problem = ErrorFromJson(json.at("problem"));
  return tag;
}

std::vector<Command> TagCommands() {
  const Argument kind = {.name = "kind",
                         .help = "asset, service, ownership or extended",
                         .positional = true,
                         .choices = TagKinds()};
  const Argument command = {.name = "command",
                            .type = Type::kNumber,
                            .help = "number of an extended tag: its command value"};
  Argument required_kind = kind;
  required_kind.required = true;
  return {
      {.name = "tag.show",
       .summary = "Show the tags, or one of them",
       .arguments = {kind, command},
       .run = ShowTag},
      {.name = "tag.set",
       .summary = "Set a tag",
       .effect = Effect::kChanges,
       .arguments = {required_kind,
                     {.name = "text",
                      .help = "the new text; empty to clear the tag",
                      .required = true,
                      .positional = true},
                     command,
                     kClass10},
       .secrets = {"password"},
       .run = SetTag},
  };
}

}  // namespace mira::client
