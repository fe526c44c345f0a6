#include "client/snapshot/state_differences.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "bytes/text.h"
#include "client/battery.h"
#include "client/snapshot/snapshot.h"
#include "client/snapshot/state_from.h"

namespace mira::client {
namespace {

constexpr const char* kStateParts[] = {"attributes", "boot",       "tags",
                                       "batteries",  "legacyBoot", "groups"};

Error BadState(const std::string& what) {
  return Error(kInvalidValue, "malformed-state", "The desired state is malformed: " + what, what);
}

// An entry's value; nothing for one under a condition, and for a secret.
std::optional<Json> WishedValue(const Json& entry) {
  if (!entry.is_object() || (entry.contains("text") && entry.contains("bytes"))) return entry;
  if (entry.contains("when") || !entry.contains("value")) return std::nullopt;
  return entry["value"];
}

std::string LowerText(std::string text) {
  for (char& c : text) c = bytes::Lower(c);
  return text;
}

// Whether a name fits a pattern of "*" and "?", in any case of letters.
bool FitsName(std::string_view pattern, std::string_view name) {
  if (pattern.empty()) return name.empty();
  if (pattern[0] == '*') {
    return FitsName(pattern.substr(1), name) ||
           (!name.empty() && FitsName(pattern, name.substr(1)));
  }
  if (name.empty()) return false;
  const bool fits = pattern[0] == '?' || bytes::Lower(pattern[0]) == bytes::Lower(name[0]);
  return fits && FitsName(pattern.substr(1), name.substr(1));
}

// What a side has, by path; of a state, what it wants.
struct StateValues {
  bool is_state = false;
  std::map<std::string, Json> attributes;  // by name as it stands; of a state also patterns
  std::map<std::string, Json> others;      // by path
};

void AddBatteries(const Json& list, StateValues& values) {
  Json batteries = Json::array();
  for (Json battery : list) {
    if (!battery.is_object() || battery.contains("when")) continue;
    battery.erase("optional");
    batteries.push_back(std::move(battery));
  }
  if (batteries.empty()) return;
  for (const NumberedEdit& battery : BatteryEditsFromJson({{"batteries", std::move(batteries)}})) {
    const std::string path = "batteries." + std::to_string(battery.number) + '.';
    const auto add = [&](const char* name, auto value) {
      if (value) values.others[path + name] = *value;
    };
    const BatteryEdit& edit = battery.edit;
    add("mode", edit.mode ? std::optional(BatteryModeName(*edit.mode)) : std::nullopt);
    add("startLimitPercent", edit.start_limit);
    add("stopLimitPercent", edit.stop_limit);
    add("peakShift", edit.peak_shift);
    add("peakThresholdPercent", edit.peak_threshold);
    for (const auto& [day, word] : edit.days.words) {
      values.others[path + "days." + DayJson(day, word).at("day").get<std::string>()] =
          DayJson(day, word).at("text");
    }
    for (const auto& [day, word] : edit.peak_days.words) {
      values.others[path + "peakDays." + DayJson(day, word).at("day").get<std::string>()] =
          DayJson(day, word).at("text");
    }
  }
}

void AddTags(const Json& tags, StateValues& values) {
  for (const auto& [name, entry] : tags.items()) {
    if (name == "extended" && entry.is_object()) {
      for (const auto& [command, inner] : entry.items()) {
        if (auto value = WishedValue(inner)) values.others["tags.extended." + command] = *value;
      }
    } else if (auto value = WishedValue(entry)) {
      values.others["tags." + name] = *value;
    }
  }
}

// The names of an order, doubled ones with their paths.
Json BootOrderNames(const Json& order) {
  Json names = Json::array();
  for (const Json& entry : order) {
    const auto value = WishedValue(entry);
    if (!value) continue;
    const bool has_path = entry.is_object() && entry.contains("path");
    names.push_back(Readable(*value) + (has_path ? " (" + Readable(entry["path"]) + ")" : ""));
  }
  return names;
}

void AddBoot(const Json& boot, StateValues& values) {
  for (const auto& [name, list] : boot.items()) {
    if (!list.is_object() || list.contains("when")) continue;
    for (const char* const key : {"first", "order"}) {
      if (list.contains(key)) values.others["boot." + name] = BootOrderNames(list[key]);
    }
  }
}

StateValues ValuesOf(const Json& side) {
  StateValues values;
  values.is_state = !Snapshot::IsOne(side);
  const Json state = values.is_state ? side : StateFrom(Snapshot(side), StateScope::kAll);
  if (values.is_state && state.contains("when")) return values;
  const auto part = [&state](const char* name) {
    if (!state.contains(name)) return Json();
    if (!state[name].is_structured()) throw BadState(name);
    return state[name];
  };
  const Json attributes = part("attributes");
  for (const auto& [name, entry] : attributes.items()) {
    if (auto value = WishedValue(entry)) values.attributes[name] = *value;
  }
  AddBoot(part("boot"), values);
  AddTags(part("tags"), values);
  AddBatteries(part("batteries"), values);
  const Json legacy = part("legacyBoot");
  for (const auto& [name, order] : legacy.items()) {
    if (order.is_array() && !legacy.contains("when")) values.others["legacyBoot." + name] = order;
  }
  return values;
}

// Numbers and their texts are one value, and so is a choice with its suffix and without.
bool IsSameValue(const Json& a, const Json& b) {
  const std::string one = Readable(a);
  const std::string other = Readable(b);
  return one == other || one.starts_with(other + "[") || other.starts_with(one + "[");
}

// Of an order that wants some in front, the other's names as far.
bool IsSameOrder(const Json& wanted, const Json& there) {
  if (!wanted.is_array() || !there.is_array() || wanted.size() > there.size()) return false;
  return std::equal(wanted.begin(), wanted.end(), there.begin(), [](const Json& w, const Json& t) {
    const std::string name = Readable(t);
    return FitsName(Readable(w), name) || name.starts_with(Readable(w) + " (");
  });
}

bool IsSame(const std::string& path, const Json& a, const Json& b) {
  if (!path.starts_with("boot.")) return IsSameValue(a, b);
  return IsSameOrder(a, b) || IsSameOrder(b, a);
}

const Json* FindAttribute(const StateValues& values, const std::string& name) {
  const auto exact = values.attributes.find(name);
  if (exact != values.attributes.end()) return &exact->second;
  const std::string wanted = LowerText(name);
  const Json* found = nullptr;
  for (const auto& [other, value] : values.attributes) {
    const std::string whole = LowerText(other);
    if (whole == wanted) return &value;
    if (whole.starts_with(wanted + "[")) found = &value;
  }
  return found;
}

// The names of attributes that a state means: a name that is one, and those that a pattern fits and
// nothing names.
std::map<std::string, Json> MeantAttributes(const StateValues& state, const StateValues& other) {
  std::map<std::string, Json> meant;
  for (const auto& [name, value] : state.attributes) {
    const bool is_pattern = name.find_first_of("*?") != std::string::npos;
    if (!is_pattern || FindAttribute(other, name) != nullptr) {
      meant[name] = value;
      continue;
    }
    for (const auto& [there, unused] : other.attributes) {
      static_cast<void>(unused);
      if (FitsName(name, there) && FindAttribute(state, there) == nullptr) meant[there] = value;
    }
  }
  return meant;
}

class StateComparison {
 public:
  StateComparison(StateValues a, StateValues b) : a_(std::move(a)), b_(std::move(b)) {}

