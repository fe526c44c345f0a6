#include "transport/operation_log.h"

#include <algorithm>
#include <exception>

#include "platform/com.h"

namespace mira {

const char* StepName(Step step) noexcept {
  switch (step) {
    case Step::kAdministratorCheck:
      return "administrator check";
    case Step::kComInitialisation:
      return "COM initialisation";
    case Step::kComSecurity:
      return "COM security";
    case Step::kWmiLocator:
      return "WMI locator";
    case Step::kWmiConnection:
      return "WMI connection";
    case Step::kProxyBlanket:
      return "proxy blanket";
    case Step::kSmbiosTable:
      return "SMBIOS table";
    case Step::kWmiInstance:
      return "WMI instance";
    case Step::kBufferSize:
      return "buffer size";
    case Step::kInstanceKey:
      return "instance key";
    case Step::kFirmwareFlags:
      return "firmware flags";
    case Step::kBufferFix:
      return "buffer fix";
    case Step::kAttributeTables:
      return "attribute tables";
    case Step::kCallingInterface:
      return "calling interface";
    case Step::kCommandClass:
      return "command class";
    case Step::kSecurityKey:
      return "security key";
    case Step::kRequest:
      return "request";
    case Step::kWmiObjects:
      return "WMI objects";
    case Step::kInputBytes:
      return "input bytes";
    case Step::kInputParameters:
      return "input parameters";
    case Step::kMethodCall:
      return "method call";
    case Step::kReply:
      return "reply";
    case Step::kCompletion:
      return "completion";
    case Step::kNone:
      break;
  }
  return "none";
}

namespace transport {
namespace {

StartUpReport NothingStarted() noexcept {
  StartUpReport steps;
  for (std::size_t i = 0; i < steps.size(); ++i) steps[i].step = static_cast<Step>(i);
  return steps;
}

}  // namespace

OperationLog& OperationLog::Get() noexcept {
  static OperationLog log;
  return log;
}

OperationLog::OperationLog() noexcept : start_up_(NothingStarted()) {}

void OperationLog::Clear() noexcept {
  operation_ = {};
  start_up_ = NothingStarted();
}

void OperationLog::Begin(const char* operation, bool is_start_up) noexcept {
  operation_ = {};
  operation_.operation = operation;
  in_start_up_ = is_start_up;
  if (is_start_up) start_up_ = NothingStarted();
}

void OperationLog::Done(Step step, CodeKind kind, std::int32_t code) noexcept {
  start_up_[static_cast<std::size_t>(step)] = {step, StepOutcome::kDone, kind, code};
}

void OperationLog::Pass(Step step, StepOutcome outcome) noexcept {
  start_up_[static_cast<std::size_t>(step)] = {step, outcome};
}

void OperationLog::Fail(Step step, CodeKind kind, std::int32_t code, StepOutcome outcome) noexcept {
  const StepResult failure = {step, outcome, kind, code};
  start_up_[static_cast<std::size_t>(step)] = failure;
  FailOperation(failure);
}

void OperationLog::FailOperation(StepResult failure) noexcept {
  if (operation_.failure.step == Step::kNone) operation_.failure = failure;
}

void OperationLog::FailWithCall(Step step) noexcept {
  const StepResult& failure = operation_.call.failure;
  FailOperation({step, StepOutcome::kFailed, failure.code_kind, failure.code});
}

void OperationLog::BeginCall(std::uint16_t cls, std::uint16_t select) noexcept {
  operation_.call = {};
  operation_.call.cls = cls;
  operation_.call.select = select;
}

void OperationLog::FailCall(CodeKind kind, std::int32_t code) noexcept {
  StepResult& failure = operation_.call.failure;
  failure = {failure.step, StepOutcome::kFailed, kind, code};
  // What failed before is the request's fault, not the connection's.
  const bool is_lost =
      operation_.call.delivery != Delivery::kAnswered && failure.step >= Step::kWmiObjects;
  if (is_lost && operation_.unanswered.failure.step == Step::kNone)
    operation_.unanswered = operation_.call;
}

void OperationLog::AnswerCall(std::int32_t completion) noexcept {
  CallReport& call = operation_.call;
  call.delivery = Delivery::kAnswered;
  call.completion = completion;
  call.failure = {};
  if (completion == 0) return;
  Reach(Step::kCompletion);
  FailCall(CodeKind::kCompletionCode, completion);
}

void OperationLog::Interrupt(CodeKind kind, std::int32_t code) noexcept {
  if (depth_ == 0) return;
  CallReport& call = operation_.call;
  const bool in_call =
      call.failure.step != Step::kNone && call.failure.outcome == StepOutcome::kNotReached;
  if (in_call) FailCall(kind, code);
  if (in_start_up_) {
    // The steps are written down in their order: the first without an outcome was under way.
    const auto reached = std::find_if(start_up_.begin(), start_up_.end(), [](const StepResult& s) {
      return s.outcome == StepOutcome::kNotReached;
    });
    if (reached != start_up_.end()) Fail(reached->step, kind, code);
  } else if (in_call) {
    FailOperation(call.failure);
  } else {
    const Step step = call.delivery == Delivery::kAnswered ? Step::kReply : Step::kRequest;
    FailOperation({step, StepOutcome::kFailed, kind, code});
  }
}

OperationScope::OperationScope(const char* operation, Kind kind) noexcept
    : is_outer_(OperationLog::Get().depth_ == 0), exceptions_(std::uncaught_exceptions()) {
  OperationLog& log = OperationLog::Get();
  ++log.depth_;
  if (is_outer_) log.Begin(operation, kind == kStartUp);
}

OperationScope::~OperationScope() {
  OperationLog& log = OperationLog::Get();
  --log.depth_;
  // One exception leaves operations: a COM string that could not be made.
  if (is_outer_ && std::uncaught_exceptions() > exceptions_) {
    log.Interrupt(CodeKind::kHresult, E_OUTOFMEMORY);
  }
}

}  // namespace transport
}  // namespace mira
