#include "client/call.h"

#include <algorithm>

#include "buffers/bios_data.h"
#include "transport/com_error.h"

namespace mira::client {
namespace {

std::string CommandText(callif::Command command) {
  return std::to_string(command.cls) + "/" + std::to_string(command.select);
}

// A call that the firmware did not answer, or never saw.
Error TransportError(Session& session, callif::Command command, const CallReport& report,
                     const std::string& target) {
  const bool is_sent = report.delivery == Delivery::kNoAnswer;
  const StepResult& failure = report.failure;
  std::string message =
      "Call " + CommandText(command) +
      (is_sent ? " was sent and brought no answer: whether it was carried out is unknown."
               : " did not reach the firmware.");
  const std::string step = failure.step == mira::Step::kNone ? "" : StepName(failure.step);
  if (!step.empty()) message += " It failed at: " + step + ".";
  for (const std::string& line : session.TakeDiagnostics()) message += " (" + line + ")";
  Error error(kTransportFailed, is_sent ? "no-answer" : "call-not-made", message, target);
  error.step = step;
  if (failure.code_kind == CodeKind::kHresult) {
    error.hresult = static_cast<std::uint32_t>(failure.code);
  }
  return error;
}

}  // namespace

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

bool IsAnnounced(CMiraIntf& mira, std::uint16_t cls) {
  constexpr std::uint32_t kLargestBitmap = 0x7FFFFFFF;
  CCallingInterface* const calling = FindCallingInterface(mira);
  return calling != nullptr && calling->SupportedCommands() <= kLargestBitmap &&
         calling->IsCommandSupported(cls);
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
  if (check == Check::kYes && is_installed &&
      mira.ValidatePwd(key.text.str(), key.type) == CPwdContext::kNoKey) {
    throw KeyError();
  }
  return key;
}

void CheckAnswered(Session& session, const std::string& target) {
  const CallReport& lost = CMiraIntf::GetLastOperation().unanswered;
  if (lost.failure.step == mira::Step::kNone) return;
  throw TransportError(session, {lost.cls, lost.select}, lost, target);
}

Error KeyError() {
  constexpr std::uint16_t kVerifySelect = 4;
  constexpr std::int32_t kNotVerified = -1;
  const CallReport& call = CMiraIntf::GetLastOperation().call;
  const bool is_locked = call.select == kVerifySelect && call.delivery == Delivery::kAnswered &&
                         call.completion == kNotVerified;
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
