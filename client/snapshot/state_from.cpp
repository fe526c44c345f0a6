#include "client/snapshot/state_from.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "bytes/text.h"
#include "client/snapshot/boot_names.h"
#include "client/snapshot/fields.h"
#include "client/snapshot/identity_values.h"

namespace mira::client {
namespace {

const Json* ValueIn(const Snapshot& snapshot, const char* subject) {
  const Json& subjects = snapshot.Document().at("subjects");
  const auto found = subjects.find(subject);
  return found != subjects.end() && found->contains("value") ? &found->at("value") : nullptr;
}

// A number that stands in place of a name names nothing.
bool IsNamedValue(const Json& item) {
  const Json& value = item.at("value");
  if (value.is_null()) return false;
  if (item.at("type") == "integer") return true;
  if (!value.is_array()) return !value.is_number();
  return std::none_of(value.begin(), value.end(), [](const Json& v) { return v.is_number(); });
}

Json AttributeWishOf(const Json& item) {
  Json wish = item.at("value");
  if (!item.contains("bootConfigType")) return wish;
  return {{"value", std::move(wish)},
          {"bootConfigType", item.at("bootConfigType")},
          {"failThroughMode", item.at("failThroughMode")}};
}

Json AttributesOf(const Snapshot& snapshot, StateScope scope) {
  const Json& list = ValueIn(snapshot, kAttributesSubject)->at("attributes");
  const IdentityValues identity(snapshot.Document().at("subjects"));
  const auto name_of = [](const Json& item) {
    return Readable(item.at("name")) + Readable(item.at("suffix"));
  };
  std::map<std::string, std::size_t> counts;
  for (const Json& item : list) ++counts[name_of(item)];
  Json attributes = Json::object();
  for (const Json& item : list) {
    const std::string name = name_of(item);
    if (name.empty() || counts[name] > 1 || !IsNamedValue(item)) continue;
    const bool is_setting = !item.at("readOnly").get<bool>() &&
                            !(item["type"] == "string" && identity.Has(item["value"]));
    if (is_setting || scope == StateScope::kAll) attributes[name] = AttributeWishOf(item);
  }
  return attributes;
}

// The list's order by descriptions; null where two options cannot be told apart.
Json OrderOf(const Json& list, const std::set<std::string>& doubled) {
  Json order = Json::array();
  std::set<std::string> seen;
  for (const Json& number : list.at("order")) {
    const auto option = std::find_if(list.at("options").begin(), list.at("options").end(),
                                     [&number](const Json& o) { return o.at("number") == number; });
    if (option == list["options"].end()) continue;
    const Json& description = option->at("description");
    const Json& path = option->at("path");
    Json entry = description;
    if (doubled.contains(Readable(description))) {
      if (path.is_null()) return nullptr;
      entry = {{"value", description}, {"path", path}};
    }
    if (!seen.insert(entry.dump()).second) return nullptr;
    order.push_back(std::move(entry));
  }
  return order;
}

Json BootOf(const Snapshot& snapshot) {
  const Json& value = *ValueIn(snapshot, kBootSubject);
  const std::set<std::string> doubled = DoubledDescriptions({&value});
  Json boot = Json::object();
  for (const Json& list : value.at("lists")) {
    if (!list.contains("options")) continue;
    Json order = OrderOf(list, doubled);
    if (order.is_null() || order.empty()) continue;
    const std::string name = Readable(list.at("name"));
    const bool is_plain = !name.empty() && !boot.contains(name);
    boot[is_plain ? name : list.at("list").dump()] = {{"first", std::move(order)}};
  }
  return boot;
}

Json TagsOf(const Snapshot& snapshot, StateScope scope) {
  Json tags = Json::object();
  for (const Json& tag : ValueIn(snapshot, kTagsSubject)->at("tags")) {
    if (tag.at("value").is_null()) continue;
    const std::string name = tag.at("tag");
    const Meaning meaning = RuleOf("tags.tags." + name + ".value").meaning;
    if (meaning != Meaning::kSetting && scope == StateScope::kSettings) continue;
    if (tag.contains("command")) {
      tags[name][tag["command"].dump()] = tag["value"];
    } else {
      tags[name] = tag["value"];
    }
  }
  return tags;
}

Json BatteriesOf(const Snapshot& snapshot) {
  Json batteries = Json::array();
  for (const Json& kept : ValueIn(snapshot, kBatteriesSubject)->at("batteries")) {
    Json battery = {{"battery", kept.at("battery")}};
    if (const Json& charging = kept.at("charging"); !charging.is_null()) {
      Json& wish = battery["charging"] = {{"mode", charging.at("mode")},
                                          {"modeCode", charging.at("modeCode")}};
      // Limits count in this mode alone.
      if (charging["mode"] == "custom") {
        for (const char* const limit : {"startLimitPercent", "stopLimitPercent"}) {
          wish[limit] = charging.at(limit);
        }
      }
      wish["days"] = charging.at("days");
    }
    if (const Json& peak = kept.at("peakShift"); !peak.is_null()) {
      battery["peakShift"] = {{"enabled", peak.at("enabled")},
                              {"thresholdPercent", peak.at("thresholdPercent")},
                              {"days", peak.at("days")}};
    }
    if (battery.size() > 1) batteries.push_back(std::move(battery));
  }
  return batteries;
}

// By its type, where one device alone has it; else by its place.
Json LegacyBootOf(const Snapshot& snapshot) {
  const Json& value = *ValueIn(snapshot, kLegacyBootSubject);
  const Json& devices = value.at("devices");
  Json legacy = Json::object();
  const std::pair<const char*, const char*> orders[] = {{"ipl", "iplPriority"},
                                                        {"bcv", "bcvPriority"}};
  for (const auto& [name, field] : orders) {
    Json order = Json::array();
    for (const Json& place : value.at(field)) {
      const auto i = place.get<std::size_t>();
      const Json type = i < devices.size() ? devices[i].at("typeName") : Json();
      const auto count = std::count_if(devices.begin(), devices.end(), [&type](const Json& device) {
        return device.at("typeName") == type;
      });
      order.push_back(count == 1 ? type : Json(std::to_string(i)));
    }
    if (!order.empty()) legacy[name] = std::move(order);
  }
  return legacy;
}

}  // namespace

Json StateFrom(const Snapshot& snapshot, StateScope scope) {
  if (snapshot.IsRedacted()) {
    throw Error(kInvalidValue, "redacted-snapshot",
                "A redacted snapshot no longer has the values that a state is made of.");
  }
  Json state = {{"schemaVersion", 1},
                {"kind", "state"},
                {"description", "From a snapshot of " + snapshot.TakenAt()}};
  const auto add = [&](const char* subject, const char* field, auto part) {
    if (ValueIn(snapshot, subject) == nullptr) return;
    Json value = part();
    if (!value.empty()) state[field] = std::move(value);
  };
  add(kAttributesSubject, "attributes", [&] { return AttributesOf(snapshot, scope); });
  add(kBootSubject, "boot", [&] { return BootOf(snapshot); });
  add(kTagsSubject, "tags", [&] { return TagsOf(snapshot, scope); });
  add(kBatteriesSubject, "batteries", [&] { return BatteriesOf(snapshot); });
  add(kLegacyBootSubject, "legacyBoot", [&] { return LegacyBootOf(snapshot); });
  return state;
}

}  // namespace mira::client
