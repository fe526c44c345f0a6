#ifndef MIRA_CLIENT_STATE_STATE_RUN_H_
#define MIRA_CLIENT_STATE_STATE_RUN_H_

// Brings a machine into a desired state: checks everything, writes round by round, reads everything
// again, and says what became of each entry.

#include <optional>

#include "client/call.h"
#include "client/command.h"
#include "client/state/kept_values.h"
#include "client/state/state_plan.h"

namespace mira::client {

struct StateOptions {
  bool partial = false;  // what is impossible does not hinder the rest
  bool check = false;    // ends with kDiffers where something would change
};

class StateRun {
 public:
  StateRun(Request& request, SecretProvider& secrets, StatePlan plan, StateOptions options);

  // The document. Throws Error and Cancelled, with the document in them.
  Json Run();

 private:
  Session& GetSession() { return request_.GetSession(); }
  bool WhatIf() const { return request_.WhatIf(); }

  // Gives each entry the outcome that it has before anything is written.
  void Prepare();
  void StopAtProblems() const;
  bool NeedsWrite(const StateEntry& entry) const;
  bool HasWrites() const;
  bool IsRestartPendingAnywhere();
  void ObtainPassword();
  void Approve();

  void WriteRounds();
  // Whether something moved.
  bool WriteRound();
  void Write(StateEntry& entry);
  void Settle(StateEntry& entry);
  // Reads what a lost answer left unknown, through a new connection.
  void Reconnect(StateEntry& entry);
  void PlanLockedAnew();
  void CloseLocked();
  void ReadAgain();
  void ReadAgain(StateEntry& entry);

  Json Document();
  // What is left undone, as the error of the command; nothing where nothing is.
  std::optional<Error> Verdict() const;
  Json Finish();
  void Log(const char* event, Json fields);
  void LogEnd(int status);

  Request& request_;
  SecretProvider& secrets_;
  StatePlan plan_;
  StateOptions options_;
  KeptValues kept_;
  Key key_;
  bool has_written_ = false;
  bool is_cut_off_ = false;  // nothing can be read or written any more
};

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_STATE_RUN_H_
