#ifndef MIRA_TRANSPORT_OPERATION_LOG_H_
#define MIRA_TRANSPORT_OPERATION_LOG_H_

// Where operations write down their steps as they take them; hosts read the reports.
//
//   const OperationScope scope("ExecuteDACI");
//   OperationLog& log = OperationLog::Get();
//   log.BeginCall(0, 0);                      // the call is in the step that is named next
//   log.Reach(Step::kMethodCall);
//   log.FailCall(CodeKind::kHresult, result); // it failed there

#include <cstdint>

#include "transport/operation_report.h"

namespace mira::transport {

class OperationLog {
 public:
  // The process's.
  static OperationLog& Get() noexcept;

  const OperationReport& LastOperation() const { return operation_; }
  const StartUpReport& StartUp() const { return start_up_; }
  void Clear() noexcept;

  // Steps of Init. A failed one is the operation's failure, unless an earlier one is.
  void Done(Step step, CodeKind kind = CodeKind::kNone, std::int32_t code = 0) noexcept;
  void Pass(Step step, StepOutcome outcome) noexcept;
  void Fail(Step step, CodeKind kind = CodeKind::kNone, std::int32_t code = 0,
            StepOutcome outcome = StepOutcome::kFailed) noexcept;

  // A failure of any operation: the first one stays.
  void FailOperation(StepResult failure) noexcept;
  void FailOperation(Step step) noexcept { FailOperation({step, StepOutcome::kFailed}); }
  // The failure is the last call's, seen by the operation as that of `step`.
  void FailWithCall(Step step) noexcept;

  // Steps of a call.
  void BeginCall(std::uint16_t cls, std::uint16_t select) noexcept;
  void Reach(Step step) noexcept { operation_.call.failure.step = step; }
  void FailCall(CodeKind kind = CodeKind::kNone, std::int32_t code = 0) noexcept;
  void SentCall() noexcept { operation_.call.delivery = Delivery::kNoAnswer; }
  void AnswerCall(std::int32_t completion) noexcept;

  // An exception ended what was under way.
  void Interrupt(CodeKind kind = CodeKind::kNone, std::int32_t code = 0) noexcept;

 private:
  friend class OperationScope;
  OperationLog() noexcept;
  void Begin(const char* operation, bool is_start_up) noexcept;

  OperationReport operation_;
  StartUpReport start_up_;
  bool in_start_up_ = false;
  int depth_ = 0;  // of operations under way
};

// One operation of the facade. An operation within another is part of that one.
class OperationScope {
 public:
  enum Kind { kCall, kStartUp };
  explicit OperationScope(const char* operation, Kind kind = kCall) noexcept;
  ~OperationScope();
  OperationScope(const OperationScope&) = delete;
  OperationScope& operator=(const OperationScope&) = delete;

  // Hands the result on. A failure that no step has claimed is the last call's.
  template <typename Result>
  Result Ended(Result result, Result success) const noexcept {
    if (is_outer_ && result != success) {
      OperationLog& log = OperationLog::Get();
      log.FailOperation(log.LastOperation().call.failure);
    }
    return result;
  }

 private:
  bool is_outer_;
  int exceptions_;
};

}  // namespace mira::transport

#endif  // MIRA_TRANSPORT_OPERATION_LOG_H_
