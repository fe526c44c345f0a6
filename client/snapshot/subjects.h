#ifndef MIRA_CLIENT_SNAPSHOT_SUBJECTS_H_
#define MIRA_CLIENT_SNAPSHOT_SUBJECTS_H_

// What a snapshot consists of, and how it is taken: by reads without effect.

#include <string>
#include <vector>

#include "client/json.h"
#include "client/session.h"

namespace mira::client {

struct Subject {
  const char* name;   // in the document
  const char* title;  // for people
  // The document of the subject's reading commands. Throws Error, with what could be read in it.
  Json (*read)(Session& session);
};
// In the order of the document.
const std::vector<Subject>& Subjects();
const Subject* FindSubject(const std::string& name);

// {"kind", "takenAt", "program", "redacted", "machine", "subjects"}. Throws Error where nothing
// could be read, and Cancelled.
Json TakeSnapshot(Session& session);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_SUBJECTS_H_
