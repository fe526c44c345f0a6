#include "client/plan.h"

#include <algorithm>

namespace mira::client {
namespace {

std::optional<std::vector<Json>> ReadBack(Session& session, const Step& step) {
  if (!step.read) return std::nullopt;
  try {
    std::vector<Json> values = step.read(session);
    if (values.size() == step.changes.size()) return values;
  } catch (const Error&) {
    // Nobody knows what is there now; the outcome says so.
  }
  return std::nullopt;
}

// Whether the call may have been carried out although it failed: its answer was lost.
bool MayHaveRun(const Error& error) {
  return error.status == kTransportFailed || error.status == kUnexpected;
}

void Judge(Change& change, const Json& now, const std::optional<Error>& error, const Step& step) {
  if (now == change.after) {
    change.outcome =
        change.before == change.after ? ChangeOutcome::kAlreadySo : ChangeOutcome::kChanged;
    return;
  }
  if (now != change.before) {
    change.outcome = ChangeOutcome::kChanged;
    change.kept = now;
    if (step.is_exact) {
      change.problem =
          Error(kRefused, "taken-otherwise",
                change.target + ": The firmware made another value of it.", change.target);
    }
    return;
  }
  change.kept = now;
  if (error) {
    change.outcome = MayHaveRun(*error) ? ChangeOutcome::kFailed : ChangeOutcome::kRefused;
    change.problem = error;
  } else if (step.may_wait) {
    change.outcome = ChangeOutcome::kUnknown;
    change.restart_pending = true;
  } else {
    change.outcome = ChangeOutcome::kFailed;
    change.problem =
        Error(kRefused, "not-taken", "The firmware accepted the new value and keeps the old one.",
              change.target);
  }
}

// Of a secret that was written, the firmware's answer counts, and the state only where the answer
// was lost: a state that has turned tells, one that has not does not.
void JudgeSecret(Change& change, const Json* now, const std::optional<Error>& error) {
  if (!error || (now != nullptr && MayHaveRun(*error) && *now != change.before)) {
    change.outcome = ChangeOutcome::kChanged;
    return;
  }
  change.outcome = MayHaveRun(*error) ? ChangeOutcome::kUnknown : ChangeOutcome::kRefused;
  change.problem = error;
}

// Compares the values that are there with those that were planned for. False when one is another.
bool IsAsPlanned(Session& session, Step& step) {
  if (!step.read) return true;
  std::vector<Json> now;
  try {
    now = step.read(session);
  } catch (const Error& error) {
    for (Change& change : step.changes) {
      change.problem = error;
      change.outcome = ChangeOutcome::kFailed;
    }
    return false;
  }
  bool is_planned = true;
  for (std::size_t i = 0; i < step.changes.size() && i < now.size(); ++i) {
    if (now[i] == step.changes[i].before) continue;
    step.changes[i].kept = now[i];
    is_planned = false;
  }
  if (is_planned) return true;
  for (Change& change : step.changes) {
    change.outcome = ChangeOutcome::kRefused;
    change.problem =
        Error(kRefused, "changed-meanwhile",
              "The value is no longer the one that the change was planned for.", change.target);
  }
  return false;
}

bool NeedsWrite(const Change& change) {
  return !change.problem && (change.secret || change.before != change.after);
}

bool ApplyStep(Session& session, const Plan& plan, Step& step, const Key& key) {
  const Session::Uninterrupted whole(session);
  if (!plan.force && !IsAsPlanned(session, step)) return false;
  std::optional<Error> error;
  try {
    const Session::Changing changing(session);
    step.write(session, key);
  } catch (const Error& failure) {
    error = failure;
  }
  const auto now = ReadBack(session, step);
  bool is_done = true;
  for (std::size_t i = 0; i < step.changes.size(); ++i) {
    Change& change = step.changes[i];
    if (!NeedsWrite(change) && !plan.force) {
      change.outcome = ChangeOutcome::kAlreadySo;
    } else if (change.secret) {
      JudgeSecret(change, now ? &(*now)[i] : nullptr, error);
    } else if (now) {
      Judge(change, (*now)[i], error, step);
    } else if (!error) {
      change.outcome = ChangeOutcome::kUnknown;
    } else {
      change.outcome = MayHaveRun(*error) ? ChangeOutcome::kUnknown : ChangeOutcome::kRefused;
      change.problem = error;
    }
    is_done = is_done && !change.problem;
  }
  return is_done;
}

}  // namespace

const char* Name(ChangeOutcome outcome) {
  switch (outcome) {
    case ChangeOutcome::kNotTried:
      return "not-tried";
    case ChangeOutcome::kChanged:
      return "changed";
    case ChangeOutcome::kAlreadySo:
      return "already-so";
    case ChangeOutcome::kRefused:
      return "refused";
    case ChangeOutcome::kFailed:
      return "failed";
    case ChangeOutcome::kUnknown:
      return "unknown";
    case ChangeOutcome::kWaiting:
      return "waiting";
    case ChangeOutcome::kPlanned:
      break;
  }
  return "planned";
}

bool Plan::IsEmpty() const {
  return !force && std::none_of(steps.begin(), steps.end(), [](const Step& step) {
    return std::any_of(step.changes.begin(), step.changes.end(), NeedsWrite);
  });
}

const Error* Plan::Impossible() const {
  for (const Step& step : steps) {
    for (const Change& change : step.changes) {
      if (change.problem) return &*change.problem;
    }
  }
  return nullptr;
}

void Prepare(Plan& plan) {
  plan.ForEach([&plan](Change& change) {
    if (change.problem) {
      change.outcome = ChangeOutcome::kFailed;
    } else if (!plan.force && !NeedsWrite(change)) {
      change.outcome = ChangeOutcome::kAlreadySo;
    }
  });
}

void Close(Plan& plan) {
  plan.ForEach([](Change& change) {
    if (change.outcome == ChangeOutcome::kPlanned) change.outcome = ChangeOutcome::kNotTried;
  });
}

void Apply(Session& session, Plan& plan, const Key& key) {
  bool stopped = false;
  std::size_t done = 0;
  for (Step& step : plan.steps) {
    session.Report("Writing", done++, plan.steps.size());
    // What is impossible is not written; a step is one write, so nothing of it is.
    const bool is_possible = std::none_of(step.changes.begin(), step.changes.end(),
                                          [](const Change& c) { return c.problem.has_value(); });
    const bool is_wanted =
        is_possible &&
        (plan.force || std::any_of(step.changes.begin(), step.changes.end(), NeedsWrite));
    if (!is_wanted) {
      for (Change& change : step.changes) {
        change.outcome = is_possible ? ChangeOutcome::kAlreadySo : ChangeOutcome::kFailed;
      }
      continue;
    }
    if (stopped) continue;
    stopped = !ApplyStep(session, plan, step, key) && !plan.goes_on;
  }
}

bool IsRestartPending(const Change& change) {
  if (change.restart_pending || change.outcome == ChangeOutcome::kWaiting) return true;
  if (!change.at_boot) return false;
  const bool is_taken =
      change.outcome == ChangeOutcome::kChanged || change.outcome == ChangeOutcome::kAlreadySo;
  return *change.at_boot != change.kept.value_or(is_taken ? change.after : change.before);
}

Json ToJson(const Change& change) {
  Json json = {{"target", ToUtf8(change.target)},
               {"before", change.before},
               {"after", change.kept.value_or(change.after)},
               {"outcome", Name(change.outcome)}};
  if (change.kept) json["wanted"] = change.after;
  if (IsRestartPending(change)) json["restartPending"] = true;
  if (change.secret) json["secret"] = true;
  json.update(change.details);
  if (change.problem) json["error"] = ToJson(*change.problem);
  return json;
}

Json ToJson(const Plan& plan, bool what_if) {
  Json json = plan.subject;
  bool changed = false;
  Json changes = Json::array();
  for (const Step& step : plan.steps) {
    for (const Change& change : step.changes) {
      changed = changed || change.outcome == ChangeOutcome::kChanged;
      changes.push_back(ToJson(change));
    }
  }
  json["changed"] = changed;
  json["whatIf"] = what_if;
  json["changes"] = std::move(changes);
  return json;
}

std::optional<Error> ApplyError(const Plan& plan) {
  const Error* first = nullptr;
  std::size_t failed = 0;
  bool any_changed = false;
  bool any_fine = false;
  for (const Step& step : plan.steps) {
    for (const Change& change : step.changes) {
      any_changed = any_changed || change.outcome == ChangeOutcome::kChanged;
      any_fine = any_fine || !change.problem;
      if (!change.problem) continue;
      ++failed;
      if (first == nullptr) first = &*change.problem;
    }
  }
  if (first == nullptr) return std::nullopt;
  if (!any_changed && !(plan.goes_on && any_fine)) return *first;
  Error error(kAppliedInPart, "applied-in-part",
              std::to_string(failed) + " of the changes failed. The first: " + first->what(),
              first->target);
  error.completion = first->completion;
  return error;
}

}  // namespace mira::client
