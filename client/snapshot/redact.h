#ifndef MIRA_CLIENT_SNAPSHOT_REDACT_H_
#define MIRA_CLIENT_SNAPSHOT_REDACT_H_

#include "client/snapshot/snapshot.h"

namespace mira::client {

// The snapshot's document with nothing in it but what is known to be harmless, so that it may be
// shown to anybody: numbers of models and settings, names that the program itself gives, texts of
// words that all firmware uses. For all else there are placeholders, the same one for equal values.
Json Redact(const Snapshot& snapshot);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_REDACT_H_
