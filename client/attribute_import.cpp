#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>

#include "client/attribute_file.h"

namespace mira::client {
namespace {

constexpr std::uint64_t kFormat = 1;
constexpr char kFile[] = "The file";

// What a file may have: what is exported, and what the other documents have in addition.
constexpr std::string_view kFileKeys[] = {"schemaVersion", "simulated",  "from",       "createdAt",
                                          "machine",       "attributes", "unreadable", "error"};
constexpr std::string_view kMachineKeys[] = {"manufacturer", "product", "serialNumber",
                                             "biosVersion"};
constexpr std::string_view kEntryKeys[] = {"handle",
                                           "name",
                                           "suffix",
                                           "type",
                                           "readOnly",
                                           "value",
                                           "bootConfigType",
                                           "failThroughMode",
                                           "default",
                                           "atBoot",
                                           "minLength",
                                           "maxLength",
                                           "lowerBound",
                                           "upperBound",
                                           "increment",
                                           "minSources",
                                           "maxSources",
                                           "possibleValues",
                                           "possibleSources",
                                           "members",
                                           "collection",
                                           "displayName",
                                           "help",
                                           "restartPending",
                                           "bootConfigTypeAtBoot",
                                           "failThroughModeAtBoot"};

Error Malformed(const std::string& what, const std::string& target = "") {
  return Error(kInvalidValue, "malformed-file", kFile + (" " + what), target);
}

template <std::size_t kSize>
void CheckKeys(const Json& object, const std::string_view (&known)[kSize],
               const std::string& where) {
  Json unknown = Json::array();
  for (const auto& [key, value] : object.items()) {
    if (std::find(std::begin(known), std::end(known), key) == std::end(known)) {
      unknown.push_back(key);
    }
  }
  if (unknown.empty()) return;
  throw Error(kInvalidValue, "unknown-key",
              where + " has what nobody knows: " + Readable(unknown) + ".", unknown.front())
      .With("unknown", unknown);
}

// The list of the file: an object for every attribute.
Json Entries(const Json& document) {
  if (!document.is_object()) throw Malformed("holds no object with \"attributes\".");
  const auto version = document.find("schemaVersion");
  if (version != document.end() && *version != kFormat) {
    const auto number = ToNumber(*version);
    throw Error(kInvalidValue, "newer-file",
                kFile + std::string(" has the schemaVersion ") + version->dump() +
                    (number && *number > kFormat ? ", which is newer than this program: it knows 1."
                                                 : ", which there is not: it is 1."),
                "schemaVersion");
  }
  CheckKeys(document, kFileKeys, kFile);
  const auto found = document.find("attributes");
  if (found == document.end()) throw Malformed("has no \"attributes\".");
  if (found->is_array()) return *found;
  if (!found->is_object()) throw Malformed("has \"attributes\" that are not a list.");
  Json entries = Json::array();
  for (const auto& [name, value] : found->items()) {
    entries.push_back({{"name", name}, {"value", value}});
  }
  return entries;
}

Json Warnings(Session& session, const Json& document) {
  Json warnings = Json::array();
  const auto there = document.find("machine");
  if (there == document.end()) return warnings;
  if (!there->is_object()) throw Malformed("has a \"machine\" that is not an object.");
  CheckKeys(*there, kMachineKeys, "The file's \"machine\"");
  const Json here = MachineJson(session);
  struct Row {
    const char* key;
    const char* name;
    const char* what;
  };
  constexpr Row kRows[] = {{"product", "other-model", "model"},
                           {"serialNumber", "other-machine", "machine with the serial number"},
                           {"biosVersion", "other-bios", "BIOS version"}};
  for (const Row& row : kRows) {
    const auto file = there->find(row.key);
    const auto own = here.find(row.key);
    if (file == there->end() || own == here.end() || *file == *own) continue;
    warnings.push_back({{"name", row.name},
                        {"message", std::string("The file is of another ") + row.what + ": " +
                                        Readable(*file) + ". This is " + Readable(*own) + "."}});
  }
  return warnings;
}

std::optional<std::uint64_t> HandleOf(const Json& entry) {
  const auto found = entry.find("handle");
  if (found == entry.end() || !found->is_number_unsigned()) return std::nullopt;
  return found->get<std::uint64_t>();
}

// An entry's name with its suffix, or its handle.
std::string TargetOf(const Json& entry) {
  std::string target;
  for (const char* const key : {"name", "suffix"}) {
    const auto found = entry.find(key);
    if (found == entry.end()) continue;
    const auto text = BytesOfText(*found);
    if (!text) return "";
    target += ToUtf8(*text);
  }
  const std::optional<std::uint64_t> handle = HandleOf(entry);
  return target.empty() && handle ? std::to_string(*handle) : target;
}

class Importer {
 public:
  explicit Importer(Session& session)
      : session_(session), writer_(std::make_shared<AttributeWriter>(session)) {}

