#ifndef MIRA_CLIENT_STATE_KEPT_VALUES_H_
#define MIRA_CLIENT_STATE_KEPT_VALUES_H_

// What this machine's firmware made of values that were written: it may round a number or write a
// text in capitals. Remembered from run to run, so that the same wish is known to be met.

#include <string>

#include "client/json.h"
#include "client/plan.h"
#include "client/session.h"

namespace mira::client {

// What it tells that an accepted write has left the value as it was.
enum class Stay {
  kForm,     // the value is the firmware's form of the wanted one
  kUntaken,  // the write had no effect
  kUnclear,  // nobody knows: the new value may still come, at a restart
};

class KeptValues {
 public:
  explicit KeptValues(Session& session);

  // Whether the firmware has made the value of now from the wanted one before.
  bool IsKnown(const Change& change) const;
  // Of a value that an accepted write has not moved.
  Stay Judge(const Change& change) const;

  // What a write has led to.
  void NoteKept(const Change& change);
  void NoteWaiting(const Change& change);
  // The value is the wanted one, or a later write has made another of it: no write is awaited any
  // more.
  void NoteSettled(const Change& change);
  // A write of the attribute has shown at once.
  void NoteShown(const Change& change);
  // Gives what was noted to the session's memory.
  void Save();

 private:
  const Json* FindMachine() const;
  const Json* Find(const Change& change) const;
  Json& Machine();
  bool HasShown(const Change& change) const;

  Session& session_;
  Json memory_;
  Json machine_;
  bool is_changed_ = false;
};

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_KEPT_VALUES_H_
