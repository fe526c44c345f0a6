#include "client/drive.h"

#include <algorithm>

#include "buffers/hdd_pwd_buffer.h"
#include "bytes/text.h"
#include "client/commands.h"
#include "client/password.h"
#include "client/snapshot/snapshot.h"

namespace mira::client {
namespace {

constexpr std::uint16_t kDriveClass = 10;
constexpr std::uint16_t kListSelect = 11;
constexpr std::uint16_t kSetupSelect = 12;
constexpr std::uint16_t kDriveVerify = 13;
constexpr std::uint16_t kDriveChange = 14;

constexpr CodeMeaning kDriveMeanings[] = {
    {1, kNotFound, "no-drive", "The firmware does not know this drive."},
    {2, kRefused, "drive-unavailable",
     "The drive's interface is unavailable. After several wrong passwords a drive takes none until "
     "the machine restarts."},
    {3, kPassword, "password-wrong", "The drive password is wrong."},
    {4, kPassword, "setup-password-wrong", "The setup (administrator) password is wrong."},
    {5, kInvalidValue, "password-malformed", "The new password is malformed."},
    {6, kRefused, "password-stays", "The password cannot be deleted."},
    {7, kNotFound, "drive-absent", "The drive is not present."},
    {8, kRefused, "no-maximum-security", "The drive has no maximum security mode."},
};

std::string HandleText(std::uint8_t handle) { return "0x" + bytes::HexNumber(handle, 2); }

std::string DriveTarget(const Drive& drive) {
  return "drive " + HandleText(drive.handle) + " (" + ToUtf8(drive.description) + ")";
}

Drive FindDrive(Session& session, std::uint64_t handle) {
  const std::vector<Drive> drives = ReadDrives(session);
  const auto found = std::find_if(drives.begin(), drives.end(),
                                  [handle](const Drive& d) { return d.handle == handle; });
  if (found != drives.end()) return *found;
  Json handles = Json::array();
  for (const Drive& drive : drives) handles.push_back(drive.handle);
  throw Error(kNotFound, "no-drive", "There is no drive " + std::to_string(handle) + ".",
              std::to_string(handle))
      .With("known", std::move(handles));
}

void Fill(Session& session, const Drive& drive, const DrivePasswords& passwords, CHDDPwd& data) {
  const bool uses_scan_codes = ReadPasswordState(session, kDriveClass).uses_scan_codes;
  data.HDDHandle = drive.handle;
  data.Password = AsSent(passwords.current, uses_scan_codes).str();
  data.NewPassword = AsSent(passwords.wanted, uses_scan_codes).str();
  data.AdminPassword = AsSent(passwords.setup, uses_scan_codes).str();
  data.ATASecurityMode = passwords.security_mode;
}

bytes::SecureString AskForDrive(Request& request, const char* slot, const char* purpose) {
  auto text = request.Secrets().Get(slot, purpose);
  if (text) return std::move(*text);
  throw Error(kPassword, "password-needed", "A password is needed.").With("slot", slot);
}

// One that was given is sent whether the firmware wants it or not.
bytes::SecureString AskForSetup(Request& request, const Drive& drive) {
  if (!request.Secrets().IsGiven("setup") && !WantsSetupPassword(request.GetSession(), drive)) {
    return {};
  }
  return AskForDrive(request, "setup", "Setup (administrator) password");
}

Json ListDrives(Request& request) {
  Json list = Json::array();
  for (const Drive& drive : ReadDrives(request.GetSession())) list.push_back(ToJson(drive));
  return {{"drives", std::move(list)}};
}

Json VerifyDrivePassword(Request& request) {
  const Drive drive = FindDrive(request.GetSession(), request.Number("handle"));
  DrivePasswords passwords;
  passwords.current = AskForDrive(request, "password", "Drive password");
  passwords.setup = AskForSetup(request, drive);
  VerifyDrivePassword(request.GetSession(), drive, passwords);
  return {{"handle", drive.handle}, {"right", true}};
}

Json CarryDrive(Request& request, const Drive& drive, const DrivePasswords& passwords) {
  Session& session = request.GetSession();
  Plan plan = PlanDrivePassword(session, drive, passwords);
  // A change checks the current password itself; asking beforehand would count a wrong one twice.
  if (request.WhatIf()) VerifyDrivePassword(session, drive, passwords);
  return request.Carry(plan);
}

Json SetDrivePassword(Request& request) {
  const Drive drive = FindDrive(request.GetSession(), request.Number("handle"));
  DrivePasswords passwords;
  // Without anybody to ask, no current password means that none is set.
  SecretProvider& secrets = request.Secrets();
  if (secrets.IsGiven("password") || secrets.CanAsk()) {
    passwords.current =
        AskForDrive(request, "password", "Current drive password (empty: none is set)");
  }
  passwords.wanted = AskForDrive(request, "new", "New drive password");
  if (passwords.wanted.empty()) {
    throw Error(kInvalidValue, "empty-password", "The new password is empty.", DriveTarget(drive));
  }
  passwords.security_mode = static_cast<std::uint32_t>(request.Number("securityMode"));
  passwords.setup = AskForSetup(request, drive);
  return CarryDrive(request, drive, passwords);
}

Json Clear(Request& request) {
  const Drive drive = FindDrive(request.GetSession(), request.Number("handle"));
  DrivePasswords passwords;
  passwords.current = AskForDrive(request, "password", "Drive password");
  passwords.setup = AskForSetup(request, drive);
  return CarryDrive(request, drive, passwords);
}

const Argument kHandle = {.name = "handle",
                          .type = Type::kNumber,
                          .help = "handle of the drive, as the list shows it",
                          .required = true,
                          .positional = true,
                          .max = 0xFF};

}  // namespace

std::vector<Drive> ReadDrives(Session& session) {
  if (const Snapshot* const kept = session.Kept()) {
    return kept->List(kDrivesSubject, "drives", DriveFromJson);
  }
  CHDDPwd data;
  Execute(session, {kDriveClass, kListSelect}, data, {.target = "drives"});
  std::vector<Drive> drives;
  for (const auto& [handle, description] : data.HDDList) drives.push_back({handle, description});
  return drives;
}

Json ToJson(const Drive& drive) {
  return {{"handle", drive.handle}, {"description", TextJson(drive.description)}};
}

Drive DriveFromJson(const Json& json) {
  return {.handle = json.at("handle"), .description = TextFromJson(json.at("description"))};
}

bool WantsSetupPassword(Session& session, const Drive& drive) {
  CSimpleTokenData data;
  data.Arg1 = drive.handle;
  const Status status =
      session.Ready().ExecuteDACI(kDriveClass, kSetupSelect, data, "", PwdInfo::PWD_NONE);
  return status == STATUS_SUCCESS && data.Res2 != 0;
}

void VerifyDrivePassword(Session& session, const Drive& drive, const DrivePasswords& passwords) {
  CHDDPwd data;
  Fill(session, drive, passwords, data);
  Execute(session, {kDriveClass, kDriveVerify}, data,
          {.target = DriveTarget(drive), .meanings = kDriveMeanings});
}

Plan PlanDrivePassword(Session& session, const Drive& drive, const DrivePasswords& passwords) {
  CHDDPwd data;
  Fill(session, drive, passwords, data);
  Plan plan;
  plan.needs_key = false;
  plan.subject = {{"handle", drive.handle}};
  plan.steps.push_back(
      {.changes = {{.target = "password of " + DriveTarget(drive),
                    .before = passwords.current.empty() ? "no password" : "a password",
                    .after = passwords.wanted.empty() ? "no password" : "a new password",
                    .secret = true}},
       // The firmware does not say whether a drive has a password, and trying one locks out.
       .write = [drive, data](Session& s, const Key&) {
         CHDDPwd request = data;
         Execute(s, {kDriveClass, kDriveChange}, request,
                 {.target = DriveTarget(drive), .meanings = kDriveMeanings});
       }});
  return plan;
}

std::vector<Command> DriveCommands() {
  return {
      {.name = "hdd.list",
       .summary = "List the drives that can carry a password",
       .run = ListDrives},
      {.name = "hdd.verify",
       .summary = "Ask whether a drive password is right",
       .arguments = {kHandle},
       .secrets = {"password", "setup"},
       .run = VerifyDrivePassword},
      {.name = "hdd.set",
       .summary = "Set or change a drive password",
       .effect = Effect::kChanges,
       .arguments = {kHandle,
                     {.name = "securityMode",
                      .type = Type::kNumber,
                      .help =
                          "security level of the drive, 0 or 1; counts without a setup password",
                      .max = 1}},
       .secrets = {"password", "setup", "new"},
       .run = SetDrivePassword},
      {.name = "hdd.clear",
       .summary = "Remove a drive password",
       .effect = Effect::kChanges,
       .arguments = {kHandle},
       .secrets = {"password", "setup"},
       .run = Clear},
  };
}

}  // namespace mira::client
