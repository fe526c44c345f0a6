#include <algorithm>

#include "client/report/view.h"

namespace mira::client {
namespace {

// The browser leaves out blocks that are not in sight: many small ones are quick, single entries
// would be too many.
constexpr std::size_t kItemsInBlock = 40;

std::string QuotedOr(const Json& value, const char* otherwise) {
  const std::string text = Plain(value);
  return text.empty() ? otherwise : text;
}

std::string RangeOf(const Json& item, const char* lower, const char* upper) {
  return PlainAt(item, lower) + " to " + PlainAt(item, upper);
}

std::string ChoicesOf(const Json& list) {
  std::vector<std::string> texts;
  for (const Json& choice : list) texts.push_back(Plain(choice));
  return Joined(texts, " | ");
}

std::string LimitsOf(const Json& item) {
  for (const char* const name : {"possibleValues", "members"}) {
    if (const Json& list = ListAt(item, name); !list.empty()) return ChoicesOf(list);
  }
  if (const Json& sources = ListAt(item, "possibleSources"); !sources.empty()) {
    return RangeOf(item, "minSources", "maxSources") + " of " + ChoicesOf(sources);
  }
  if (!At(item, "maxLength").is_null()) {
    return RangeOf(item, "minLength", "maxLength") + " characters";
  }
  if (At(item, "upperBound").is_null()) return "";
  const std::string step = PlainAt(item, "increment");
  return RangeOf(item, "lowerBound", "upperBound") +
         (step.empty() || step == "0" || step == "1" ? "" : ", in steps of " + step);
}

Json ItemView(const Json& item) {
  const std::string name = PlainAt(item, "name") + PlainAt(item, "suffix");
  const std::string display = PlainAt(item, "displayName");
  const Json& value = At(item, "value");
  const Json& normal = At(item, "default");
  const Json& at_boot = At(item, "atBoot");
  const bool is_secret = At(item, "type") == "password";
  const bool is_pending = IsTrueAt(item, "restartPending");
  const bool is_changed = !is_secret && !normal.is_null() && value != normal;
  Json view = {{"title", !display.empty() ? display
                         : !name.empty()  ? name
                                          : "handle " + PlainAt(item, "handle")},
               {"name", display.empty() ? "" : name},
               {"type", PlainAt(item, "type")},
               {"isReadOnly", IsTrueAt(item, "readOnly")},
               {"isChanged", is_changed},
               {"isPending", is_pending},
               {"limits", LimitsOf(item)},
               {"help", PlainAt(item, "help")},
               {"problem", PlainAt(At(item, "atBootProblem"), "message")}};
  if (is_changed) view["default"] = QuotedOr(normal, "(empty)");
  if (is_pending) view["atBoot"] = QuotedOr(at_boot, "(empty)");
  if (is_secret) {
    view["note"] = "never shown";
  } else if (value.is_array() && !value.empty()) {
    view["values"] = Json::array();
    for (const Json& entry : value) view["values"].push_back(Plain(entry));
    view["isOrder"] = At(item, "type") == "boot-config";
  } else if (Plain(value).empty()) {
    view["note"] = "empty";
  } else {
    view["value"] = Plain(value);
  }
  return view;
}

struct AttributeGroup {
  std::string title;
  std::size_t count = 0;
  Json blocks = Json::array();
};

void AddToGroup(std::vector<AttributeGroup>& groups, const std::string& title, Json item) {
  auto group = std::find_if(groups.begin(), groups.end(),
                            [&](const AttributeGroup& g) { return g.title == title; });
  if (group == groups.end()) group = groups.insert(groups.end(), {title});
  if (group->count++ % kItemsInBlock == 0) group->blocks.push_back({{"items", Json::array()}});
  Json& block = group->blocks.back();
  block["items"].push_back(std::move(item));
  block["isFull"] = block["items"].size() == kItemsInBlock;
}

}  // namespace

Json AttributesView(const Json& attributes) {
  const Json& list = ListAt(attributes, "attributes");
  std::vector<AttributeGroup> groups;
  std::size_t changed = 0;
  std::size_t pending = 0;
  for (const Json& attribute : list) {
    Json item = ItemView(attribute);
    changed += IsTrueAt(item, "isChanged") ? 1U : 0U;
    pending += IsTrueAt(item, "isPending") ? 1U : 0U;
    AddToGroup(groups, TopicOf(PlainAt(attribute, "name")), std::move(item));
  }
  std::stable_sort(groups.begin(), groups.end(),
                   [](const AttributeGroup& a, const AttributeGroup& b) {
                     return PlaceOfTopic(a.title) < PlaceOfTopic(b.title);
                   });
  Json shown = Json::array();
  for (AttributeGroup& group : groups) {
    shown.push_back({{"title", std::move(group.title)},
                     {"count", group.count},
                     {"blocks", std::move(group.blocks)}});
  }
  Json unread = Json::array();
  for (const Json& error : ListAt(attributes, "unreadable")) {
    unread.push_back(PlainAt(error, "message"));
  }
  if (shown.empty() && unread.empty()) return nullptr;
  return {{"groups", std::move(shown)},
          {"unread", std::move(unread)},
          {"count", list.size()},
          {"changed", changed},
          {"pending", pending},
          {"summary", Counted(list.size(), "attribute") + ", " + std::to_string(changed) +
                          " changed from the default, " + std::to_string(pending) +
                          " waiting for a restart"}};
}

}  // namespace mira::client
