#include "facade/attribute_status.h"

#include <algorithm>
#include <span>

#include "transport/operation_log.h"

namespace mira {
namespace {

using pldm::AttributeResult;

struct CodeStatus {
  std::int32_t code;
  Status status;
};

// Of the completion code of an attribute's read or write; any other is STATUS_FAILURE.
constexpr CodeStatus kCompletionStatus[] = {
    {-1, STATUS_FUNCTION_ERROR},        {-2, STATUS_NOT_SUPPORTED},
    {-3, STATUS_FUNCTION_NOT_EXECUTED}, {-5, STATUS_OUTPUT_MALFORMED},
    {-6, STATUS_OUTPUT_TOO_SMALL},      {-7, STATUS_INVALID_SECURITY_KEY},
};
constexpr std::int32_t kTransportCodes = -2000000000;  // below this

// Of the firmware's status of a write; any other is STATUS_SUCCESS.
constexpr CodeStatus kWriteStatus[] = {
    {1, STATUS_ATTRIBUTE_REFUSED_1}, {2, STATUS_ATTRIBUTE_REFUSED_2},
    {3, STATUS_ATTRIBUTE_NOT_FOUND}, {4, STATUS_OUTPUT_TOO_SMALL},
    {5, STATUS_ATTRIBUTE_REFUSED_5},
};

Status FindStatus(std::span<const CodeStatus> rows, std::int32_t code, Status other) {
  const auto found = std::find_if(rows.begin(), rows.end(),
                                  [code](const CodeStatus& row) { return row.code == code; });
  return found != rows.end() ? found->status : other;
}

}  // namespace

Status StatusOf(const AttributeResult& outcome) {
  transport::OperationLog& log = transport::OperationLog::Get();
  switch (outcome.kind) {
    case AttributeResult::kDone:
      return STATUS_SUCCESS;
    case AttributeResult::kNotSupported:
      log.FailOperation(Step::kAttributeTables);
      return STATUS_NOT_SUPPORTED;
    case AttributeResult::kNotFound:
      log.FailOperation(Step::kRequest);
      return STATUS_ATTRIBUTE_NOT_FOUND;
    case AttributeResult::kNoKey:
      log.FailWithCall(Step::kSecurityKey);
      return STATUS_SECURITY_KEY_FAILED;
    case AttributeResult::kCancelled:
      log.FailOperation({Step::kAttributeTables, StepOutcome::kCancelled});
      return STATUS_FAILURE;
    case AttributeResult::kMalformed:
      log.FailOperation(Step::kReply);
      return STATUS_OUTPUT_MALFORMED;
    case AttributeResult::kCallFailed:
      log.FailOperation(log.LastOperation().call.failure);
      return FindStatus(kCompletionStatus, outcome.code,
                        outcome.code < kTransportCodes ? STATUS_TRANSPORT_ERROR : STATUS_FAILURE);
    case AttributeResult::kAnswered: {
      const Status status = FindStatus(kWriteStatus, outcome.code, STATUS_SUCCESS);
      if (status != STATUS_SUCCESS) {
        log.FailOperation(
            {Step::kCompletion, StepOutcome::kFailed, CodeKind::kAttributeStatus, outcome.code});
      }
      return status;
    }
    case AttributeResult::kFailed:
      break;
  }
  const CallReport& call = log.LastOperation().call;
  log.FailOperation(call.failure);
  log.FailOperation(call.delivery == Delivery::kAnswered ? Step::kReply : Step::kRequest);
  return STATUS_FAILURE;
}

}  // namespace mira
