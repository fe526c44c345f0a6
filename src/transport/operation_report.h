#ifndef MIRA_TRANSPORT_OPERATION_REPORT_H_
#define MIRA_TRANSPORT_OPERATION_REPORT_H_

// What the library's last operation and its last start-up did, step by step: which step failed and
// with which code, and whether a call reached the firmware. A status alone cannot tell them apart.
//
//   if (mira.ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE) != STATUS_SUCCESS) {
//     const mira::OperationReport& report = CMiraIntf::GetLastOperation();
//     std::cerr << mira::StepName(report.failure.step) << ": " << report.failure.code << '\n';
//     if (report.call.delivery != mira::Delivery::kAnswered) ...   // the firmware told nothing
//   }
//
// The reports are the process's, as the library's other state is: a later operation, of whichever
// facade, overwrites them. They hold no secrets.

#include <array>
#include <cstddef>
#include <cstdint>

#include "platform/api.h"

namespace mira {

enum class Step : std::uint8_t {
  // Of Init, in this order.
  kAdministratorCheck,
  kComInitialisation,
  kComSecurity,
  kWmiLocator,
  kWmiConnection,
  kProxyBlanket,
  kSmbiosTable,
  kWmiInstance,      // the search for the instance with the calling interface's signature
  kBufferSize,       // that the instance names
  kInstanceKey,      // what addresses the method, made from the instance's path
  kFirmwareFlags,    // the firmware says that calls through WMI are supported
  kBufferFix,        // announced, or shown by the probing call
  kAttributeTables,  // also of the attribute operations: they need the tables
  // Of a call, in this order.
  kCallingInterface,  // the type-0xDA structure, which executes calls
  kCommandClass,      // announced by the firmware
  kSecurityKey,       // given by the firmware in exchange for a password
  kRequest,           // the record made of the request, or the attribute and value given
  kWmiObjects,        // fetched when the type-0xDA object got its connection
  kInputBytes,        // the record put as "Bytes"
  kInputParameters,   // and that as "Data"
  kMethodCall,        // DoBFn: from here on the firmware may have executed the command
  kReply,             // "Data" and "Bytes" of the answer; an attribute's value in it
  kCompletion,        // the firmware's completion code, or its answer to a write
  kNone,
};

inline constexpr std::size_t kStartUpSteps = static_cast<std::size_t>(Step::kAttributeTables) + 1;

// A short English name, for tables and messages: "COM security". Never null.
MIRA_API const char* StepName(Step step) noexcept;

enum class StepOutcome : std::uint8_t {
  kNotReached,
  kDone,
  kKnown,    // nothing to do: an earlier step or start-up of the process found it out
  kSkipped,  // not asked for, or not needed
  kFailed,
  kCancelled,  // through the callback of mira::pldm::SetProgress
};

// What a code is. Also a step that is done may have one, when it is not the plain success: S_FALSE
// of a thread that had initialised COM, say.
enum class CodeKind : std::uint8_t {
  kNone,             // no code tells more than the step does
  kHresult,          // of a COM or WMI service; S_OK when it succeeded and gave nothing of use
  kSystemError,      // of GetLastError
  kCompletionCode,   // of the firmware: cbRES1
  kAttributeStatus,  // of the firmware: how it took an attribute's value
  kFlagsWord,        // what stands in the firmware's flags
};

struct StepResult {
  Step step = Step::kNone;
  StepOutcome outcome = StepOutcome::kNotReached;
  CodeKind code_kind = CodeKind::kNone;
  std::int32_t code = 0;
};

// How far a call came.
enum class Delivery : std::uint8_t {
  kNotSent,   // the firmware has seen nothing
  kNoAnswer,  // sent; whether the firmware executed it is unknown
  kAnswered,
};

struct CallReport {
  std::uint16_t cls = 0;
  std::uint16_t select = 0;
  Delivery delivery = Delivery::kNotSent;
  std::int32_t completion = 0;  // cbRES1; only of a call that was answered
  StepResult failure;           // step kNone: none failed
};

struct OperationReport {
  const char* operation = "";  // the facade's operation: "Init", "ExecuteDACI"; empty: none yet
  StepResult failure;          // step kNone: nothing failed
  // The last call that the operation made or tried: with a password or a probe an operation makes
  // several. Class and select 0 and "not sent" when it made none.
  CallReport call;
  // The first call of the operation that failed on its way to the firmware or back. Its failure's
  // step is kNone where the firmware answered every call: what the operation found out on the way,
  // such as the size of an answer, then is the firmware's word.
  CallReport unanswered;
};

// The steps of the last Init in their order.
using StartUpReport = std::array<StepResult, kStartUpSteps>;

}  // namespace mira

#endif  // MIRA_TRANSPORT_OPERATION_REPORT_H_
