#include <algorithm>

#include "buffers/hdd_pwd_buffer.h"
#include "console/changes.h"
#include "console/commands.h"
#include "console/passwords.h"
#include "console/secret_input.h"

namespace mira::console {
namespace {

constexpr std::uint16_t kClass = 10;
constexpr std::uint16_t kListSelect = 11;
constexpr std::uint16_t kAdminSelect = 12;
constexpr std::uint16_t kVerifySelect = 13;
constexpr std::uint16_t kChangeSelect = 14;

constexpr CodeMeaning kMeanings[] = {
    {1, kNotFound, "no-drive", "The firmware knows no such drive.", "'mira hdd list' lists them."},
    {2, kRefused, "drive-unavailable", "The drive's interface is unavailable.",
     "After several wrong passwords a drive takes none until the machine restarts."},
    {3, kPassword, "password-wrong", "The drive password is wrong.", ""},
    {4, kPassword, "admin-password-wrong", "The setup (administrator) password is wrong.", ""},
    {5, kInvalidValue, "password-malformed", "The new password is malformed.", ""},
    {6, kRefused, "password-stays", "The password cannot be deleted.", ""},
    {7, kNotFound, "drive-absent", "The drive is not present.", ""},
    {8, kRefused, "no-maximum-security", "The drive has no maximum security mode.",
     "Use --security-mode 0."},
};

struct Arguments {
  std::string handle;
  std::uint32_t security_mode = 0;
  std::shared_ptr<SecretSource> secret;
  std::shared_ptr<SecretSource> new_secret;
  std::shared_ptr<SecretSource> admin_secret;
};

using Drives = std::list<std::pair<std::uint8_t, std::string>>;

Drives ListDrives(CMiraIntf& mira) {
  CHDDPwd data;
  const Status status = mira.ExecuteDACI(kClass, kListSelect, data, "", PwdInfo::PWD_NONE);
  ThrowUnlessDone(status, data.Res1, {}, "drives");
  return data.HDDList;
}

ExitStatus List(Context& context) {
  Json list = Json::array();
  Rows table = {{"Handle", "Description"}};
  for (const auto& [handle, description] : ListDrives(context.Ready())) {
    list.push_back({{"handle", handle}, {"description", ToUtf8(description)}});
    table.push_back({Hex(handle, 2), ToUtf8(description)});
  }
  if (context.IsJson()) {
    context.Print({{"drives", list}});
  } else if (list.empty()) {
    context.Out() << "(none)\n";
  } else {
    WriteTable(context.Out(), table);
  }
  return kDone;
}

// One command about one drive: the drive, and the passwords that were given for it.
class DriveCommand {
 public:
  DriveCommand(Context& context, const Arguments& arguments)
      : context_(context), arguments_(arguments), mira_(context.Ready()) {
    constexpr std::uint32_t kLargestHandle = 0xFF;
    data_.HDDHandle = ParseNumber(arguments.handle, "drive handle", kLargestHandle);
    const Drives drives = ListDrives(mira_);
    const auto found = std::find_if(drives.begin(), drives.end(),
                                    [this](const auto& d) { return d.first == data_.HDDHandle; });
    if (found == drives.end()) {
      throw CommandError(kNotFound, "no-drive", "There is no drive " + arguments.handle + ".",
                         arguments.handle, "'mira hdd list' lists them.");
    }
    target_ = "drive " + Hex(found->first, 2) + " (" + ToUtf8(found->second) + ")";
    uses_scan_codes_ = ReadPasswordState(mira_, kClass).uses_scan_codes;
  }

  ExitStatus Verify() {
    ReadCurrent("Drive password : ");
    ReadAdmin();
    Call(kVerifySelect);
    return ReportDone(context_, "The password of " + target_ + " is right.",
                      {{"handle", data_.HDDHandle}, {"right", true}});
  }

  ExitStatus Set() {
    // Without anybody to ask, no current password means that none is set.
    if (arguments_.secret->Given() || context_.IsInteractive()) {
      ReadCurrent("Current drive password (empty: none is set) : ");
    }
    const bytes::SecureString changed =
        ReadSecret(context_, *arguments_.new_secret, "New drive password : ");
    if (!arguments_.new_secret->Given() &&
        ReadSecret(context_, *arguments_.new_secret, "New drive password again : ").str() !=
            changed.str()) {
      throw CommandError(kInvalidValue, "not-repeated", "The two new passwords differ.", target_);
    }
    if (changed.empty()) {
      throw CommandError(kInvalidValue, "empty-password", "The new password is empty.", target_,
                         "'mira hdd clear' removes the password.");
    }
    data_.NewPassword = AsSent(changed, uses_scan_codes_).str();
    data_.ATASecurityMode = arguments_.security_mode;
    return Change("a new password", " was set.");
  }

