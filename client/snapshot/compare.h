#ifndef MIRA_CLIENT_SNAPSHOT_COMPARE_H_
#define MIRA_CLIENT_SNAPSHOT_COMPARE_H_

// Two machines, or one at two times, compared subject by subject.
//
//   const Json document = Compare(SideOf(session, "live"), SideOf(session, content), {});

#include <string>
#include <vector>

#include "client/json.h"
#include "client/session.h"

namespace mira::client {

// What stands for the machine itself, where a side is named.
inline constexpr char kLiveSide[] = "live";

// One of the two: a snapshot or a desired state. "live" is a snapshot taken now. Throws Error for
// what is none of them.
Json SideOf(Session& session, const std::string& content);

struct CompareOptions {
  bool all = false;  // identity, readings and metadata, too
  // Beginnings of paths, or patterns with "*" in them.
  std::vector<std::string> only = {};
  std::vector<std::string> ignore = {};
};

// {"a", "b", "same", "counts", "subjects": [{"subject", "title", "differences"}]}. Where one side
// is a desired state, what it names is compared, and nothing else.
Json Compare(const Json& a, const Json& b, const CompareOptions& options);

}  // namespace mira::client

#endif  // MIRA_CLIENT_SNAPSHOT_COMPARE_H_
