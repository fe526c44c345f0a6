#include "client/snapshot/differences.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>

#include "bytes/text.h"
#include "client/snapshot/boot_names.h"
#include "client/snapshot/snapshot.h"

namespace mira::client {
namespace {

// By which fields the elements of a list are told apart.
struct ListKey {
  const char* list;
  const char* field;
  const char* more = nullptr;  // a second field, which the text of both is made of
};
constexpr ListKey kListKeys[] = {
    {"startUp.steps", "step"},
    {"inventory.processors", "socket"},
    {"inventory.caches", "designation"},
    {"inventory.memorySlots", "bankLocator", "locator"},
    {"inventory.slots", "designation"},
    {"inventory.ports", "internalDesignator", "externalDesignator"},
    {"inventory.firmware", "name"},
    {"inventory.otherStructures", "type"},
    {"tokens.tokens", "id"},
    {"passwords.passwords", "class"},
    {"drives.drives", "handle"},
    {"tags.tags", "tag"},
    {"identifiers.identifiers", "item"},
    {"batteries.batteries", "battery"},
    {"batteries.batteries.*.charging.days", "day"},
    {"batteries.batteries.*.peakShift.days", "day"},
    {"boot.lists", "name"},
    {"boot.lists.*.options", kBootOptionKey},
    {"legacyBoot.devices", "device"},
    {"attributes.attributes", "name", "suffix"},
    {"attributes.unreadable", "attribute"},
    {"firmwareLists.messages", "number"},
    {"firmwareLists.scanCodes", "scanCode"},
    {"firmwareLists.sensors", "number"},
};

// The list that a subject mainly is: paths leave its name out.
constexpr const char* kMainLists[] = {
    "tokens.tokens",           "passwords.passwords", "drives.drives", "tags.tags",
    "identifiers.identifiers", "batteries.batteries", "boot.lists",    "attributes.attributes"};

template <typename Rows>
bool Lists(const Rows& rows, const std::string& name) {
  return std::find(std::begin(rows), std::end(rows), name) != std::end(rows);
}

// Where something stands: as people name it, and as rules do.
struct DifferencePlace {
  std::string path;
  std::string rule;

  DifferencePlace Field(const std::string& name) const {
    const std::string inner = rule + '.' + name;
    return {Lists(kMainLists, inner) ? path : path + '.' + name, inner};
  }
  // Tags and identifiers have rules of their own.
  DifferencePlace Element(const std::string& key) const {
    const bool is_named = rule == "tags.tags" || rule == "identifiers.identifiers";
    return {path + '.' + key, rule + '.' + (is_named ? key : "*")};
  }
};

using ListElements = std::vector<std::pair<std::string, const Json*>>;

std::string ElementKey(const ListKey* row, const Json& element, std::size_t place) {
  std::string key;
  if (row != nullptr) {
    for (const char* const field : {row->field, row->more}) {
      if (field == nullptr || !element.contains(field)) continue;
      const std::string text = Readable(element[field]);
      const bool is_suffix = std::string_view(field) == "suffix";
      key += (key.empty() || is_suffix || text.empty() ? "" : " ") + text;
    }
  }
  return key.empty() ? std::to_string(place + 1) : key;
}

// The second of one key is "KEY#2".
ListElements ElementsOf(const Json& list, const std::string& rule) {
  const auto* const found = std::find_if(std::begin(kListKeys), std::end(kListKeys),
                                         [&rule](const ListKey& row) { return row.list == rule; });
  const ListKey* const row = found != std::end(kListKeys) ? found : nullptr;
  std::unordered_map<std::string, std::size_t> counts;
  ListElements elements;
  for (std::size_t i = 0; i < list.size(); ++i) {
    std::string key = ElementKey(row, list[i], i);
    if (const std::size_t count = ++counts[key]; count > 1) key += '#' + std::to_string(count);
    elements.emplace_back(std::move(key), &list[i]);
  }
  return elements;
}

ListElements FieldsOf(const Json& object) {
  ListElements fields;
  for (const auto& [name, value] : object.items()) {
    if (name != kBootOptionKey) fields.emplace_back(name, &value);
  }
  return fields;
}

bool IsListOfObjects(const Json& value) {
  return value.is_array() && !value.empty() &&
         std::all_of(value.begin(), value.end(), [](const Json& v) { return v.is_object(); });
}

bool IsTextObject(const Json& value) {
  return value.is_object() && value.size() == 2 && value.contains("text") &&
         value.contains("bytes");
}

class Finder {
 public:
  std::vector<Difference> Take() { return std::move(found_); }

