#ifndef MIRA_SIM_NODE_PATHS_H_
#define MIRA_SIM_NODE_PATHS_H_

// Two trees of a machine's state side by side: where they differ, and what a write leaves that
// power was lost in.

#include <string>
#include <string_view>
#include <vector>

#include "sim/state_document.h"

namespace mira::sim {

// The node at a JSON pointer, "/firmware/boot"; null where there is none.
const Node* FindPath(const Node& root, std::string_view pointer);
Node* FindPath(Node& root, std::string_view pointer);

struct Difference {
  std::string place;             // a JSON pointer
  const Node* before = nullptr;  // null where only the other tree has it
  const Node* after = nullptr;
};
// Value by value, in the trees' order; secrets and lists of other lengths as wholes. Points into
// the trees.
std::vector<Difference> Differences(const Node& before, const Node& after);

// Whether a node holds a secret: an object of one member, as Fields writes it.
bool IsSecret(const Node& node);
// Or has one anywhere in it.
bool HoldsSecret(const Node& node);

// The state after a write that power was lost in: old, but for the groups that are written in
// parts. Of these the first half of what was to change is new.
Node Torn(const Node& before, const Node& after, const std::vector<std::string>& part_groups);

}  // namespace mira::sim

#endif  // MIRA_SIM_NODE_PATHS_H_
