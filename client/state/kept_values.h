#ifndef MIRA_CLIENT_STATE_KEPT_VALUES_H_
#define MIRA_CLIENT_STATE_KEPT_VALUES_H_

// What this machine's firmware made of values that were written: it may round a number or write a
// text in capitals. Remembered from run to run, so that the same wish is known to be met.

#include <string>

#include "client/json.h"
#include "client/plan.h"
#include "client/session.h"

namespace mira::client {

class KeptValues {
 public:
  explicit KeptValues(Session& session);

  // Whether the firmware has made the value of now from the wanted one before.
  bool IsKnown(const Change& change) const;
  // Whether the value of now, which a write has not moved, is the firmware's form of the wanted
  // one: known so, shown since the start, or alike but for case, blanks and a cut end.
  bool IsForm(const Change& change) const;

  // What a write has led to.
  void NoteKept(const Change& change);
  void NoteWaiting(const Change& change);
  // Gives what was noted to the session's memory.
  void Save();

 private:
  const Json* Find(const Change& change) const;
  Json& NoteOf(const Change& change);

  Session& session_;
  Json memory_;
  Json machine_;
  bool is_changed_ = false;
};

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_KEPT_VALUES_H_
