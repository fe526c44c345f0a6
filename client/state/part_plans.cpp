#include "client/state/part_plans.h"

#include <algorithm>
#include <set>
#include <utility>

#include "bytes/text.h"
#include "bytes/utf16.h"
#include "client/battery.h"
#include "client/boot.h"
#include "client/legacy_boot.h"
#include "client/state/pattern.h"
#include "client/tag.h"

namespace mira::client {
namespace {

// An option of a list as a state names it.
struct WantedOption {
  std::string text;
  std::string path;  // empty: any
  bool optional = false;
};

WantedOption ReadWantedOption(const Json& option) {
  if (!option.is_object() || option.contains("bytes")) return {Readable(option), "", false};
  return {Readable(option.at("value")), Readable(option.value("path", Json())),
          option.value("optional", false)};
}

std::string DescriptionOf(const BootOption& option) { return bytes::Utf8(option.description); }

// By whole descriptions, or where there is none such, by a pattern.
std::vector<const BootOption*> FittingOptions(const BootOptions& present,
                                              const WantedOption& wanted) {
  std::vector<const BootOption*> found;
  for (const bool by_pattern : {false, true}) {
    for (const BootOption& option : present.options) {
      const std::string description = DescriptionOf(option);
      const bool fits = by_pattern ? FitsPattern(wanted.text, description, LetterCase::kIgnored)
                                   : bytes::SameText(wanted.text, description);
      const bool is_there = wanted.path.empty() ||
                            (!option.paths.empty() && option.paths.front().text == wanted.path);
      if (fits && is_there) found.push_back(&option);
    }
    if (!found.empty()) break;
  }
  return found;
}

// The number of the option that is meant; nothing where an optional one is missing.
std::optional<std::uint16_t> FindWanted(const BootOptions& present, const WantedOption& wanted) {
  const auto found = FittingOptions(present, wanted);
  if (found.size() == 1) return found.front()->number;
  if (found.empty()) {
    if (wanted.optional) return std::nullopt;
    throw Error(kNotFound, "no-option", "The list has no option '" + wanted.text + "'.",
                wanted.text)
        .With("unknown", Json::array({wanted.text}));
  }
  Json list = Json::array();
  std::string names;
  for (const BootOption* const option : found) {
    const std::string path = option->paths.empty() ? "" : option->paths.front().text;
    names +=
        (names.empty() ? "" : "; ") + DescriptionOf(*option) + (path.empty() ? "" : ", ") + path;
    list.push_back({{"description", WideTextJson(option->description)}, {"path", path}});
  }
  throw Error(kInvalidValue, "ambiguous-option",
              "'" + wanted.text + "' fits several options: " + names + ".", wanted.text)
      .With("options", std::move(list));
}

std::string ListTarget(const BootList& list) {
  return "boot order of list " + std::to_string(list.number) + " (" + bytes::Utf8(list.name) + ")";
}

// What is so already needs no order that the firmware would take.
Plan UnchangedOrder(const BootOptions& present) {
  const BootList list = present.list;
  Plan plan;
  plan.steps.push_back(
      {.changes = {{.target = ListTarget(list), .before = present.order, .after = present.order}},
       .read = [list](Session& s) { return std::vector<Json>{ReadBootOptions(s, list).order}; }});
  return plan;
}

Plan PlanBootList(Session& session, const StateItem& item) {
  const BootOptions present =
      ReadBootOptions(session, FindBootList(ReadBootLists(session), item.name));
  const bool is_whole = item.body.contains("order");
  std::vector<std::uint16_t> order;
  for (const Json& option : item.body.at(is_whole ? "order" : "first")) {
    const WantedOption wanted = ReadWantedOption(option);
    const auto number = FindWanted(present, wanted);
    if (!number) continue;
    if (std::find(order.begin(), order.end(), *number) != order.end()) {
      throw Error(kInvalidValue, "given-twice", "'" + wanted.text + "' stands in the order twice.",
                  wanted.text);
    }
    order.push_back(*number);
  }
  const bool is_so = order.size() <= present.order.size() &&
                     std::equal(order.begin(), order.end(), present.order.begin());
  if (!is_whole && is_so) return UnchangedOrder(present);
  if (!is_whole) {
    for (const BootOption& option : present.options) {
      const bool is_there = std::find(order.begin(), order.end(), *option.number) != order.end();
      if (!is_there) order.push_back(*option.number);
    }
  }
  std::vector<std::string> numbers;
  for (const std::uint16_t number : order) numbers.push_back(std::to_string(number));
  return PlanBootOrder(session, bytes::Utf8(present.list.name), numbers);
}

Plan PlanTagItem(Session& session, const StateItem& item) {
  const auto command = item.body.find("command");
  const std::uint64_t number =
      command != item.body.end() ? ToNumber(*command).value_or(0) : std::uint64_t{0};
  const std::string text = BytesOfText(item.body.at("value")).value_or("");
  Plan plan = PlanTag(session, item.name, text, static_cast<std::uint32_t>(number));
  Change& change = plan.steps.front().changes.front();
  if (command != item.body.end()) {
    change.target += " " + std::to_string(number);
    change.details["command"] = number;
  }
  if (plan.subject.value("cut", false)) change.details["wanted"] = TextJson(text);
  return plan;
}

Plan PlanBatteryItem(Session& session, const StateItem& item) {
  const auto edits = BatteryEditsFromJson({{"batteries", Json::array({item.body})}});
  Plan plan;
  for (const NumberedEdit& edit : edits) {
    PlanBattery(session, edit.number, edit.edit, true, plan);
  }
  return plan;
}

std::vector<std::string> TextsOf(const Json& body, const char* key) {
  std::vector<std::string> texts;
  for (const Json& text : body.value(key, Json::array())) texts.push_back(Readable(text));
  return texts;
}

Plan PlanLegacyItem(Session& session, const StateItem& item) {
  return PlanLegacyBoot(session, TextsOf(item.body, "ipl"), TextsOf(item.body, "bcv"));
}

}  // namespace

std::string TargetOf(const StateItem& item) {
  switch (item.subject) {
    case StateSubject::kBoot:
      return "boot order of list " + item.name;
    case StateSubject::kTags: {
      const auto command = item.body.find("command");
      return item.name + " tag" + (command != item.body.end() ? " " + Readable(*command) : "");
    }
    case StateSubject::kBatteries:
      return item.name.empty() ? "batteries" : "battery " + item.name;
    case StateSubject::kLegacyBoot:
      return "legacy boot priorities";
    case StateSubject::kAttributes:
      break;
  }
  return item.name;
}

Plan PlanPart(Session& session, const StateItem& item) {
  switch (item.subject) {
    case StateSubject::kBoot:
      return PlanBootList(session, item);
    case StateSubject::kTags:
      return PlanTagItem(session, item);
    case StateSubject::kBatteries:
      return PlanBatteryItem(session, item);
    case StateSubject::kLegacyBoot:
      return PlanLegacyItem(session, item);
    case StateSubject::kAttributes:
      break;
  }
  return {};
}

}  // namespace mira::client
