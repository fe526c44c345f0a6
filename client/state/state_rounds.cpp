// How a desired state is written: round by round, since one write may make others possible.

#include <algorithm>
#include <utility>

#include "client/state/state_run.h"

namespace mira::client {
namespace {

using Outcome = ChangeOutcome;

constexpr char kNote[] = "note";

bool IsTransportError(const Error& error) {
  return error.status == kTransportFailed || error.status == kUnexpected;
}

// Null where nobody knows, whatever was read before.
Json ValueAfter(const Change& change) {
  if (change.outcome == Outcome::kUnknown) return nullptr;
  if (change.kept) return *change.kept;
  if (change.outcome == Outcome::kAlreadySo) return change.before;
  return change.outcome == Outcome::kChanged && !change.secret ? change.after : Json();
}

std::string WaitingNote(const Change& change) {
  const std::string now = "'" + Readable(change.before) + "'";
  const std::string wanted = "'" + Readable(change.after) + "'";
  return "shows " + now + " now: either the firmware keeps " + now + " for " + wanted +
         ", or it takes " + wanted + " at a restart";
}

Json LoggedChanges(const Step& step, bool is_after) {
  Json list = Json::array();
  for (const Change& change : step.changes) {
    Json json = {{"target", ToUtf8(change.target)}};
    if (!is_after) {
      json["before"] = change.before;
      json["wanted"] = change.after;
    } else {
      json["after"] = ValueAfter(change);
      json["outcome"] = Name(change.outcome);
    }
    list.push_back(std::move(json));
  }
  return list;
}

}  // namespace

void StateRun::WriteRounds() {
  while (WriteRound() && !is_cut_off_) {
    const bool has_locked = std::any_of(plan_.entries.begin(), plan_.entries.end(),
                                        [](const StateEntry& e) { return e.is_locked; });
    if (!has_locked) return;
    PlanLockedAnew();
  }
}

bool StateRun::WriteRound() {
  bool moved = false;
  std::size_t done = 0;
  for (StateEntry& entry : plan_.entries) {
    GetSession().Report("Writing", done++, plan_.entries.size());
    if (is_cut_off_ || !NeedsWrite(entry)) continue;
    Write(entry);
    moved = moved || !entry.is_locked;
  }
  return moved;
}

void StateRun::Write(StateEntry& entry) {
  const Session::Uninterrupted whole(GetSession());
  const auto number = static_cast<std::size_t>(&entry - plan_.entries.data()) + 1;
  const Json name = {{"entry", number}, {"path", entry.path}};
  Json line = name;
  line["changes"] = LoggedChanges(entry.step, false);
  Log("write", std::move(line));
  Plan plan;
  plan.steps.push_back(std::move(entry.step));
  has_written_ = true;
  entry.is_written = true;
  Apply(GetSession(), plan, key_);
  entry.step = std::move(plan.steps.front());
  if (const Error* const problem = entry.Problem();
      problem != nullptr && IsTransportError(*problem)) {
    Reconnect(entry);
  }
  Settle(entry);
  line = name;
  line["changes"] = LoggedChanges(entry.step, true);
  Log("written", std::move(line));
}

void StateRun::Settle(StateEntry& entry) {
  for (Change& change : entry.step.changes) {
    if (change.secret) {
      // No password can be read back.
      if (change.outcome == Outcome::kChanged) change.outcome = Outcome::kUnknown;
      continue;
    }
    if (change.outcome == Outcome::kChanged) {
      if (change.kept) {
        kept_.NoteKept(change);
      } else {
        kept_.NoteSettled(change);
      }
      if (change.form == ValueForm::kNumber) kept_.NoteShown(change);
    }
    const bool is_waiting = change.outcome == Outcome::kUnknown && change.restart_pending;
    const bool is_untaken = change.problem && change.problem->name == "not-taken";
    if (!is_waiting && !is_untaken) continue;
    const Stay stay = kept_.Judge(change);
    if (stay == Stay::kForm) {
      change.outcome = Outcome::kAlreadySo;
      change.restart_pending = false;
      change.problem.reset();
      kept_.NoteKept(change);
    } else if (is_waiting && stay == Stay::kUntaken) {
      change.outcome = Outcome::kFailed;
      change.restart_pending = false;
      change.problem =
          Error(kRefused, "not-taken", "The firmware accepted the new value and keeps the old one.",
                change.target);
    } else if (is_waiting) {
      change.outcome = Outcome::kWaiting;
      change.details[kNote] = WaitingNote(change);
      kept_.NoteWaiting(change);
    }
  }
  // Another write may open it.
  const Error* const problem = entry.Problem();
  if (problem == nullptr || !entry.replan || !IsReadOnlyError(*problem)) return;
  entry.is_locked = true;
}

void StateRun::Reconnect(StateEntry& entry) {
  GetSession().Restart();
  std::vector<Json> now;
  try {
    if (entry.step.read) now = entry.step.read(GetSession());
    GetSession().Ready();
  } catch (const Error&) {
    is_cut_off_ = true;
    return;
  }
  for (std::size_t i = 0; i < entry.step.changes.size() && i < now.size(); ++i) {
    Change& change = entry.step.changes[i];
    if (change.secret || !change.problem) continue;
    const bool is_wanted = now[i] == change.after;
    change.kept.reset();
    if (!is_wanted) change.kept = now[i];
    if (now[i] == change.before) {
      change.outcome = Outcome::kFailed;
    } else {
      change.outcome = Outcome::kChanged;
      change.problem.reset();
    }
  }
}

void StateRun::PlanLockedAnew() {
  GetSession().Restart();
  AttributeWriterPtr writer;
  try {
    writer = std::make_shared<AttributeWriter>(GetSession());
  } catch (const Error& error) {
    is_cut_off_ = IsTransportError(error);
    return;
  }
  for (StateEntry& entry : plan_.entries) {
    if (!entry.is_locked) continue;
    try {
      Step step = entry.replan(writer);
      const Error* problem = nullptr;
      for (std::size_t i = 0; i < step.changes.size(); ++i) {
        Change& change = step.changes[i];
        if (change.problem) problem = &*change.problem;
        // An earlier write may have moved it along.
        const bool is_so = change.before == change.after;
        if (i < entry.step.changes.size() && is_so &&
            change.before != entry.step.changes[i].before) {
          change.outcome = Outcome::kChanged;
          change.before = entry.step.changes[i].before;
        } else if (is_so) {
          change.outcome = Outcome::kAlreadySo;
        }
      }
      if (problem != nullptr && IsReadOnlyError(*problem)) continue;
      entry.step = std::move(step);
    } catch (const Error& error) {
      if (IsReadOnlyError(error)) continue;
      entry.step.changes.front().problem = error;
      for (Change& change : entry.step.changes) change.outcome = Outcome::kFailed;
    }
    entry.is_locked = false;
  }
}

void StateRun::CloseLocked() {
  const bool has_locked = std::any_of(plan_.entries.begin(), plan_.entries.end(),
                                      [](const StateEntry& e) { return e.is_locked; });
  if (!has_locked || is_cut_off_) return;
  const bool may_open = IsRestartPendingAnywhere();
  for (StateEntry& entry : plan_.entries) {
    if (!entry.is_locked) continue;
    for (Change& change : entry.step.changes) {
      if (change.outcome == Outcome::kAlreadySo) continue;
      change.kept = change.before;
      change.outcome = may_open ? Outcome::kWaiting : Outcome::kFailed;
      if (may_open) {
        change.problem.reset();
      } else if (!change.problem) {
        change.problem =
            Error(kInvalidValue, "read-only", change.target + " is read-only.", change.target);
      }
    }
    entry.is_locked = false;
  }
}

void StateRun::ReadAgain() {
  if (is_cut_off_) {
    for (StateEntry& entry : plan_.entries) {
      for (Change& change : entry.step.changes) {
        if (change.outcome == Outcome::kPlanned) change.outcome = Outcome::kNotTried;
      }
    }
    return;
  }
  const Session::Uninterrupted whole(GetSession());
  GetSession().Restart();
  for (StateEntry& entry : plan_.entries) ReadAgain(entry);
}

void StateRun::ReadAgain(StateEntry& entry) {
  if (!entry.step.read) return;
  std::vector<Json> now;
  try {
    now = entry.step.read(GetSession());
  } catch (const Error& error) {
    // It was read before; what it is at the end, nobody knows.
    for (Change& change : entry.step.changes) {
      if (change.problem || change.outcome != Outcome::kChanged) continue;
      change.outcome = Outcome::kUnknown;
      change.problem = error;
    }
    return;
  }
  for (std::size_t i = 0; i < entry.step.changes.size() && i < now.size(); ++i) {
    Change& change = entry.step.changes[i];
    const bool was_waiting = change.outcome == Outcome::kWaiting;
    const bool was_left = (was_waiting && entry.is_written) ||
                          change.outcome == Outcome::kChanged ||
                          change.outcome == Outcome::kAlreadySo;
    if (was_waiting && now[i] == change.after) {
      change.outcome = Outcome::kChanged;
      change.kept.reset();
      change.restart_pending = false;
      change.details.erase(kNote);
      kept_.NoteSettled(change);
    } else if (was_waiting && !entry.is_written) {
      change.kept = now[i];
    } else if (was_left && now[i] != change.kept.value_or(change.after)) {
      if (was_waiting) kept_.NoteSettled(change);
      change.outcome = Outcome::kFailed;
      change.restart_pending = false;
      change.details.erase(kNote);
      change.kept = now[i];
      change.problem = Error(kRefused, "undone",
                             change.target + ": A later write made it '" + Readable(now[i]) + "'.",
                             change.target);
    } else if (change.problem || change.outcome == Outcome::kUnknown) {
      if (!change.secret && now[i] != change.after) change.kept = now[i];
    }
  }
}

}  // namespace mira::client