  void Compare(const DifferencePlace& place, const Json& before, const Json& after) {
    if (before == after) return;
    const bool are_lists = (IsListOfObjects(before) && after.is_array()) ||
                           (IsListOfObjects(after) && before.is_array());
    if (are_lists) {
      CompareParts(ElementsOf(before, place.rule), ElementsOf(after, place.rule),
                   [&place](const std::string& key) { return place.Element(key); });
    } else if (before.is_object() && after.is_object() && !IsTextObject(before)) {
      CompareParts(FieldsOf(before), FieldsOf(after),
                   [&place](const std::string& name) { return place.Field(name); });
    } else {
      const bool is_list = before.is_array() || after.is_array();
      const std::string rule = is_list ? place.rule + ".*" : place.rule;
      found_.push_back({place.path, DifferenceKind::kChanged, RuleOf(rule).meaning, before, after});
    }
  }

 private:
  template <typename PlaceOf>
  void CompareParts(const ListElements& before, const ListElements& after, PlaceOf place_of) {
    std::unordered_map<std::string, const Json*> there;
    for (const auto& [key, value] : after) there[key] = value;
    std::set<std::string> seen;
    for (const auto& [key, value] : before) {
      const DifferencePlace place = place_of(key);
      seen.insert(key);
      if (const auto match = there.find(key); match != there.end()) {
        Compare(place, *value, *match->second);
      } else {
        found_.push_back({place.path, DifferenceKind::kRemoved, MeaningOf(place, *value),
                          ShownOf(*value), nullptr});
      }
    }
    for (const auto& [key, value] : after) {
      if (seen.contains(key)) continue;
      const DifferencePlace place = place_of(key);
      found_.push_back(
          {place.path, DifferenceKind::kAdded, MeaningOf(place, *value), nullptr, ShownOf(*value)});
    }
  }

  // That of the part of it that counts most.
  static Meaning MeaningOf(const DifferencePlace& place, const Json& value) {
    if (!value.is_object() || value.empty() || IsTextObject(value)) {
      return RuleOf(place.rule).meaning;
    }
    Meaning meaning = Meaning::kMetadata;
    for (const auto& [name, part] : value.items()) {
      meaning = std::min(meaning, MeaningOf(place.Field(name), part));
    }
    return meaning;
  }

  // Of what has a value, that.
  static Json ShownOf(const Json& value) {
    if (value.is_object() && value.contains("value")) return value["value"];
    Json shown = value;
    if (shown.is_object()) shown.erase(kBootOptionKey);
    return shown;
  }

  std::vector<Difference> found_;
};

}  // namespace

const char* Name(DifferenceKind kind) {
  switch (kind) {
    case DifferenceKind::kAdded:
      return "added";
    case DifferenceKind::kRemoved:
      return "removed";
    case DifferenceKind::kChanged:
      break;
  }
  return "changed";
}

Json ToJson(const Difference& difference) {
  return {{"path", difference.path},
          {"change", Name(difference.kind)},
          {"meaning", Name(difference.meaning)},
          {"before", difference.before},
          {"after", difference.after}};
}

std::vector<Difference> FindDifferences(const std::string& subject, const Json& before,
                                        const Json& after) {
  Finder finder;
  const DifferencePlace place = {subject, subject};
  if (subject == kBootSubject) {
    const std::set<std::string> doubled = DoubledDescriptions({&before, &after});
    finder.Compare(place, WithBootNames(before, doubled), WithBootNames(after, doubled));
  } else {
    finder.Compare(place, before, after);
  }
  return finder.Take();
}

}  // namespace mira::client