  std::vector<Difference> Run() {
    std::map<std::string, Json> attributes_a = a_.attributes;
    std::map<std::string, Json> attributes_b = b_.attributes;
    if (a_.is_state) attributes_a = MeantAttributes(a_, b_);
    if (b_.is_state) attributes_b = MeantAttributes(b_, a_);
    if (a_.is_state) {
      for (const auto& [name, value] : attributes_a)
        Add("attributes." + name, &value, FindAttribute(b_, name));
    }
    if (b_.is_state) {
      for (const auto& [name, value] : attributes_b)
        Add("attributes." + name, FindAttribute(a_, name), &value);
    }
    AddOthers(a_);
    AddOthers(b_);
    return std::move(found_);
  }

 private:
  void AddOthers(const StateValues& side) {
    if (!side.is_state) return;
    const auto of = [](const StateValues& values, const std::string& path) {
      const auto found = values.others.find(path);
      return found != values.others.end() ? &found->second : nullptr;
    };
    for (const auto& entry : side.others)
      Add(entry.first, of(a_, entry.first), of(b_, entry.first));
  }

  void Add(const std::string& path, const Json* before, const Json* after) {
    if (before != nullptr && after != nullptr && IsSame(path, *before, *after)) return;
    if (!seen_.insert(path).second) return;
    const DifferenceKind kind = before == nullptr  ? DifferenceKind::kAdded
                                : after == nullptr ? DifferenceKind::kRemoved
                                                   : DifferenceKind::kChanged;
    found_.push_back({path, kind, Meaning::kSetting, before != nullptr ? *before : Json(),
                      after != nullptr ? *after : Json()});
  }

  StateValues a_;
  StateValues b_;
  std::vector<Difference> found_;
  std::set<std::string> seen_;
};

}  // namespace

bool IsState(const Json& document) {
  if (!document.is_object()) return false;
  if (document.contains("kind")) return document["kind"] == "state";
  return std::any_of(std::begin(kStateParts), std::end(kStateParts),
                     [&document](const char* part) { return document.contains(part); });
}

std::vector<Difference> StateDifferences(const Json& a, const Json& b) {
  return StateComparison(ValuesOf(a), ValuesOf(b)).Run();
}

}  // namespace mira::client
