#include "client/state/condition.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include "bytes/text.h"
#include "client/error.h"
#include "client/inventory_json.h"
#include "client/state/pattern.h"
#include "smbios/table.h"

namespace mira::client {
namespace {

constexpr std::string_view kInventoryParts[] = {
    "smbiosVersion", "complete", "system",       "bios",        "boards",         "chassis",
    "processors",    "caches",   "memoryArrays", "memorySlots", "slots",          "ports",
    "batteries",     "tpms",     "firmware",     "oemStrings",  "otherStructures"};
constexpr std::string_view kPrefix = "inventory.";
constexpr std::string_view kShortProduct = "system.product";
constexpr std::string_view kProduct = "system.productName";

// What a comparison asks of -1, 0 or 1.
struct Comparison {
  std::string_view name;
  bool (*holds)(int order);
};
constexpr Comparison kComparisons[] = {
    {"atLeast", [](int order) { return order >= 0; }},
    {"atMost", [](int order) { return order <= 0; }},
    {"below", [](int order) { return order < 0; }},
};

const Comparison* FindComparison(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kComparisons), std::end(kComparisons),
                                         [name](const Comparison& c) { return c.name == name; });
  return found != std::end(kComparisons) ? found : nullptr;
}

std::string_view FactPath(std::string_view fact) {
  if (fact.starts_with(kPrefix)) fact.remove_prefix(kPrefix.size());
  return fact == kShortProduct ? kProduct : fact;
}

bool IsScalar(const Json& value) { return value.is_primitive() && !value.is_null(); }

Error BadCondition(const std::string& path, const std::string& message) {
  return Error(kInvalidValue, "bad-condition", path + " " + message, path);
}

// A number may be another one than was typed: 1.10 is read as 1.1, and 010 as 8.
void RefuseNumber(const Json& wanted, const std::string& path) {
  if (!wanted.is_number()) return;
  throw Error(kInvalidValue, "quote-it",
              path + ": '" + wanted.dump() +
                  "' is not a text. Quote it: YAML reads 1.10 as 1.1 and 010 as 8.",
              path);
}

void CheckCondition(const Json& wanted, const std::string& path) {
  RefuseNumber(wanted, path);
  if (wanted.is_array()) {
    for (const Json& one : wanted) RefuseNumber(one, path);
  }
  if (IsScalar(wanted)) return;
  if (wanted.is_array() && !wanted.empty() && std::all_of(wanted.begin(), wanted.end(), IsScalar)) {
    return;
  }
  if (!wanted.is_object() || wanted.empty()) {
    throw BadCondition(path, "is none of a value, a list of values, and versions.");
  }
  for (const auto& [name, version] : wanted.items()) {
    if (FindComparison(name) == nullptr) {
      throw Error(kInvalidValue, "unknown-key",
                  path + "/" + name +
                      " is not known; versions are compared by atLeast, atMost and "
                      "below.",
                  path + "/" + name)
          .With("unknown", Json::array({name}));
    }
    // A number would be another version than the one that was typed: 1.10 is read as 1.1.
    if (!version.is_string()) throw BadCondition(path + "/" + name, "is not a text: quote it.");
    if (!CompareVersions(version.get_ref<const std::string&>(), "0")) {
      throw BadCondition(path + "/" + name, "is not a version like 1.12.0.");
    }
  }
}

// All values that a path leads to; where it meets a list, those of every element.
void Collect(const Json& from, std::string_view path, std::vector<Json>& values) {
  if (path.empty() && from.is_object() && from.contains("text")) {
    values.emplace_back(Readable(from));
    return;
  }
  if (path.empty() && !from.is_structured()) {
    values.push_back(from);
    return;
  }
  const std::size_t dot = std::min(path.find('.'), path.size());
  const std::string_view name = path.substr(0, dot);
  const std::string_view rest = path.substr(std::min(dot + 1, path.size()));
  if (from.is_array()) {
    if (const auto index = bytes::ParseDigits(name, 10)) {
      if (*index < from.size()) Collect(from[static_cast<std::size_t>(*index)], rest, values);
      return;
    }
    for (const Json& element : from) Collect(element, path, values);
    return;
  }
  if (!from.is_object()) return;
  const auto found = from.find(std::string(name));
  if (found != from.end()) Collect(*found, rest, values);
}

bool IsEqual(const Json& wanted, const Json& actual) {
  if (!wanted.is_string()) return wanted == actual;
  const std::string& text = wanted.get_ref<const std::string&>();
  return FitsPattern(text, Readable(actual)) || text == Readable(actual);
}

bool IsMet(const Json& wanted, const Json& actual, const std::string& fact) {
  if (wanted.is_array()) {
    return std::any_of(wanted.begin(), wanted.end(),
                       [&actual](const Json& one) { return IsEqual(one, actual); });
  }
  if (!wanted.is_object()) return IsEqual(wanted, actual);
  for (const auto& [name, version] : wanted.items()) {
    const auto order = CompareVersions(Readable(actual), version.get_ref<const std::string&>());
    if (!order) {
      throw Error(kInvalidValue, "no-version",
                  fact + " is '" + Readable(actual) + "' here, which is not a version like 1.12.0.",
                  fact);
    }
    if (!FindComparison(name)->holds(*order)) return false;
  }
  return true;
}

}  // namespace

void CheckConditions(const Json& when, const std::string& path) {
  if (!when.is_object()) throw BadCondition(path, "is not an object of conditions.");
  for (const auto& [fact, wanted] : when.items()) {
    const std::string_view plain = FactPath(fact);
    const std::string_view part = plain.substr(0, plain.find('.'));
    if (std::find(std::begin(kInventoryParts), std::end(kInventoryParts), part) ==
        std::end(kInventoryParts)) {
      throw Error(kInvalidValue, "unknown-key",
                  path + "/" + fact + " is no part of a machine's inventory.", path + "/" + fact)
          .With("unknown", Json::array({fact}));
    }
    CheckCondition(wanted, path + "/" + fact);
  }
}

const Json& Facts::Inventory() {
  if (!inventory_) inventory_ = ToJson(ReadInventory(smbios::ReadFirmwareTable()));
  return *inventory_;
}

std::optional<Json> Facts::FirstUnmet(const Json& when) {
  // A version is compared last: other conditions say of which make it is.
  for (const bool is_version : {false, true}) {
    for (const auto& [fact, wanted] : when.items()) {
      if (wanted.is_object() != is_version) continue;
      std::vector<Json> values;
      Collect(Inventory(), FactPath(fact), values);
      const auto is_met = [&fact = fact, &wanted = wanted](const Json& value) {
        return IsMet(wanted, value, fact);
      };
      if (std::any_of(values.begin(), values.end(), is_met)) continue;
      Json actual = values.size() == 1 ? values.front() : Json(values);
      return Json{{"fact", fact}, {"wanted", wanted}, {"actual", std::move(actual)}};
    }
  }
  return std::nullopt;
}

}  // namespace mira::client
