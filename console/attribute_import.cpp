#include "console/attribute_import.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <set>
#include <utility>

#include "console/changes.h"

namespace mira::console {
namespace {

constexpr std::size_t kLargestFile = 64 * 1024 * 1024;

enum class Outcome { kUnchanged, kSkipped, kReady, kChanged, kFailed, kNotTried };

const char* NameOf(Outcome outcome, bool is_dry) {
  switch (outcome) {
    case Outcome::kUnchanged:
      return "unchanged";
    case Outcome::kSkipped:
      return "skipped";
    case Outcome::kReady:
      return is_dry ? "would-change" : "not-tried";
    case Outcome::kChanged:
      return "changed";
    case Outcome::kFailed:
      return "failed";
    case Outcome::kNotTried:
      return "not-tried";
  }
  return "";
}

// What the file wants of one attribute.
struct Item {
  std::string name;
  Setting setting;
  Json before;
  Json after;
  // Of boot orders.
  Json modes_before = Json::object();
  Json modes_after = Json::object();
  Outcome outcome = Outcome::kNotTried;
  std::optional<CommandError> error;

  bool IsChanged() const { return after != before || modes_after != modes_before; }
  Change AsChange() const {
    if (modes_after == modes_before) return {name, ValueText(before), ValueText(after)};
    return {name, ValueText(before, modes_before), ValueText(after, modes_after)};
  }
};

CommandError Malformed(const std::string& file, const std::string& what) {
  const std::string name = file == "-" ? "Standard input" : "'" + file + "'";
  return CommandError(kInvalidValue, "malformed-file", name + " " + what, file,
                      "'mira attr export' shows the form.");
}

// The list of the file: an object for every attribute.
Json ReadEntries(Context& context, const std::string& path) {
  std::ifstream file;
  if (path != "-") file.open(ToPath(path), std::ios::binary);
  std::istream& in = path == "-" ? context.In() : file;
  if (!in) {
    throw CommandError(kNotFound, "not-readable", "The file '" + path + "' cannot be read.", path);
  }
  std::string text;
  char part[4096];
  while (in.read(part, sizeof(part)), in.gcount() > 0) {
    text.append(part, static_cast<std::size_t>(in.gcount()));
    if (text.size() > kLargestFile) throw Malformed(path, "is too large.");
  }
  const Json document = Json::parse(text, nullptr, false);
  if (document.is_discarded()) throw Malformed(path, "is no JSON.");
  const auto found = document.is_object() ? document.find("attributes") : document.end();
  if (found == document.end()) throw Malformed(path, "has no \"attributes\".");
  if (found->is_array()) return *found;
  if (!found->is_object()) throw Malformed(path, "has \"attributes\" that are no list.");
  Json entries = Json::array();
  for (const auto& [name, value] : found->items()) {
    entries.push_back({{"name", name}, {"value", value}});
  }
  return entries;
}

// Texts, numbers and lists of these are values.
bool CanBeValue(const Json& value) {
  return !value.is_object() && std::none_of(value.begin(), value.end(),
                                            [](const Json& part) { return part.is_structured(); });
}

// An entry's handle, where it has one.
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
    if (!found->is_string()) return "";
    target += found->get<std::string>();
  }
  const std::optional<std::uint64_t> handle = HandleOf(entry);
  return target.empty() && handle ? std::to_string(*handle) : target;
}

class Import {
 public:
  Import(Context& context, const ImportOptions& options)
      : context_(context),
        options_(options),
        is_dry_(options.dry_run || context.GetOptions().what_if),
        attributes_(context) {}

  ExitStatus Run(const KeyGiver& obtain_key) {
    Plan(ReadEntries(context_, options_.file));
    const Changes changes = Difference();
    const bool is_stopped = options_.stop_on_error && FirstError() != nullptr;
    if (!changes.empty() && !is_stopped) {
      const unsigned int key = obtain_key(attributes_.Mira(), is_dry_);
      if (!is_dry_ && Approve(context_, changes)) Apply(key);
    }
    return Report();
  }

 private:
  void Plan(const Json& entries) {
    std::set<std::uint16_t> seen;
    for (const Json& entry : entries) {
      attributes_.GetProgress().Show("Reading attributes", items_.size(), entries.size());
      if (FirstError() != nullptr && options_.stop_on_error) break;
      Item& item = items_.emplace_back();
      try {
        item.name = entry.is_object() ? TargetOf(entry) : "";
        if (item.name.empty()) {
          item.name = "entry " + std::to_string(items_.size());
          throw Malformed(options_.file, "names no attribute in " + item.name + ".");
        }
        PlanItem(entry, item, seen);
      } catch (const CommandError& error) {
        Fail(item, error);
      }
    }
    attributes_.GetProgress().Clear();
  }

  void PlanItem(const Json& entry, Item& item, std::set<std::uint16_t>& seen) {
    const std::optional<std::uint64_t> handle = HandleOf(entry);
    const AttributeEntry& found =
        handle ? attributes_.Find(item.name, *handle) : attributes_.Find(item.name);
    item.setting = attributes_.ReadLive(found);
    item.before = attributes_.Value(item.setting);
    item.modes_before = attributes_.Modes(item.setting);
    if (!seen.insert(found.handle).second) {
      throw CommandError(kInvalidValue, "given-twice", item.name + " is in the file twice.",
                         item.name);
    }
    const auto value = entry.find("value");
    if (value == entry.end() || !CanBeValue(*value)) {
      throw CommandError(kInvalidValue, "no-value", item.name + " has no value in the file.",
                         item.name, "A value is a text, a number, or a list of these.");
    }
    if (found.IsPassword()) {
      throw CommandError(kInvalidValue, "password", item.name + " is a password.", item.name,
                         "'mira attr set' asks for its value.");
    }
    item.name = item.setting.Title();
    item.after = *value;
    item.outcome = Outcome::kUnchanged;
    attributes_.AssignModes(item.setting, entry);
    item.modes_after = attributes_.Modes(item.setting);
    if (!item.IsChanged()) return;
    if (found.IsReadOnly()) {
      // An export holds what cannot be written, too: of another machine, that differs.
      if (entry.value("readOnly", Json(false)) == Json(true)) {
        item.outcome = Outcome::kSkipped;
        return;
      }
      throw CommandError(kInvalidValue, "read-only", item.name + " is read-only.", item.name);
    }
    attributes_.Assign(item.setting, *value, Limits::kCheck);
    item.after = attributes_.Value(item.setting);
    if (item.IsChanged()) item.outcome = Outcome::kReady;
  }

