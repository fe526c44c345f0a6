#ifndef MIRA_CLIENT_STATE_STATE_PLAN_H_
#define MIRA_CLIENT_STATE_STATE_PLAN_H_

// What a desired state means for a machine: an entry for each thing that it wants, planned or with
// the reason why it is impossible.
//
//   StatePlanner planner(session, secrets, writes_secrets);
//   StatePlan plan = planner.Plan(ParseState(document));

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/attribute_plan.h"
#include "client/plan.h"
#include "client/secrets.h"
#include "client/state/condition.h"
#include "client/state/state_document.h"

namespace mira::client {

struct StateEntry {
  StateSubject subject;
  std::string path;  // of the state
  Step step;
  bool needs_key = true;
  // Read-only now. What it depends on may change.
  bool is_locked = false;
  bool is_written = false;
  // The plan again, with the tables as they are then; of what can be locked.
  std::function<Step(const AttributeWriterPtr& writer)> replan = nullptr;

  const Error* Problem() const;
};

struct StatePlan {
  std::vector<StateEntry> entries;
  Json skipped = Json::array();
  Json assumption;  // a note on what was set of batteries; null: none
};

class StatePlanner {
 public:
  StatePlanner(Session& session, SecretProvider& secrets, bool writes_secrets)
      : session_(session), secrets_(secrets), writes_secrets_(writes_secrets) {}

  // Every entry is there, whatever is wrong with others. Throws Error for a condition that cannot
  // be compared, and what keeps a machine from being read at all.
  StatePlan Plan(const DesiredState& state);

 private:
  struct Wish {
    const StateItem* item;
    std::vector<const AttributeEntry*> matches;
    bool is_name = false;
  };
  bool Skips(const Json& when, const std::string& path);
  void SkipMissing(const StateItem& item);
  void AddImpossible(const StateItem& item, const std::string& target, const Error& error);
  // Plans the item, or adds the reason why it is impossible. Null where it is skipped.
  template <typename Make>
  StateEntry* Add(const StateItem& item, const std::string& target, bool needs_key, Make make);

  void PlanAttributes(const std::vector<const StateItem*>& items);
  std::optional<Wish> FindAttributes(const StateItem& item);
  void AddAttribute(const StateItem& item, const AttributeEntry& entry);
  // What `plan` plans, now and whenever the attribute may have become writable.
  void AddLockable(const StateItem& item, const AttributeEntry& entry,
                   std::function<Step(const AttributeWriterPtr&)> plan);
  void AddSecret(const StateItem& item, const AttributeEntry& entry);
  void PlanOther(const StateItem& item);

  Session& session_;
  SecretProvider& secrets_;
  bool writes_secrets_;
  Facts facts_;
  AttributeWriterPtr writer_;
  StatePlan plan_;
};

// Whether the error is that of a change that an attribute does not allow now.
bool IsReadOnlyError(const Error& error);

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_STATE_PLAN_H_
