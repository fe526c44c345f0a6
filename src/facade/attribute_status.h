#ifndef MIRA_FACADE_ATTRIBUTE_STATUS_H_
#define MIRA_FACADE_ATTRIBUTE_STATUS_H_

#include "facade/status.h"
#include "pldm/manager.h"

namespace mira {

// The status of an operation on attributes. Writes a failure down in the operation's report.
Status StatusOf(const pldm::AttributeResult& outcome);

}  // namespace mira

#endif  // MIRA_FACADE_ATTRIBUTE_STATUS_H_