  Plan MakePlan(const Json& document, OnError on_error) {
    const Json entries = Entries(document);
    plan_.subject["warnings"] = Warnings(session_, document);
    plan_.goes_on = on_error == OnError::kGoOn;
    plan_.checks_key = false;
    for (const Json& entry : entries) {
      session_.Report("Reading attributes", count_++, entries.size());
      current_ = nullptr;
      std::string target = entry.is_object() ? TargetOf(entry) : "";
      try {
        if (target.empty()) {
          target = "entry " + std::to_string(count_);
          throw Malformed("names no attribute in " + target + ".", target);
        }
        Add(entry, target);
      } catch (const Error& error) {
        if (error.status == kCancelled) throw;
        plan_.steps.push_back(ImpossibleStep(writer_->All(), current_, target, error));
      }
    }
    if (!doubled_.empty()) throw Doubled();
    plan_.subject["skipped"] = std::move(skipped_);
    return std::move(plan_);
  }

 private:
  // Of two values for one attribute nobody knows which is meant.
  Error Doubled() const {
    std::string titles;
    Json list = Json::array();
    for (const std::string& title : doubled_) {
      titles += (titles.empty() ? "" : ", ") + title;
      list.push_back(title);
    }
    return Error(kInvalidValue, "given-twice",
                 titles + (doubled_.size() == 1 ? " is" : " are") + " in the file twice.",
                 *doubled_.begin())
        .With("doubled", std::move(list));
  }

  void Add(const Json& entry, const std::string& target) {
    const auto value = entry.find("value");
    // A list, unlike an export, has passwords, too, without values.
    const bool is_listed_password =
        entry.value("type", Json()) == "password" && value != entry.end() && value->is_null();
    if (is_listed_password) return;
    Attributes& attributes = writer_->All();
    const std::optional<std::uint64_t> handle = HandleOf(entry);
    const AttributeEntry& found =
        handle ? attributes.Find(target, *handle) : attributes.Find(target);
    current_ = &found;
    if (!seen_.insert(found.handle).second) doubled_.insert(found.Title());
    CheckKeys(entry, kEntryKeys, target);
    if (found.IsPassword()) {
      throw Error(kInvalidValue, "password",
                  target + " is a password: no file is asked for its value.", target);
    }
    if (value == entry.end()) {
      throw Error(kInvalidValue, "no-value", target + " has no value in the file.", target);
    }
    AttributeWish wish{.entry = &found, .value = *value};
    for (const ModeRow& row : kBootModes) {
      if (const auto mode = entry.find(row.name); mode != entry.end()) wish.modes[row.name] = *mode;
    }
    if (found.IsReadOnly() && entry.value("readOnly", Json(false)) == Json(true)) {
      AddReadOnly(found, wish);
    } else {
      plan_.steps.push_back(PlanAttribute(writer_, wish));
    }
  }

  // An export holds what cannot be written, too: of another machine, that differs.
  void AddReadOnly(const AttributeEntry& found, const AttributeWish& wish) {
    const Setting live = writer_->All().ReadLive(found);
    Json now = ValueJson(writer_->All(), live);
    if (now == wish.value) {
      plan_.steps.push_back({.changes = {{.target = live.Title(),
                                          .before = now,
                                          .after = wish.value,
                                          .details = NameJson(live)}}});
      return;
    }
    Json item = NameJson(live);
    item["value"] = std::move(now);
    item["wanted"] = wish.value;
    skipped_.push_back(std::move(item));
  }

  Session& session_;
  AttributeWriterPtr writer_;
  Plan plan_;
  Json skipped_ = Json::array();
  std::set<std::uint16_t> seen_;
  std::set<std::string> doubled_;
  const AttributeEntry* current_ = nullptr;  // null while none is found
  std::size_t count_ = 0;
};

}  // namespace

Plan PlanImport(Session& session, const std::string& content, OnError on_error) {
  return Importer(session).MakePlan(ParseJson(content, kFile), on_error);
}

}  // namespace mira::client
