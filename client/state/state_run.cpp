#include "client/state/state_run.h"

#include <algorithm>
#include <utility>

#include "client/tag.h"

namespace mira::client {
namespace {

using Outcome = ChangeOutcome;

bool IsOpen(const Change& change) { return change.outcome == Outcome::kPlanned; }

template <typename Test>
bool AnyChange(const StatePlan& plan, Test test) {
  return std::any_of(plan.entries.begin(), plan.entries.end(), [&test](const StateEntry& entry) {
    return std::any_of(entry.step.changes.begin(), entry.step.changes.end(), test);
  });
}

// What the machine has instead of the value before, where that was read.
bool HasMoved(const Change& change) {
  if (change.secret) return false;
  if (change.kept) return *change.kept != change.before;
  return change.outcome == Outcome::kChanged;
}

}  // namespace

StateRun::StateRun(Request& request, SecretProvider& secrets, StatePlan plan, StateOptions options)
    : request_(request),
      secrets_(secrets),
      plan_(std::move(plan)),
      options_(options),
      kept_(request.GetSession()) {}

bool StateRun::NeedsWrite(const StateEntry& entry) const {
  return !entry.is_locked &&
         std::any_of(entry.step.changes.begin(), entry.step.changes.end(), IsOpen);
}

bool StateRun::HasWrites() const {
  return std::any_of(plan_.entries.begin(), plan_.entries.end(),
                     [this](const StateEntry& entry) { return NeedsWrite(entry); });
}

void StateRun::Prepare() {
  for (StateEntry& entry : plan_.entries) {
    for (Change& change : entry.step.changes) {
      // A state is reached where the machine has as much of a text as it can hold.
      if (change.problem && change.problem->name == kAlreadyCut) {
        change.problem.reset();
        change.kept = change.before;
      }
      if (change.problem && !entry.is_locked) {
        change.outcome = Outcome::kFailed;
      } else if (change.outcome == Outcome::kPlanned && !change.secret) {
        const bool is_kept = change.before != change.after && kept_.IsKnown(change);
        if (is_kept) change.kept = change.before;
        if (change.before == change.after) kept_.NoteSettled(change);
        if (is_kept || change.before == change.after) change.outcome = Outcome::kAlreadySo;
      }
    }
    if (!std::any_of(entry.step.changes.begin(), entry.step.changes.end(), IsOpen)) {
      entry.is_locked = false;
    }
  }
  const bool has_locked = std::any_of(plan_.entries.begin(), plan_.entries.end(),
                                      [](const StateEntry& e) { return e.is_locked; });
  if (!has_locked) return;
  // What is read-only may become writable by other writes, or by a restart that is due.
  const bool may_open = HasWrites() || IsRestartPendingAnywhere();
  for (StateEntry& entry : plan_.entries) {
    if (!entry.is_locked) continue;
    for (Change& change : entry.step.changes) {
      if (may_open) {
        change.problem.reset();
      } else if (IsOpen(change)) {
        change.outcome = Outcome::kFailed;
      }
    }
    entry.is_locked = may_open;
  }
}

bool StateRun::IsRestartPendingAnywhere() {
  if (AnyChange(plan_, [](const Change& change) {
        return change.outcome == Outcome::kWaiting || IsRestartPending(change);
      })) {
    return true;
  }
  try {
    Attributes attributes(GetSession());
    for (const AttributeEntry& entry : attributes.All()) {
      if (entry.IsPassword()) continue;
      const std::optional<Setting> start = attributes.TryReadAtBoot(entry);
      if (!start) continue;
      const Setting live = attributes.ReadLive(entry);
      if (ValueJson(attributes, live) != ValueJson(attributes, *start)) return true;
    }
  } catch (const Error&) {
    // Nobody knows: then none is.
  }
  return false;
}

void StateRun::StopAtProblems() const {
  if (options_.partial) return;
  const Error* first = nullptr;
  std::size_t count = 0;
  for (const StateEntry& entry : plan_.entries) {
    const Error* const problem = entry.Problem();
    if (problem == nullptr) continue;
    ++count;
    if (first == nullptr) first = problem;
  }
  if (first == nullptr) return;
  Error error = *first;
  if (count > 1) {
    error = Error(first->status, first->name,
                  std::to_string(count) +
                      " entries of the state are impossible here. The first: " + first->what(),
                  first->target);
    error.details = first->details;
    error.completion = first->completion;
  }
  throw error;
}

void StateRun::ObtainPassword() {
  const bool needs_key =
      std::any_of(plan_.entries.begin(), plan_.entries.end(),
                  [this](const StateEntry& entry) { return entry.needs_key && NeedsWrite(entry); });
  if (!needs_key || (WhatIf() && !secrets_.IsGiven("password"))) return;
  key_ = ObtainKey(GetSession(), secrets_, request_.Flag(kClass10.name), Check::kYes);
}

void StateRun::Approve() {
  Plan whole;
  for (const StateEntry& entry : plan_.entries) {
    if (NeedsWrite(entry) || entry.is_locked) whole.steps.push_back(entry.step);
  }
  if (!plan_.assumption.is_null()) whole.subject["assumption"] = plan_.assumption;
  request_.Approve(whole);
}

Json StateRun::Run() {
  const auto failed = [this](Error error) {
    if (!WhatIf()) {
      for (StateEntry& entry : plan_.entries) {
        for (Change& change : entry.step.changes) {
          if (IsOpen(change)) change.outcome = Outcome::kNotTried;
        }
      }
    }
    error.document = Document();
    return error;
  };
  try {
    Prepare();
    kept_.Save();
    StopAtProblems();
    ObtainPassword();
  } catch (const Error& error) {
    throw failed(error);
  }
  if (WhatIf()) return Finish();
  if (!HasWrites()) {
    CloseLocked();
    return Finish();
  }
  Approve();
  Log("begin", {{"entries", plan_.entries.size()}});
  try {
    WriteRounds();
    CloseLocked();
    ReadAgain();
    kept_.Save();
  } catch (Cancelled& cancelled) {
    kept_.Save();
    LogEnd(kCancelled);
    cancelled.document = failed(Error(kCancelled, "", "")).document;
    throw;
  } catch (const Error& error) {
    // The log cannot be written: nothing more is.
    kept_.Save();
    throw failed(error);
  }
  const auto verdict = Verdict();
  LogEnd(verdict ? verdict->status : kDone);
  return Finish();
}

Json StateRun::Document() {
  Json changes = Json::array();
  bool changed = false;
  bool pending = false;
  for (const StateEntry& entry : plan_.entries) {
    for (const Change& change : entry.step.changes) {
      changed = changed || HasMoved(change);
      pending = pending || change.outcome == Outcome::kWaiting || IsRestartPending(change);
      Json json = {{"subject", Name(entry.subject)}, {"entry", entry.path}};
      json.update(ToJson(change));
      changes.push_back(std::move(json));
    }
  }
  Json document = {{"changed", changed}, {"whatIf", WhatIf()}, {"restartPending", pending}};
  document["changes"] = std::move(changes);
  document["skipped"] = plan_.skipped;
  if (!plan_.assumption.is_null()) document["assumption"] = plan_.assumption;
  return document;
}

std::optional<Error> StateRun::Verdict() const {
  const Error* first = nullptr;
  std::size_t failures = 0;
  std::size_t waiting = 0;
  std::size_t differing = 0;
  for (const StateEntry& entry : plan_.entries) {
    for (const Change& change : entry.step.changes) {
      if (change.problem && first == nullptr) first = &*change.problem;
      if (change.problem) ++failures;
      if (change.outcome == Outcome::kWaiting) ++waiting;
      if (IsOpen(change) && !change.secret) ++differing;
    }
  }
  if (first != nullptr) {
    const bool any_moved = AnyChange(plan_, HasMoved);
    if (!any_moved && waiting == 0 && (!WhatIf() || differing == 0)) return *first;
    Error error(kAppliedInPart, "applied-in-part",
                std::to_string(failures) + " of the changes failed. The first: " + first->what(),
                first->target);
    error.completion = first->completion;
    return error;
  }
  if (options_.check && differing + waiting > 0) {
    return Error(kDiffers, "differs",
                 std::to_string(differing + waiting) + " of the values differ from the state.");
  }
  if (waiting == 0) return std::nullopt;
  return Error(kAppliedInPart, "restart-needed",
               std::to_string(waiting) + (waiting == 1 ? " entry waits" : " entries wait") +
                   " for a restart: restart the machine and apply the state again.");
}

Json StateRun::Finish() {
  Json document = Document();
  if (auto error = Verdict()) {
    error->document = std::move(document);
    throw *error;
  }
  return document;
}

void StateRun::Log(const char* event, Json fields) {
  Json line = {{"time", GetSession().Now()}, {"event", event}};
  line.update(fields);
  request_.Log(line);
}

void StateRun::LogEnd(int status) {
  const Json document = Document();
  try {
    Log("end", {{"status", status},
                {"changed", document["changed"]},
                {"restartPending", document["restartPending"]}});
  } catch (const Error&) {
    // Everything is done; the document says so.
  }
}

}  // namespace mira::client
