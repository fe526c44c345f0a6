#include "client/state/state_plan.h"

#include <algorithm>
#include <set>
#include <utility>

#include "client/state/attribute_wish.h"
#include "client/state/part_plans.h"
#include "client/state/pattern.h"

namespace mira::client {
namespace {

bool IsPlainNumber(const std::string& text) { return ToNumber(Json(text)).has_value(); }

Error Conflict(const StateItem& item, const StateItem& other, const std::string& target) {
  return Error(kInvalidValue, "conflict",
               target + ": " + item.path + " and " + other.path + " want different values.", target)
      .With("entries", Json::array({item.path, other.path}));
}

// What makes two entries want the same thing.
std::pair<StateSubject, std::string> ThingOf(const StateItem& item) {
  const auto command = item.body.find("command");
  return {item.subject, item.name + (command != item.body.end() ? "/" + Readable(*command) : "")};
}

}  // namespace

bool IsReadOnlyError(const Error& error) {
  return error.name == "read-only" || error.name == "attribute-read-only";
}

const Error* StateEntry::Problem() const {
  for (const Change& change : step.changes) {
    if (change.problem) return &*change.problem;
  }
  return nullptr;
}

bool StatePlanner::Skips(const Json& when, const std::string& path) {
  if (when.empty()) return false;
  auto unmet = facts_.FirstUnmet(when);
  if (!unmet) return false;
  plan_.skipped.push_back(
      {{"entry", path}, {"reason", "condition"}, {"condition", std::move(*unmet)}});
  return true;
}

void StatePlanner::SkipMissing(const StateItem& item) {
  plan_.skipped.push_back({{"entry", item.path}, {"reason", "not-there"}});
}

void StatePlanner::AddImpossible(const StateItem& item, const std::string& target,
                                 const Error& error) {
  StateEntry entry{.subject = item.subject, .path = item.path, .step = {}};
  entry.step.changes.push_back({.target = target, .before = nullptr, .after = nullptr});
  entry.step.changes.back().problem = error;
  plan_.entries.push_back(std::move(entry));
}

template <typename Make>
StateEntry* StatePlanner::Add(const StateItem& item, const std::string& target, bool needs_key,
                              Make make) {
  try {
    for (Step& step : make()) {
      plan_.entries.push_back({.subject = item.subject,
                               .path = item.path,
                               .step = std::move(step),
                               .needs_key = needs_key});
    }
  } catch (const Error& error) {
    const bool is_missing = error.status == kNotFound || error.status == kNotSupported;
    if (item.optional && is_missing) {
      SkipMissing(item);
      return nullptr;
    }
    AddImpossible(item, target, error);
  }
  return &plan_.entries.back();
}

StatePlan StatePlanner::Plan(const DesiredState& state) {
  std::vector<const StateItem*> attributes;
  std::vector<const StateItem*> items;
  std::map<std::pair<StateSubject, std::string>, const StateItem*> others;
  for (const StatePart& part : state.parts) {
    if (Skips(part.when, part.path)) {
      // The document's own conditions count for its groups, too.
      if (part.path.empty()) return std::move(plan_);
      continue;
    }
    for (const StateItem& item : part.items) {
      if (Skips(item.when, item.path)) continue;
      if (item.subject == StateSubject::kAttributes) attributes.push_back(&item);
      items.push_back(&item);
    }
  }
  if (!attributes.empty()) PlanAttributes(attributes);
  for (const StateItem* const item : items) {
    if (item->subject == StateSubject::kAttributes) continue;
    const auto [first, is_new] = others.try_emplace(ThingOf(*item), item);
    if (is_new) {
      PlanOther(*item);
    } else if (first->second->body != item->body) {
      AddImpossible(*item, item->name, Conflict(*item, *first->second, item->path));
    }
  }
  return std::move(plan_);
}

std::optional<StatePlanner::Wish> StatePlanner::FindAttributes(const StateItem& item) {
  Attributes& attributes = writer_->All();
  Wish wish{&item, {}, true};
  try {
    const AttributeEntry& entry = attributes.Find(item.name);
    // A handle is another on every machine.
    if (!IsPlainNumber(item.name) || entry.name == item.name) {
      wish.matches = {&entry};
      return wish;
    }
  } catch (const Error& error) {
    if (error.status != kNotFound || error.name == "ambiguous-name") {
      AddImpossible(item, item.name, error);
      return std::nullopt;
    }
    if (!IsPattern(item.name)) {
      if (item.optional) {
        SkipMissing(item);
      } else {
        AddImpossible(item, item.name, error);
      }
      return std::nullopt;
    }
  }
  wish.is_name = false;
  for (const AttributeEntry& entry : attributes.All()) {
    if (!entry.IsPassword() && FitsPattern(item.name, entry.name, LetterCase::kIgnored)) {
      wish.matches.push_back(&entry);
    }
  }
  if (!wish.matches.empty()) return wish;
  if (item.optional) {
    SkipMissing(item);
  } else {
    AddImpossible(
        item, item.name,
        Error(kNotFound, "attribute-not-found", "No attribute fits '" + item.name + "'.", item.name)
            .With("unknown", Json::array({item.name})));
  }
  return std::nullopt;
}

void StatePlanner::PlanAttributes(const std::vector<const StateItem*>& items) {
  try {
    writer_ = std::make_shared<AttributeWriter>(session_);
  } catch (const Error& error) {
    for (const StateItem* const item : items) {
      if (item->optional && error.status == kNotSupported) {
        SkipMissing(*item);
      } else {
        AddImpossible(*item, item->name, error);
      }
    }
    return;
  }
  std::vector<Wish> wishes;
  for (const StateItem* const item : items) {
    if (auto wish = FindAttributes(*item)) wishes.push_back(std::move(*wish));
  }
  // What wants an attribute: names, or where there is none, patterns.
  std::map<std::uint16_t, std::vector<const Wish*>> wanted;
  for (const bool is_name : {true, false}) {
    std::map<std::uint16_t, std::vector<const Wish*>> found;
    for (const Wish& wish : wishes) {
      if (wish.is_name != is_name) continue;
      for (const AttributeEntry* const entry : wish.matches) found[entry->handle].push_back(&wish);
    }
    wanted.merge(found);
  }
  std::size_t done = 0;
  for (const Wish& wish : wishes) {
    ++done;
    for (const AttributeEntry* const entry : wish.matches) {
      session_.Report("Reading attributes", done - 1, wishes.size());
      const std::vector<const Wish*>& all = wanted[entry->handle];
      if (all.front() != &wish) continue;
      const auto other = std::find_if(all.begin(), all.end(), [&wish](const Wish* w) {
        return w->item->body != wish.item->body;
      });
      if (other != all.end()) {
        AddImpossible(*wish.item, entry->Title(),
                      Conflict(*wish.item, *(*other)->item, entry->Title()));
      } else if (entry->IsPassword()) {
        AddSecret(*wish.item, *entry);
      } else {
        AddAttribute(*wish.item, *entry);
      }
    }
  }
}

void StatePlanner::AddAttribute(const StateItem& item, const AttributeEntry& entry) {
  if (item.body.contains("secret")) {
    return AddImpossible(
        item, entry.Title(),
        Error(kInvalidValue, "no-password-attribute",
              entry.Title() + " is not a password: it takes a value, not a secret.",
              entry.Title()));
  }
  AddLockable(item, entry,
              [handle = entry.handle, body = item.body](const AttributeWriterPtr& writer) {
                CheckStateValue(*writer->All().FindHandle(handle), body.at("value"));
                return PlanStateAttribute(writer, handle, body);
              });
}

void StatePlanner::AddSecret(const StateItem& item, const AttributeEntry& entry) {
  const std::string title = entry.Title();
  if (!item.body.contains("secret") || writes_secrets_) {
    return AddLockable(item, entry,
                       [&secrets = secrets_, title, handle = entry.handle,
                        body = item.body](const AttributeWriterPtr& writer) {
                         if (!body.contains("secret")) {
                           CheckStateValue(*writer->All().FindHandle(handle), body.at("value"));
                         }
                         return PlanStateSecret(writer, handle, body.at("secret"), secrets);
                       });
  }
  Change change{.target = title, .before = nullptr, .after = nullptr, .secret = true};
  change.outcome = ChangeOutcome::kNotTried;
  Add(item, title, false, [&change] { return std::vector{Step{.changes = {change}}}; });
}

void StatePlanner::AddLockable(const StateItem& item, const AttributeEntry& entry,
                               std::function<Step(const AttributeWriterPtr&)> plan) {
  StateEntry* const added =
      Add(item, entry.Title(), true, [&] { return std::vector{plan(writer_)}; });
  if (added == nullptr) return;
  added->replan = std::move(plan);
  const Error* const problem = added->Problem();
  added->is_locked = added->step.write && problem != nullptr && IsReadOnlyError(*problem);
}

void StatePlanner::PlanOther(const StateItem& item) {
  const bool needs_key = item.subject != StateSubject::kBatteries;
  Add(item, TargetOf(item), needs_key, [&] {
    client::Plan plan = PlanPart(session_, item);
    if (plan.subject.contains("assumption")) plan_.assumption = plan.subject["assumption"];
    return std::move(plan.steps);
  });
}

}  // namespace mira::client
