#ifndef MIRA_CLIENT_STATE_PART_PLANS_H_
#define MIRA_CLIENT_STATE_PART_PLANS_H_

// The plans for what a desired state wants beside attributes, by the plans of each subject.

#include <string>

#include "client/plan.h"
#include "client/state/state_document.h"

namespace mira::client {

// "battery 1", "asset tag", …, for an item that cannot be planned.
std::string TargetOf(const StateItem& item);

// Throws Error.
Plan PlanPart(Session& session, const StateItem& item);

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_PART_PLANS_H_
