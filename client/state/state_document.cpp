#include "client/state/state_document.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "client/error.h"
#include "client/state/condition.h"
#include "client/tag.h"

namespace mira::client {
namespace {

constexpr std::uint64_t kStateFormat = 1;
constexpr char kExtended[] = "extended";

using Keys = std::initializer_list<std::string_view>;

Error BadState(const std::string& path, const std::string& message) {
  const std::string where = path.empty() ? "The state" : path;
  return Error(kInvalidValue, "malformed-state", where + " " + message, path);
}

void RequireObject(const Json& value, const std::string& path) {
  if (!value.is_object()) throw BadState(path, "is not an object.");
}

void AllowKeys(const Json& object, Keys keys, const std::string& path) {
  RequireObject(object, path);
  for (const auto& [key, value] : object.items()) {
    if (std::find(keys.begin(), keys.end(), key) != keys.end()) continue;
    std::string known;
    for (const std::string_view name : keys)
      known += (known.empty() ? "" : ", ") + std::string(name);
    throw Error(kInvalidValue, "unknown-key",
                PathTo(path, key) + " is not known; what there is here: " + known + ".",
                PathTo(path, key))
        .With("unknown", Json::array({key}));
  }
}

// Takes "optional" and "when" out of what an entry says.
void TakeCommonKeys(StateItem& item) {
  if (const auto found = item.body.find("optional"); found != item.body.end()) {
    if (!found->is_boolean())
      throw BadState(PathTo(item.path, "optional"), "is not true or false.");
    item.optional = found->get<bool>();
    item.body.erase("optional");
  }
  if (const auto found = item.body.find("when"); found != item.body.end()) {
    CheckConditions(*found, PathTo(item.path, "when"));
    item.when = *found;
    item.body.erase("when");
  }
}

bool IsTextObject(const Json& value) { return value.is_object() && value.contains("bytes"); }

// An entry that is its value, or an object that says more.
StateItem ValueItem(StateSubject subject, const std::string& path, const std::string& name,
                    const Json& value, Keys keys) {
  StateItem item{.subject = subject, .path = path, .name = name, .body = {}};
  if (!value.is_object() || IsTextObject(value)) {
    item.body = {{"value", value}};
  } else {
    AllowKeys(value, keys, path);
    item.body = value;
    TakeCommonKeys(item);
  }
  const bool has_secret = item.body.contains("secret");
  if (item.body.contains("value") == has_secret) {
    throw BadState(path, has_secret ? "has both 'value' and 'secret'." : "has no 'value'.");
  }
  if (has_secret && !item.body["secret"].is_string()) {
    throw BadState(PathTo(path, "secret"), "is not the name of a secret.");
  }
  if (!has_secret && item.body["value"].is_null()) throw BadState(path, "has no value.");
  return item;
}

void AddAttributes(const Json& attributes, const std::string& path, StatePart& part) {
  RequireObject(attributes, path);
  for (const auto& [name, value] : attributes.items()) {
    part.items.push_back(
        ValueItem(StateSubject::kAttributes, PathTo(path, name), name, value,
                  {"value", "secret", "optional", "when", "bootConfigType", "failThroughMode"}));
  }
}

void CheckBootOption(const Json& option, const std::string& path) {
  if (!option.is_object()) return RequireText(option, path);
  if (IsTextObject(option)) return;
  AllowKeys(option, {"value", "path", "optional"}, path);
  for (const char* const key : {"value", "path"}) {
    if (option.contains(key)) RequireText(option[key], PathTo(path, key));
  }
  if (!option.contains("value")) throw BadState(path, "has no 'value'.");
  if (option.contains("optional") && !option["optional"].is_boolean()) {
    throw BadState(PathTo(path, "optional"), "is not true or false.");
  }
}

void RequireOne(const Json& body, Keys keys, const std::string& path) {
  const auto count = std::count_if(keys.begin(), keys.end(), [&body](std::string_view key) {
    return body.contains(std::string(key));
  });
  if (count == 0) throw BadState(path, "says nothing.");
}

void AddBoot(const Json& lists, const std::string& path, StatePart& part) {
  RequireObject(lists, path);
  for (const auto& [name, value] : lists.items()) {
    const std::string here = PathTo(path, name);
    AllowKeys(value, {"first", "order", "optional", "when"}, here);
    StateItem item{.subject = StateSubject::kBoot, .path = here, .name = name, .body = value};
    TakeCommonKeys(item);
    RequireOne(item.body, {"first", "order"}, here);
    if (item.body.size() > 1) throw BadState(here, "has both 'first' and 'order'.");
    for (const auto& [key, options] : item.body.items()) {
      const std::string list = PathTo(here, key);
      if (!options.is_array() || options.empty()) throw BadState(list, "is not a list of options.");
      for (std::size_t i = 0; i < options.size(); ++i) {
        CheckBootOption(options[i], PathTo(list, std::to_string(i)));
      }
    }
    part.items.push_back(std::move(item));
  }
}

void AddTag(const std::string& path, const std::string& kind, const std::string& number,
            const Json& value, StatePart& part) {
  StateItem item = ValueItem(StateSubject::kTags, path, kind, value, {"value", "optional", "when"});
  RequireText(item.body["value"], path);
  if (!number.empty()) item.body["command"] = number;
  part.items.push_back(std::move(item));
}

void AddTags(const Json& tags, const std::string& path, StatePart& part) {
  RequireObject(tags, path);
  for (const auto& [kind, value] : tags.items()) {
    const std::string here = PathTo(path, kind);
    const auto& kinds = TagKinds();
    if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) {
      throw Error(kInvalidValue, "unknown-key", here + " is no kind of tag.", here)
          .With("unknown", Json::array({kind}));
    }
    if (kind != kExtended) {
      AddTag(here, kind, "", value, part);
      continue;
    }
    RequireObject(value, here);
    for (const auto& [number, text] : value.items()) {
      if (!ToNumber(Json(number))) throw BadState(PathTo(here, number), "is not a tag's number.");
      AddTag(PathTo(here, number), kind, number, text, part);
    }
  }
}

void AddBatteries(const Json& batteries, const std::string& path, StatePart& part) {
  if (!batteries.is_array()) throw BadState(path, "is not a list of batteries.");
  for (std::size_t i = 0; i < batteries.size(); ++i) {
    const std::string here = PathTo(path, std::to_string(i));
    RequireObject(batteries[i], here);
    StateItem item{
        .subject = StateSubject::kBatteries, .path = here, .name = "", .body = batteries[i]};
    TakeCommonKeys(item);
    if (item.body.contains("battery")) item.name = Readable(item.body["battery"]);
    part.items.push_back(std::move(item));
  }
}

void AddLegacyBoot(const Json& legacy, const std::string& path, StatePart& part) {
  AllowKeys(legacy, {"ipl", "bcv", "optional", "when"}, path);
  StateItem item{.subject = StateSubject::kLegacyBoot, .path = path, .name = "", .body = legacy};
  TakeCommonKeys(item);
  RequireOne(item.body, {"ipl", "bcv"}, path);
  for (const auto& [key, devices] : item.body.items()) {
    const std::string list = PathTo(path, key);
    if (!devices.is_array() || devices.empty()) throw BadState(list, "is not a list of devices.");
    for (std::size_t i = 0; i < devices.size(); ++i) {
      // A place in the table may be a number.
      if (!devices[i].is_number_unsigned()) {
        RequireText(devices[i], PathTo(list, std::to_string(i)));
      }
    }
  }
  part.items.push_back(std::move(item));
}

struct SubjectRow {
  StateSubject subject;
  const char* name;
  void (*add)(const Json& value, const std::string& path, StatePart& part);
};
// In the order in which they are written.
constexpr SubjectRow kSubjects[] = {
    {StateSubject::kAttributes, "attributes", AddAttributes},
    {StateSubject::kBoot, "boot", AddBoot},
    {StateSubject::kTags, "tags", AddTags},
    {StateSubject::kBatteries, "batteries", AddBatteries},
    {StateSubject::kLegacyBoot, "legacyBoot", AddLegacyBoot},
};

StatePart ReadPart(const Json& object, const std::string& path) {
  StatePart part{.path = path, .items = {}};
  for (const char* const key : {"name", "description"}) {
    if (object.contains(key)) RequireText(object[key], PathTo(path, key));
  }
  if (object.contains("when")) {
    part.when = object["when"];
    CheckConditions(part.when, PathTo(path, "when"));
  }
  for (const SubjectRow& row : kSubjects) {
    if (object.contains(row.name)) row.add(object[row.name], PathTo(path, row.name), part);
  }
  return part;
}

void CheckVersion(const Json& document) {
  const auto version = document.find("schemaVersion");
  if (version == document.end()) return;
  const auto number = ToNumber(*version);
  if (number == kStateFormat) return;
  throw Error(
      kInvalidValue, "newer-state",
      "The state has the schemaVersion " + Readable(*version) +
          (number && *number > kStateFormat ? ", which is newer than this program: it knows 1."
                                            : ", which there is not: it is 1."),
      "/schemaVersion");
}

}  // namespace

