#ifndef MIRA_CLIENT_PLAN_H_
#define MIRA_CLIENT_PLAN_H_

// Changes of a machine: planned, looked at, applied and read back, alike for every subject.
//
//   Plan plan;
//   plan.steps.push_back({.changes = {{.target = "asset tag", .before = "A", .after = "B"}},
//                         .read = [=](Session& s) { return std::vector{TextJson(ReadTag(s))}; },
//                         .write = [=](Session& s, const Key& key) { WriteTag(s, "B", key); }});
//   Json document = Carry(request, plan);

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "client/call.h"
#include "client/error.h"
#include "client/session.h"

namespace mira::client {

enum class ChangeOutcome {
  kPlanned,    // nothing was written yet
  kNotTried,   // nothing was written: the command ended before it came to this entry
  kChanged,    // read back, or, of a secret, accepted by the firmware
  kAlreadySo,  // had the wanted value before
  kRefused,    // by the firmware, or because the value was no longer the one that was planned for
  kFailed,     // was written and the value is still the old one, or could not be written
  kUnknown,    // was written, and nobody knows what is there now
  kWaiting,    // shows, or becomes possible, at the machine's next start; of desired states alone
};
// "planned", "not-tried", "changed", "already-so", "refused", "failed", "unknown", "waiting".
const char* Name(ChangeOutcome outcome);

// How firmware may keep a value that it takes, where it has a form of its own for it.
enum class ValueForm {
  kText,    // in other letters or blanks, or without its end
  kNumber,  // rounded
  kChoice,  // in no other: the value is one of those that the firmware names
};

struct Change {
  std::string target;  // "asset tag"
  Json before;         // values as JSON has them everywhere
  Json after;          // the wanted value
  // Why it is impossible, or what went wrong.
  std::optional<Error> problem = std::nullopt;
  ChangeOutcome outcome = ChangeOutcome::kPlanned;
  // What is there after the write, where that is not what was wanted.
  std::optional<Json> kept = std::nullopt;
  bool restart_pending = false;
  // A secret: written even where nothing differs, since nobody knows the old one. `before` and
  // `after` describe its state; it is never read, and never tried.
  bool secret = false;
  // The value in force since the machine started, if that is known: while another one is there, a
  // restart is pending.
  std::optional<Json> at_boot = std::nullopt;
  ValueForm form = ValueForm::kText;
  Json details = Json::object();  // further fields of its document
};

// What one firmware call writes.
struct Step {
  std::vector<Change> changes;
  // The values that the changes have now, in their order. Missing where they cannot be read.
  std::function<std::vector<Json>(Session&)> read = nullptr;
  std::function<void(Session&, const Key&)> write = nullptr;
  // Whether the firmware may keep the new value back until the machine restarts.
  bool may_wait = false;
  // Whether a value that is neither the old nor the wanted one is a problem, and not the firmware's
  // way to keep the wanted one.
  bool is_exact = false;
};

struct Plan {
  std::vector<Step> steps;
  Json subject = Json::object();  // further fields of the document
  bool needs_key = true;          // a BIOS password, where one is installed
  bool force = false;             // write what is so already, and what was changed meanwhile
  bool goes_on = false;           // an entry that is impossible or fails does not stop the others
  bool checks_key = true;         // also where nothing is to be written, with "whatIf"

  bool IsEmpty() const;
  // The first reason why an entry is impossible.
  const Error* Impossible() const;
  // Calls `use` with every change.
  template <typename Use>
  void ForEach(Use use) {
    for (Step& step : steps) {
      for (Change& change : step.changes) use(change);
    }
  }
};

// Gives the entries that are impossible or need no write their outcome.
void Prepare(Plan& plan);

// Calls the entries that are still planned not tried: the command ends without them.
void Close(Plan& plan);

// Writes the plan, step by step, and reads back. Each entry gets its outcome; an entry whose value
// is no longer its `before` is refused. Stops at the first step that fails, unless the plan goes
// on. Throws nothing but Cancelled, and that between two steps.
void Apply(Session& session, Plan& plan, const Key& key);

// Whether what is there waits for a restart.
bool IsRestartPending(const Change& change);

// {"target", "before", "after", "outcome"}; where they apply "wanted", "restartPending", "secret",
// its details and "error".
Json ToJson(const Change& change);
// The plan's subject with {"changed", "whatIf", "changes"}.
Json ToJson(const Plan& plan, bool what_if);

// The error of a plan that was applied, or looked at, and did not fully succeed; nothing when it
// did.
std::optional<Error> ApplyError(const Plan& plan);

}  // namespace mira::client

#endif  // MIRA_CLIENT_PLAN_H_
