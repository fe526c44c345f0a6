#include "console/call.h"

#include <array>

#include "console/commands.h"
#include "console/secret_input.h"

namespace mira::console {
namespace {

struct Arguments {
  std::string cls;
  std::string select;
  std::array<std::string, 4> args;
  unsigned key_arg = 0;
  bool class10 = false;
  std::shared_ptr<SecretSource> secret;
};

ExitStatus Call(Context& context, const Arguments& a) {
  constexpr std::uint32_t kLargestWord = 0xFFFF;
  const auto cls = static_cast<std::uint16_t>(ParseNumber(a.cls, "command class", kLargestWord));
  const auto select = static_cast<std::uint16_t>(ParseNumber(a.select, "select", kLargestWord));
  CSimpleTokenData data;
  std::uint32_t* const words[] = {&data.Arg1, &data.Arg2, &data.Arg3, &data.Arg4};
  for (std::size_t i = 0; i < a.args.size(); ++i) {
    if (!a.args[i].empty()) *words[i] = ParseNumber(a.args[i], "argument word");
  }
  data.KeyArgIndex = a.key_arg;

  CMiraIntf& mira = context.Ready();
  bytes::SecureString password;
  if (a.secret->Given() || a.key_arg != 0) password = ReadSecret(context, *a.secret, "Password : ");
  const Status status = mira.ExecuteDACI(cls, select, data, password.str(),
                                         a.class10 ? PwdInfo::PWD_CLASS10 : PwdInfo::PWD_CLASS9);
  return ReportCall(context, cls, select, status, data);
}

}  // namespace

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

ExitStatus ReportCall(Context& context, std::uint16_t cls, std::uint16_t select, Status status,
                      const CSimpleTokenData& data) {
  const ExitStatus exit_status = CallExit(status, data.Res1);
  const std::string command = std::to_string(cls) + "/" + std::to_string(select);
  // Without an answer there are no result words to show.
  if (status != STATUS_SUCCESS && status != STATUS_FAILURE) {
    const StatusText text = Explain(status);
    throw CommandError(exit_status, text.name, "Call " + command + ": " + text.meaning, command,
                       text.hint);
  }
  const std::string text = CompletionText(data.Res1);
  if (context.IsJson()) {
    Json document = {{"class", cls},
                     {"select", select},
                     {"completion", data.Res1},
                     {"completionText", text},
                     {"results", {data.Res2, data.Res3, data.Res4}}};
    if (status != STATUS_SUCCESS) {
      document["error"] = {{"code", static_cast<int>(exit_status)},
                           {"name", "call-failed"},
                           {"message", text},
                           {"target", command},
                           {"hint", ""}};
    }
    context.Print(document);
    return exit_status;
  }
  context.Out() << "class " << cls << " select " << select << "\ncbRES1 : " << data.Res1 << "  "
                << text << "\ncbRES2 : " << Hex(data.Res2, 8) << "\ncbRES3 : " << Hex(data.Res3, 8)
                << "\ncbRES4 : " << Hex(data.Res4, 8) << '\n';
  return exit_status;
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
                 "the argument word (1 to 4) that receives the security key")
      ->check(CLI::Range(1, 4));
  app.add_flag("--class10", arguments->class10, "the password is the class-10 one, not class 9's");
  arguments->secret = AddSecretOptions(app);
  app.footer(
      "Numbers are decimal, or hexadecimal with 0x.\n"
      "Examples:\n  mira call 0 0 --arg1 0x70\n"
      "  mira --sim call 1 0 --arg1 0x70 --arg2 1 --key-arg 3 --password-env SETUP_PW");
  command.Run(app, [arguments](Context& context) { return Call(context, *arguments); });
}

}  // namespace mira::console
