#include "console/call.h"

#include <array>

#include "callif/commands.h"
#include "console/commands.h"
#include "console/secret_input.h"

namespace mira::console {
namespace {

struct Arguments {
  std::string cls;
  std::string select;
  std::array<std::string, 4> args;
  std::string key_arg;
  bool class10 = false;
  std::shared_ptr<SecretSource> secret;
};

// A password is asked for where its key has a place and the firmware wants one.
bool WantsPassword(CMiraIntf& mira, const CSimpleTokenData& data, PwdInfo::PWDTYPE type) {
  PwdInfo info;
  return data.KeyArgIndex != 0 && mira.GetPwdInfo(info) && (info.installed & type) != 0;
}

ExitStatus ShowRequest(Context& context, std::uint16_t cls, std::uint16_t select,
                       const CSimpleTokenData& data) {
  const std::uint32_t words[] = {data.Arg1, data.Arg2, data.Arg3, data.Arg4};
  if (context.IsJson()) {
    context.Print({{"whatIf", true},
                   {"class", cls},
                   {"select", select},
                   {"arguments", words},
                   {"keyArgument", data.KeyArgIndex}});
    return kDone;
  }
  std::ostream& out = context.Out();
  out << "class " << cls << " select " << select << '\n';
  for (unsigned i = 0; i < 4; ++i) {
    out << "cbArg" << i + 1 << " : "
        << (data.KeyArgIndex == i + 1 ? "the security key" : Hex(words[i], 8)) << '\n';
  }
  out << "The call was not made.\n";
  return kDone;
}

ExitStatus Call(Context& context, const Arguments& a) {
  constexpr std::uint32_t kLargestWord = 0xFFFF;
  constexpr std::uint32_t kArguments = 4;
  const auto cls = static_cast<std::uint16_t>(ParseNumber(a.cls, "command class", kLargestWord));
  const auto select = static_cast<std::uint16_t>(ParseNumber(a.select, "select", kLargestWord));
  CSimpleTokenData data;
  std::uint32_t* const words[] = {&data.Arg1, &data.Arg2, &data.Arg3, &data.Arg4};
  for (std::size_t i = 0; i < a.args.size(); ++i) {
    if (!a.args[i].empty()) *words[i] = ParseNumber(a.args[i], "argument word");
  }
  if (!a.key_arg.empty()) {
    data.KeyArgIndex = ParseNumber(a.key_arg, "number of an argument word", kArguments, 1);
  }
  CMiraIntf& mira = context.Ready();
  const bool shows = context.GetOptions().what_if;
  if (shows && cls != callif::kUncheckedClass && !IsAnnounced(mira, cls)) {
    throw CallError(context, cls, select, STATUS_NOT_SUPPORTED, 0);
  }
  const PwdInfo::PWDTYPE type = a.class10 ? PwdInfo::PWD_CLASS10 : PwdInfo::PWD_CLASS9;
  bytes::SecureString password;
  if (a.secret->Given() || WantsPassword(mira, data, type)) {
    password = ReadSecret(context, *a.secret, "Password : ");
  }
  if (shows) {
    if (!password.empty() && mira.ValidatePwd(password.str(), type) == CPwdContext::kNoKey) {
      throw CallError(context, cls, select, STATUS_SECURITY_KEY_FAILED, 0);
    }
    return ShowRequest(context, cls, select, data);
  }
  const Status status = mira.ExecuteDACI(cls, select, data, password.str(), type);
  return ReportCall(context, cls, select, status, data);
}

}  // namespace

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

ExitStatus CallExit(Status status, std::int32_t completion) {
  if (status != STATUS_FAILURE) return Explain(status).exit_status;
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

CommandError CallError(Context& context, std::uint16_t cls, std::uint16_t select, Status status,
                       std::int32_t completion) {
  const std::string command = std::to_string(cls) + "/" + std::to_string(select);
  if (status == STATUS_FAILURE && completion != 0) {
    return CommandError(CallExit(status, completion), "call-failed",
                        "Call " + command + " gave completion code " + std::to_string(completion) +
                            ": " + CompletionText(completion),
                        command);
  }
  std::string message = "Call " + command + ": " + Explain(status).meaning;
  for (const std::string& line : context.TakeDiagnostics()) message += " (" + line + ")";
  // A failure without a completion code was none of the firmware's: the request did not fit.
  if (status == STATUS_FAILURE) {
    return CommandError(kUsage, "call-not-made", message, command,
                        "Some calls take a request of their own, which four words cannot fill; "
                        "other commands make them.");
  }
  return CommandError(CallExit(status, completion), Explain(status).name, message, command,
                      Explain(status).hint);
}

ExitStatus ReportCall(Context& context, std::uint16_t cls, std::uint16_t select, Status status,
                      const CSimpleTokenData& data) {
  const bool is_answered = status == STATUS_SUCCESS || (status == STATUS_FAILURE && data.Res1 != 0);
  if (!is_answered) throw CallError(context, cls, select, status, data.Res1);
  const Json document = {{"class", cls},
                         {"select", select},
                         {"results", {data.Res1, data.Res2, data.Res3, data.Res4}},
                         {"completionText", CompletionText(data.Res1)}};
  if (!context.IsJson()) {
    context.Out() << "class " << cls << " select " << select << "\ncbRES1 : " << data.Res1 << "  "
                  << CompletionText(data.Res1) << "\ncbRES2 : " << Hex(data.Res2, 8)
                  << "\ncbRES3 : " << Hex(data.Res3, 8) << "\ncbRES4 : " << Hex(data.Res4, 8)
                  << '\n';
  }
  if (status != STATUS_SUCCESS) {
    return context.Fail(CallError(context, cls, select, status, data.Res1), document);
  }
  if (context.IsJson()) context.Print(document);
  return kDone;
}

void AddCall(CLI::App& app, Command& command) {
  auto arguments = std::make_shared<Arguments>();
  app.add_option("CLASS", arguments->cls, "command class")->required();
  app.add_option("SELECT", arguments->select, "select within the class")->required();
  for (unsigned i = 0; i < 4; ++i) {
    const std::string number = std::to_string(i + 1);
    app.add_option("--arg" + number, arguments->args[i], "argument word " + number);
  }
  app.add_option("--key-arg", arguments->key_arg,
                 "the argument word (1 to 4) that receives the security key");
  app.add_flag("--class10", arguments->class10, "the password is the class-10 one, not class 9's");
  arguments->secret = AddSecretOptions(app);
  app.footer(
      "Numbers are decimal, or hexadecimal with 0x. The call is made as it stands, without "
      "asking:\n"
      "--what-if shows it instead.\n"
      "Examples:\n"
      "  mira call 0 0 --arg1 0x70\n"
      "  mira --sim=locked call 1 0 --arg1 0x70 --arg2 1 --key-arg 3 --password-env SETUP_PW");
  command.Run(app, [arguments](Context& context) { return Call(context, *arguments); });
}

}  // namespace mira::console
