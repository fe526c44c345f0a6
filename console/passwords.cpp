#include "console/passwords.h"

#include "callif/password.h"
#include "console/call.h"

namespace mira::console {

PasswordState ReadPasswordState(CMiraIntf& mira, std::uint16_t cls) {
  constexpr std::uint16_t kStatus = 3;
  CSimpleTokenData data;
  const Status status = mira.ExecuteDACI(cls, kStatus, data, "", PwdInfo::PWD_NONE);
  ThrowUnlessDone(status, data.Res1, {}, "class " + std::to_string(cls));
  return {.installed = (data.Res2 & 0xFF) == 0,
          .max_length = data.Res2 >> 8 & 0xFF,
          .uses_scan_codes = (data.Res2 >> 24 & 1) == 0};
}

bytes::SecureString AsSent(const bytes::SecureString& text, bool uses_scan_codes) {
  if (!uses_scan_codes) return text;
  bytes::SecureString codes;
  if (!callif::ToScanCodes(text.str(), codes)) {
    throw CommandError(kInvalidValue, "not-typeable",
                       "This firmware takes passwords as keys of a US keyboard, and a character of "
                       "the password is on none.");
  }
  return codes;
}

void ThrowUnlessDone(Status status, std::int32_t completion, std::span<const CodeMeaning> meanings,
                     const std::string& target) {
  if (status == STATUS_SUCCESS) return;
  if (status == STATUS_FAILURE) {
    for (const CodeMeaning& meaning : meanings) {
      if (meaning.code != completion) continue;
      throw CommandError(meaning.exit_status, meaning.name, meaning.message, target, meaning.hint);
    }
    if (completion == 0) {
      throw CommandError(kUnexpected, "call-not-made",
                         "The library could not make the call of this machine's data.", target,
                         "'mira info' and 'mira tokens' show what the machine says of itself.");
    }
    throw CommandError(
        CallExit(status, completion), "call-failed",
        "The firmware answered " + std::to_string(completion) + ": " + CompletionText(completion),
        target);
  }
  const StatusText& text = Explain(status);
  throw CommandError(text.exit_status, text.name, text.meaning, target, text.hint);
}

ExitStatus ReportDone(Context& context, const std::string& sentence, const Json& document) {
  if (context.IsJson()) {
    context.Print(document);
  } else {
    context.Out() << sentence << '\n';
  }
  return kDone;
}

}  // namespace mira::console