  Changes Difference() const {
    Changes changes;
    for (const Item& item : items_) {
      if (item.outcome != Outcome::kReady) continue;
      changes.push_back(item.AsChange());
    }
    return changes;
  }

  void Apply(unsigned int key) {
    std::size_t done = 0;
    for (Item& item : items_) {
      attributes_.GetProgress().Show("Writing attributes", done++, items_.size());
      if (item.outcome != Outcome::kReady) continue;
      try {
        attributes_.Write(item.setting, key);
        item.outcome = Outcome::kChanged;
        if (!is_restart_pending_) {
          const Setting live = attributes_.ReadLive(*item.setting.entry);
          is_restart_pending_ = attributes_.IsRestartPending(live);
        }
      } catch (const CommandError& error) {
        // A value that was written stays so, although it could not be read again.
        if (item.outcome != Outcome::kChanged) Fail(item, error);
      }
      if (options_.stop_on_error && FirstError() != nullptr) break;
    }
    attributes_.GetProgress().Clear();
  }

  static void Fail(Item& item, const CommandError& error) {
    item.outcome = Outcome::kFailed;
    item.error = error;
  }

  const CommandError* FirstError() const {
    for (const Item& item : items_) {
      if (item.error) return &*item.error;
    }
    return nullptr;
  }

  std::size_t Count(Outcome outcome) const {
    return static_cast<std::size_t>(
        std::count_if(items_.begin(), items_.end(),
                      [outcome](const Item& item) { return item.outcome == outcome; }));
  }

  // What the program ends with when not everything went well.
  CommandError Problem() const {
    const CommandError& first = *FirstError();
    const std::size_t failed = Count(Outcome::kFailed);
    const std::size_t fine = Count(Outcome::kChanged) + Count(Outcome::kUnchanged) +
                             (is_dry_ ? Count(Outcome::kReady) : 0);
    const bool is_in_part = fine != 0 && !(options_.stop_on_error && Count(Outcome::kChanged) == 0);
    return CommandError(
        is_in_part ? kAppliedInPart : first.status, is_in_part ? "applied-in-part" : first.name,
        std::to_string(failed) + " of " + std::to_string(items_.size()) +
            " attributes cannot have the value of the file. The first: " + first.what(),
        first.target, first.hint);
  }

  ExitStatus Report() const {
    const bool is_failed = FirstError() != nullptr;
    if (!context_.IsJson()) {
      WriteText();
      if (is_failed) throw Problem();
      return kDone;
    }
    Json list = Json::array();
    for (const Item& item : items_) {
      if (item.outcome == Outcome::kUnchanged) continue;
      Json shown = {{"name", ToUtf8(item.name)}};
      if (item.setting.entry != nullptr) {
        shown = NameJson(item.setting);
        shown["before"] = item.before;
        shown["after"] = item.after;
        for (const auto& [name, mode] : item.modes_before.items()) shown[name + "Before"] = mode;
        shown.update(item.modes_after);
      }
      shown["outcome"] = NameOf(item.outcome, is_dry_);
      if (item.error) shown["error"] = ErrorJson(*item.error);
      list.push_back(std::move(shown));
    }
    const Json document = {{"file", options_.file},
                           {"whatIf", is_dry_},
                           {"changed", Count(Outcome::kChanged)},
                           {"unchanged", Count(Outcome::kUnchanged)},
                           {"failed", Count(Outcome::kFailed)},
                           {"restartPending", is_restart_pending_},
                           {"attributes", list}};
    if (is_failed) return context_.Fail(Problem(), document);
    context_.Print(document);
    return kDone;
  }

  void WriteText() const {
    std::ostream& out = context_.Out();
    for (const Item& item : items_) {
      if (item.outcome == Outcome::kUnchanged) continue;
      out << NameOf(item.outcome, is_dry_) << ": ";
      if (item.error) {
        out << ToUtf8(std::string_view(item.error->what()));
      } else {
        const Change change = item.AsChange();
        out << change.target << ": '" << change.before << "' -> '" << change.after << "'";
      }
      out << '\n';
    }
    out << Count(Outcome::kChanged) << " changed, " << Count(Outcome::kUnchanged) << " unchanged, "
        << Count(Outcome::kFailed) << " failed.\n";
    if (is_dry_) out << "Nothing was written.\n";
    if (is_restart_pending_) out << "A restart is pending.\n";
  }

  Context& context_;
  const ImportOptions& options_;
  const bool is_dry_;
  Attributes attributes_;
  std::vector<Item> items_;
  bool is_restart_pending_ = false;
};

}  // namespace

ExitStatus ImportAttributes(Context& context, const ImportOptions& options,
                            const KeyGiver& obtain_key) {
  return Import(context, options).Run(obtain_key);
}

}  // namespace mira::console