  ExitStatus Clear() {
    ReadCurrent("Drive password : ");
    return Change("no password", " was removed.");
  }

 private:
  void ReadCurrent(const char* prompt) {
    const bytes::SecureString text = ReadSecret(context_, *arguments_.secret, prompt);
    data_.Password = AsSent(text, uses_scan_codes_).str();
  }

  // The firmware tells whether it wants the setup password, too; one that was given is sent anyway.
  void ReadAdmin() {
    CSimpleTokenData asked;
    asked.Arg1 = data_.HDDHandle;
    const Status status = mira_.ExecuteDACI(kClass, kAdminSelect, asked, "", PwdInfo::PWD_NONE);
    const bool is_needed = status == STATUS_SUCCESS && asked.Res2 != 0;
    if (!is_needed && !arguments_.admin_secret->Given()) return;
    const bytes::SecureString text =
        ReadSecret(context_, *arguments_.admin_secret, "Setup (administrator) password : ");
    data_.AdminPassword = AsSent(text, uses_scan_codes_).str();
  }

  void Call(std::uint16_t select) {
    const Status status = mira_.ExecuteDACI(kClass, select, data_, "", PwdInfo::PWD_NONE);
    ThrowUnlessDone(status, data_.Res1, kMeanings, target_);
  }

  ExitStatus Change(const char* after, const char* done) {
    ReadAdmin();
    // A change checks the current password itself; asking beforehand would count a wrong one twice.
    if (context_.GetOptions().what_if) Call(kVerifySelect);
    const Changes changes = {
        {"password of " + target_, data_.Password.empty() ? "no password" : "a password", after}};
    if (!Approve(context_, changes)) return ReportWhatIf(context_, changes);
    Call(kChangeSelect);
    return ReportDone(
        context_, "The password of " + target_ + done,
        {{"handle", data_.HDDHandle}, {"changed", true}, {"set", !data_.NewPassword.empty()}});
  }

  Context& context_;
  const Arguments& arguments_;
  CMiraIntf& mira_;
  CHDDPwd data_;
  std::string target_;
  bool uses_scan_codes_ = false;
};

std::shared_ptr<Arguments> AddDriveArguments(CLI::App& app) {
  auto arguments = std::make_shared<Arguments>();
  app.add_option("HANDLE", arguments->handle, "the drive's handle, as 'mira hdd list' shows it")
      ->required();
  arguments->secret = AddSecretOptions(app);
  arguments->admin_secret = AddSecretOptions(app, "admin-password");
  return arguments;
}

}  // namespace

void AddHdd(CLI::App& app, Command& command) {
  app.require_subcommand(1);
  app.footer(
      "Passwords are typed at prompts without echo, or come from standard input, a file or an\n"
      "environment variable; never from the command line.\n"
      "Examples:\n  mira hdd list\n  mira hdd verify 0x01\n"
      "  mira --sim=locked hdd clear 1 --password-env DRIVE_PW --admin-password-env SETUP_PW "
      "--yes");

  CLI::App& list = *app.add_subcommand("list", "List the drives that can carry a password");
  list.footer("Example:\n  mira --sim hdd list --json");
  command.Run(list, List);

  CLI::App& verify = *app.add_subcommand("verify", "Ask whether a drive password is right");
  auto arguments = AddDriveArguments(verify);
  verify.footer("Example:\n  mira --sim=locked hdd verify 1");
  command.Run(verify, [arguments](Context& c) { return DriveCommand(c, *arguments).Verify(); });

  CLI::App& set = *app.add_subcommand("set", "Set or change a drive password");
  arguments = AddDriveArguments(set);
  arguments->new_secret = AddSecretOptions(set, "new-password");
  set.add_option("--security-mode", arguments->security_mode,
                 "the drive's security level, 0 or 1; counts without a setup password")
      ->check(CLI::Range(0, 1));
  set.footer("Example:\n  mira --sim hdd set 1 --new-password-env DRIVE_PW --yes");
  command.Run(set, [arguments](Context& c) { return DriveCommand(c, *arguments).Set(); });

  CLI::App& clear = *app.add_subcommand("clear", "Remove a drive password");
  arguments = AddDriveArguments(clear);
  clear.footer("Example:\n  mira --sim=locked hdd clear 1 --what-if");
  command.Run(clear, [arguments](Context& c) { return DriveCommand(c, *arguments).Clear(); });
}

}  // namespace mira::console