const char* Name(StateSubject subject) {
  const auto* const row =
      std::find_if(std::begin(kSubjects), std::end(kSubjects),
                   [subject](const SubjectRow& r) { return r.subject == subject; });
  return row->name;
}

std::string PathTo(const std::string& path, const std::string& name) {
  std::string step = path + "/";
  for (const char c : name) {
    if (c == '~') {
      step += "~0";
    } else if (c == '/') {
      step += "~1";
    } else {
      step += c;
    }
  }
  return step;
}

void RequireText(const Json& value, const std::string& target) {
  if (BytesOfText(value)) return;
  const bool may_be_misread = value.is_boolean() || value.is_number();
  const char* const hint = value.is_boolean()
                               ? " Quote it: YAML reads words like On and Yes as true or false."
                               : " Quote it: YAML reads 22:30 as 1350 and 010 as 8.";
  throw Error(kInvalidValue, may_be_misread ? "quote-it" : "invalid-value",
              target + ": '" + value.dump() + "' is not a text." + (may_be_misread ? hint : ""),
              target);
}

DesiredState ParseState(const Json& document) {
  RequireObject(document, "");
  // Before anything else: a newer form may have other keys.
  CheckVersion(document);
  AllowKeys(document,
            {"schemaVersion", "kind", "name", "description", "when", "attributes", "boot", "tags",
             "batteries", "legacyBoot", "groups"},
            "");
  if (document.contains("kind") && document["kind"] != "state") {
    throw BadState("/kind", "is not 'state'.");
  }
  DesiredState state;
  state.parts.push_back(ReadPart(document, ""));
  if (!document.contains("groups")) return state;
  const Json& groups = document["groups"];
  if (!groups.is_array()) throw BadState("/groups", "is not a list.");
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const std::string path = PathTo("/groups", std::to_string(i));
    AllowKeys(
        groups[i],
        {"name", "description", "when", "attributes", "boot", "tags", "batteries", "legacyBoot"},
        path);
    state.parts.push_back(ReadPart(groups[i], path));
  }
  return state;
}

}  // namespace mira::client
