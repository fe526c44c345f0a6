#include <CLI/CLI.hpp>

#include "buffers/password_data.h"
#include "console/changes.h"
#include "console/commands.h"
#include "console/passwords.h"
#include "console/secret_input.h"

namespace mira::console {
namespace {

constexpr std::uint16_t kVerifySelect = 4;
constexpr std::uint16_t kChangeSelect = 5;

constexpr char kAfterWrongOnes[] =
    "After several wrong passwords firmware verifies none until the machine restarts.";
constexpr CodeMeaning kMeanings[] = {
    {-1, kRefused, "not-verified", "The firmware does not verify the password.", kAfterWrongOnes},
    {2, kPassword, "password-wrong", "The password is wrong.", kAfterWrongOnes},
    {3, kInvalidValue, "criteria-not-met", "The new password does not meet the firmware's rules.",
     "Its length may be too short, or characters of another kind be wanted."},
};

struct Arguments {
  std::uint16_t cls = 0;
  bool remove = false;
  std::shared_ptr<SecretSource> secret;
  std::shared_ptr<SecretSource> new_secret;
};

std::string NameOf(std::uint16_t cls) { return "class-" + std::to_string(cls) + " password"; }

std::string YesNo(bool yes) { return yes ? "yes" : "no"; }

ExitStatus ShowStatus(Context& context) {
  PwdInfo info;
  if (!context.Ready().GetPwdInfo(info)) {
    throw CommandError(kNotSupported, "no-calling-interface",
                       "This PC offers no calling interface.");
  }
  struct Row {
    unsigned cls;
    PwdInfo::PWDTYPE bit;
    std::uint32_t max_length;
    std::uint32_t second_length;
  };
  const Row rows[] = {
      {9, PwdInfo::PWD_CLASS9, info.class9MaxLength, info.class9SecondLength},
      {10, PwdInfo::PWD_CLASS10, info.class10MaxLength, info.class10SecondLength},
      {12, PwdInfo::PWD_CLASS12, info.class12MaxLength, info.class12SecondLength},
  };
  Json list = Json::array();
  Rows table = {{"Class", "Installed", "Longest", "Second length"}};
  for (const Row& row : rows) {
    const bool installed = (info.installed & row.bit) != 0;
    list.push_back({{"class", row.cls},
                    {"installed", installed},
                    {"maxLength", row.max_length},
                    {"secondLength", row.second_length}});
    table.push_back({std::to_string(row.cls), YesNo(installed), std::to_string(row.max_length),
                     std::to_string(row.second_length)});
  }
  if (context.IsJson()) {
    context.Print({{"installed", info.installed}, {"passwords", list}});
  } else {
    WriteTable(context.Out(), table, {0, 2, 3});
  }
  return kDone;
}

// Asks the firmware about a password that is installed.
void Verify(CMiraIntf& mira, std::uint16_t cls, const PasswordState& state,
            const bytes::SecureString& password) {
  if (password.empty() || password.size() > state.max_length) {
    throw CommandError(
        kPassword, "password-wrong",
        "The password is wrong: it has 1 to " + std::to_string(state.max_length) + " characters.",
        NameOf(cls));
  }
  CVerifyPwdData data;
  data.MaxPwdLen = state.max_length + 1;
  data.Password = AsSent(password, state.uses_scan_codes).str();
  const Status status = mira.ExecuteDACI(cls, kVerifySelect, data, "", PwdInfo::PWD_NONE);
  ThrowUnlessDone(status, data.Res1, kMeanings, NameOf(cls));
}

ExitStatus VerifyCommand(Context& context, const Arguments& a) {
  CMiraIntf& mira = context.Ready();
  const PasswordState state = ReadPasswordState(mira, a.cls);
  if (!state.installed) {
    throw CommandError(kNotFound, "not-installed", "No " + NameOf(a.cls) + " is installed.",
                       NameOf(a.cls));
  }
  Verify(mira, a.cls, state, ReadSecret(context, *a.secret, "Password : "));
  return ReportDone(context, "The " + NameOf(a.cls) + " is right.",
                    {{"class", a.cls}, {"right", true}});
}

bytes::SecureString ReadNewPassword(Context& context, const Arguments& a,
                                    const PasswordState& state) {
  bytes::SecureString password = ReadSecret(context, *a.new_secret, "New password : ");
  if (!a.new_secret->Given() &&
      ReadSecret(context, *a.new_secret, "New password again : ").str() != password.str()) {
    throw CommandError(kInvalidValue, "not-repeated", "The two new passwords differ.");
  }
  if (password.empty()) {
    throw CommandError(kInvalidValue, "empty-password", "The new password is empty.", NameOf(a.cls),
                       "--remove removes the password.");
  }
  if (password.size() > state.max_length) {
    throw CommandError(
        kInvalidValue, "password-too-long",
        "The new password is longer than " + std::to_string(state.max_length) + " characters.",
        NameOf(a.cls));
  }
  return password;
}

ExitStatus ChangeCommand(Context& context, const Arguments& a) {
  CMiraIntf& mira = context.Ready();
  const PasswordState state = ReadPasswordState(mira, a.cls);
  if (a.remove && !state.installed) {
    return ReportDone(context, "No " + NameOf(a.cls) + " is installed.",
                      {{"class", a.cls}, {"changed", false}, {"installed", false}});
  }
  bytes::SecureString current;
  if (state.installed) current = ReadSecret(context, *a.secret, "Current password : ");
  bytes::SecureString changed;
  if (!a.remove) changed = ReadNewPassword(context, a, state);

  CChangePwdData data;
  data.MaxPwdLen = state.max_length + 1;
  data.Password = AsSent(current, state.uses_scan_codes).str();
  data.NewPassword = AsSent(changed, state.uses_scan_codes).str();
  // A change checks the current password itself; asking beforehand would count a wrong one twice.
  if (state.installed && context.GetOptions().what_if) Verify(mira, a.cls, state, current);
  const Changes changes = {{NameOf(a.cls), state.installed ? "installed" : "not installed",
                            a.remove ? "not installed" : "a new password"}};
  if (!Approve(context, changes)) return ReportWhatIf(context, changes);
  if (current.size() > state.max_length) Verify(mira, a.cls, state, current);
  const Status status = mira.ExecuteDACI(a.cls, kChangeSelect, data, "", PwdInfo::PWD_NONE);
  ThrowUnlessDone(status, data.Res1, kMeanings, NameOf(a.cls));
  return ReportDone(context,
                    "The " + NameOf(a.cls) + (a.remove ? " was removed." : " was changed."),
                    {{"class", a.cls}, {"changed", true}, {"installed", !a.remove}});
}

void AddClassOption(CLI::App& app, Arguments& arguments) {
  app.add_option("--class", arguments.cls, "the command class that manages it: 9, 10 or 12")
      ->required()
      ->check(CLI::IsMember({9, 10, 12}));
}

}  // namespace

void AddPassword(CLI::App& app, Command& command) {
  app.require_subcommand(1);
  app.footer(
      "A password is typed at a prompt without echo, or comes from standard input, a file or an\n"
      "environment variable; never from the command line.\n"
      "Examples:\n  mira password status\n  mira password verify --class 9\n"
      "  mira --sim=locked password verify --class 10 --password-env SYSTEM_PW\n"
      "  mira password change --class 9 --password-file old.txt --new-password-file new.txt --yes");

  CLI::App& status = *app.add_subcommand("status", "Show which passwords are installed");
  status.footer("Example:\n  mira --sim=locked password status --json");
  command.Run(status, ShowStatus);

  const auto verify_arguments = std::make_shared<Arguments>();
  CLI::App& verify = *app.add_subcommand("verify", "Ask the firmware whether a password is right");
  AddClassOption(verify, *verify_arguments);
  verify_arguments->secret = AddSecretOptions(verify);
  verify.footer("Example:\n  mira --sim=locked password verify --class 9");
  command.Run(verify,
              [verify_arguments](Context& c) { return VerifyCommand(c, *verify_arguments); });

  const auto change_arguments = std::make_shared<Arguments>();
  CLI::App& change = *app.add_subcommand("change", "Set, change or remove a password");
  AddClassOption(change, *change_arguments);
  change.add_flag("--remove", change_arguments->remove, "remove the password");
  change_arguments->secret = AddSecretOptions(change);
  change_arguments->new_secret = AddSecretOptions(change, "new-password");
  change.footer(
      "Example:\n"
      "  mira --sim=locked password change --class 9 --password-env OLD --new-password-env NEW "
      "--yes");
  command.Run(change,
              [change_arguments](Context& c) { return ChangeCommand(c, *change_arguments); });
}

}  // namespace mira::console
