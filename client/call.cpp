#include "client/call.h"

#include <algorithm>
#include <iterator>

#include "buffers/bios_data.h"
#include "transport/com_error.h"

namespace mira::client {
namespace {

constexpr std::int32_t kTooLittleRoom = -6;

std::string CommandText(callif::Command command) {
  return std::to_string(command.cls) + "/" + std::to_string(command.select);
}

// A call that the firmware did not answer, or never saw.
Error TransportError(Session& session, callif::Command command, const CallReport& report,
                     const std::string& target) {
  const bool is_sent = report.delivery == Delivery::kNoAnswer;
  const StepResult& failure = report.failure;
  const std::string call = "Call " + CommandText(command);
  std::string message =
      is_sent ? NoAnswerText(session, call) : call + " did not reach the firmware.";
  const std::string step = failure.step == mira::Step::kNone ? "" : StepName(failure.step);
  if (!step.empty()) message += " It failed at: " + step + ".";
  const std::vector<std::string> lines = session.TakeDiagnostics();
  const CCallingInterface* const calling = FindCallingInterface(session.Mira());
  if (calling != nullptr && !HasUsableClasses(*calling)) {
    // The library's line speaks of a conversion.
    message = call + " was not made. " + kUnusableClasses;
  } else {
    for (const std::string& line : lines) message += " (" + line + ")";
  }
  Error error(kTransportFailed, is_sent ? "no-answer" : "call-not-made", message, target);
  error.step = step;
  if (failure.code_kind == CodeKind::kHresult) {
    error.hresult = static_cast<std::uint32_t>(failure.code);
  }
  return error;
}

}  // namespace

std::string NoAnswerText(const Session& session, const std::string& what) {
  return what + " was sent and brought no answer" +
         (session.IsChanging() ? ": whether it was carried out is unknown." : ".");
}

ExitStatus ExitOf(std::int32_t completion) {
  switch (completion) {
    case -2:
      return kNotSupported;
    case -3:
      return kTransportFailed;
    case -7:
      return kPassword;
    default:
      return kRefused;
  }
}

CCallingInterface* FindCallingInterface(CMiraIntf& mira) {
  constexpr unsigned char kType = 0xDA;
  return dynamic_cast<CCallingInterface*>(mira.GetBIOSObject(kType));
}

bool HasUsableClasses(const CCallingInterface& calling) {
  constexpr std::uint32_t kLargestBitmap = 0x7FFFFFFF;
  return calling.SupportedCommands() <= kLargestBitmap;
}

bool IsAnnounced(CMiraIntf& mira, std::uint16_t cls) {
  CCallingInterface* const calling = FindCallingInterface(mira);
  return calling != nullptr && HasUsableClasses(*calling) && calling->IsCommandSupported(cls);
}

PwdInfo::PWDTYPE KeyType(const PwdInfo& info, bool wants_class10) {
  constexpr std::uint32_t kBoth = PwdInfo::PWD_CLASS9 | PwdInfo::PWD_CLASS10;
  return wants_class10 || (info.installed & kBoth) == PwdInfo::PWD_CLASS10 ? PwdInfo::PWD_CLASS10
                                                                           : PwdInfo::PWD_CLASS9;
}

Key ObtainKey(Session& session, SecretProvider& secrets, bool wants_class10, Check check) {
  CMiraIntf& mira = session.Ready();
  PwdInfo info;
  mira.GetPwdInfo(info);
  CheckAnswered(session, "");
  Key key;
  key.type = KeyType(info, wants_class10);
  const bool is_installed = (info.installed & key.type) != 0;
  if (!is_installed && !secrets.IsGiven("password")) return key;
  const char* const purpose =
      key.type == PwdInfo::PWD_CLASS10 ? "System password" : "Setup (administrator) password";
  auto text = secrets.Get("password", purpose);
  if (!text) {
    throw Error(kPassword, "password-needed", "A password is needed.").With("slot", "password");
  }
  key.text = std::move(*text);
  if (check == Check::kYes && is_installed) SecurityKeyOf(session, key);
  return key;
}

std::uint32_t SecurityKeyOf(Session& session, const Key& key) {
  const std::uint32_t word = session.Ready().ValidatePwd(key.text.str(), key.type);
  CheckAnswered(session, "");
  if (word == CPwdContext::kNoKey) throw KeyError();
  return word;
}

void CheckAnswered(Session& session, const std::string& target) {
  const CallReport& lost = CMiraIntf::GetLastOperation().unanswered;
  if (lost.failure.step == mira::Step::kNone) return;
  throw TransportError(session, {lost.cls, lost.select}, lost, target);
}

bool IsLockedOut(callif::Command command, std::int32_t completion) {
  constexpr std::uint16_t kPasswordClasses[] = {9, 10, 12};
  constexpr std::uint16_t kVerifySelect = 4;
  constexpr std::uint16_t kChangeSelect = 5;
  constexpr std::int32_t kNotVerified = -1;
  return completion == kNotVerified &&
         (command.select == kVerifySelect || command.select == kChangeSelect) &&
         std::count(std::begin(kPasswordClasses), std::end(kPasswordClasses), command.cls) != 0;
}

Error KeyError() {
  const CallReport& call = CMiraIntf::GetLastOperation().call;
  const bool is_locked =
      call.delivery == Delivery::kAnswered && IsLockedOut({call.cls, call.select}, call.completion);
  Error error = is_locked ? Error(kPassword, "not-verified", kLockedOut)
                          : ErrorOf(STATUS_SECURITY_KEY_FAILED);
  if (call.delivery == Delivery::kAnswered) error.completion = call.completion;
  return error;
}

Error CallError(Session& session, callif::Command command, Status status, std::int32_t completion,
                const CallOptions& options) {
  const OperationReport& report = CMiraIntf::GetLastOperation();
  // Behind a question that got no answer, a refusal only says what the call lacked.
  const CallReport& lost = report.unanswered;
  if (lost.failure.step != mira::Step::kNone && status != STATUS_SUCCESS) {
    return TransportError(session, {lost.cls, lost.select}, lost, options.target);
  }
  if (status == STATUS_SECURITY_KEY_FAILED) {
    Error error = KeyError();
    error.target = options.target;
    return error;
  }
  if (status != STATUS_FAILURE) return ErrorOf(status, options.target);
  if (report.failure.step == mira::Step::kRequest && report.call.delivery == Delivery::kNotSent) {
    return Error(kUsage, "request-not-made",
                 "Call " + CommandText(command) + " takes more than argument words.",
                 options.target);
  }
  if (report.call.delivery != Delivery::kAnswered) {
    return TransportError(session, command, report.call, options.target);
  }
  if (callif::IsProbed(command) && completion == kTooLittleRoom) {
    // The answer to the question for its size is what the room was made by.
    Error error(kUnexpected, "answer-damaged",
                "The firmware's answers to call " + CommandText(command) +
                    " contradict each other: the answer is longer than the length that the "
                    "firmware gave for it. One of them arrived cut short or changed.",
                options.target);
    error.completion = completion;
    return error;
  }
  const auto meaning =
      std::find_if(options.meanings.begin(), options.meanings.end(),
                   [completion](const CodeMeaning& m) { return m.code == completion; });
  Error error = meaning != options.meanings.end()
                    ? Error(meaning->exit_status, meaning->name, meaning->message, options.target)
                    : Error(ExitOf(completion), "call-failed",
                            "The firmware answered " + std::to_string(completion) + " to call " +
                                CommandText(command) + ": " + CompletionText(completion),
                            options.target);
  error.completion = completion;
  return error;
}

void Execute(Session& session, callif::Command command, CSimpleTokenData& data,
             const CallOptions& options) {
  static const Key kNoPassword{{}, PwdInfo::PWD_NONE};
  const Key& key = options.key != nullptr ? *options.key : kNoPassword;
  session.CheckCancelled();
  Status status = STATUS_FAILURE;
  try {
    status =
        session.Ready().ExecuteDACI(command.cls, command.select, data, key.text.str(), key.type);
  } catch (const transport::ComError&) {
    throw Error(kUnexpected, "out-of-memory", "The system ran out of memory.", options.target);
  }
  if (status == STATUS_SUCCESS) return;
  throw CallError(session, command, status, data.Res1, options);
}

}  // namespace mira::client
