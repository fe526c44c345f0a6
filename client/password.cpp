#include "client/password.h"

#include "buffers/password_data.h"
#include "callif/password.h"
#include "client/commands.h"
#include "client/snapshot/snapshot.h"

namespace mira::client {
namespace {

constexpr std::uint16_t kStatusSelect = 3;
constexpr std::uint16_t kVerifySelect = 4;
constexpr std::uint16_t kChangeSelect = 5;

constexpr char kInstalled[] = "installed";
constexpr char kNotInstalled[] = "not installed";

constexpr CodeMeaning kMeanings[] = {
    {-1, kPassword, "not-verified", kLockedOut},
    {2, kPassword, "password-wrong",
     "The password is wrong. After several wrong ones the firmware verifies none until the machine "
     "restarts."},
    {3, kInvalidValue, "criteria-not-met",
     "The new password does not meet the firmware's rules: its length may be too short, or "
     "characters of another kind be wanted."},
};

std::string Target(std::uint16_t cls) { return "class-" + std::to_string(cls) + " password"; }

// What keeps a text from being this password, before the firmware is asked.
void CheckLength(const PasswordState& state, const bytes::SecureString& password) {
  if (!password.empty() && password.size() <= state.max_length) return;
  throw Error(
      kPassword, "password-wrong",
      "The password is wrong: it has 1 to " + std::to_string(state.max_length) + " characters.",
      Target(state.cls));
}

bytes::SecureString Ask(Request& request, const char* slot, const std::string& purpose) {
  auto text = request.Secrets().Get(slot, purpose);
  if (text) return std::move(*text);
  throw Error(kPassword, "password-needed", "A password is needed.").With("slot", slot);
}

Json ShowStatus(Request& request) {
  Json list = Json::array();
  for (const PasswordState& state : ReadPasswords(request.GetSession())) {
    list.push_back(ToJson(state));
  }
  return {{"passwords", std::move(list)}};
}

Json Verify(Request& request) {
  const auto cls = static_cast<std::uint16_t>(request.Number("class"));
  const PasswordState state = ReadPasswordState(request.GetSession(), cls);
  if (!state.installed) {
    throw Error(kNotFound, "not-installed", "No " + Target(cls) + " is installed.", Target(cls));
  }
  VerifyPassword(request.GetSession(), state, Ask(request, "password", "Password"));
  return {{"class", cls}, {"right", true}};
}

Json ChangePassword(Request& request) {
  Session& session = request.GetSession();
  const auto cls = static_cast<std::uint16_t>(request.Number("class"));
  const PasswordState state = ReadPasswordState(session, cls);
  const bool removes = request.Flag("remove");
  bytes::SecureString current;
  bytes::SecureString wanted;
  if (state.installed) current = Ask(request, "password", "Current password");
  if (!removes) {
    wanted = Ask(request, "new", "New password");
    if (wanted.empty()) {
      throw Error(kInvalidValue, "empty-password", "The new password is empty.", Target(cls));
    }
  }
  Plan plan = PlanPassword(session, state, current, wanted);
  // A change checks the current password itself; asking beforehand would count a wrong one twice.
  if (state.installed && request.WhatIf()) VerifyPassword(session, state, current);
  return request.Carry(plan);
}

const Argument kPasswordClass = {.name = "class",
                                 .type = Type::kNumber,
                                 .help = "command class that manages the password: 9, 10 or 12",
                                 .required = true,
                                 .choices = {"9", "10", "12"}};

}  // namespace

std::vector<PasswordState> ReadPasswords(Session& session) {
  if (const Snapshot* const kept = session.Kept()) {
    return kept->List(kPasswordsSubject, "passwords", PasswordFromJson);
  }
  PwdInfo info;
  if (!session.Ready().GetPwdInfo(info)) {
    throw Error(kNotSupported, "no-calling-interface", "This PC offers no calling interface.");
  }
  CheckAnswered(session, "passwords");
  const auto state = [&info](std::uint16_t cls, PwdInfo::PWDTYPE bit, std::uint32_t longest,
                             std::uint32_t second) {
    return PasswordState{.cls = cls,
                         .installed = (info.installed & bit) != 0,
                         .max_length = longest,
                         .second_length = second};
  };
  return {state(9, PwdInfo::PWD_CLASS9, info.class9MaxLength, info.class9SecondLength),
          state(10, PwdInfo::PWD_CLASS10, info.class10MaxLength, info.class10SecondLength),
          state(12, PwdInfo::PWD_CLASS12, info.class12MaxLength, info.class12SecondLength)};
}

PasswordState ReadPasswordState(Session& session, std::uint16_t cls) {
  CSimpleTokenData data;
  Execute(session, {cls, kStatusSelect}, data, {.target = Target(cls)});
  return {.cls = cls,
          .installed = (data.Res2 & 0xFF) == 0,
          .max_length = data.Res2 >> 8 & 0xFF,
          .second_length = data.Res2 >> 16 & 0xFF,
          .uses_scan_codes = (data.Res2 >> 24 & 1) == 0};
}

bytes::SecureString AsSent(const bytes::SecureString& text, bool uses_scan_codes) {
  if (!uses_scan_codes) return text;
  bytes::SecureString codes;
  if (!callif::ToScanCodes(text.str(), codes)) {
    throw Error(kInvalidValue, "not-typeable",
                "This firmware takes passwords as keys of a US keyboard, and a character of the "
                "password is on none.");
  }
  return codes;
}

void VerifyPassword(Session& session, const PasswordState& state,
                    const bytes::SecureString& password) {
  CheckLength(state, password);
  CVerifyPwdData data;
  data.MaxPwdLen = state.max_length + 1;
  data.Password = AsSent(password, state.uses_scan_codes).str();
  Execute(session, {state.cls, kVerifySelect}, data,
          {.target = Target(state.cls), .meanings = kMeanings});
}

Plan PlanPassword(Session& session, const PasswordState& state, const bytes::SecureString& current,
                  const bytes::SecureString& wanted) {
  static_cast<void>(session);
  if (wanted.size() > state.max_length) {
    throw Error(
        kInvalidValue, "password-too-long",
        "The new password is longer than " + std::to_string(state.max_length) + " characters.",
        Target(state.cls))
        .With("maxLength", state.max_length);
  }
  if (state.installed) CheckLength(state, current);
  const bytes::SecureString old_text = AsSent(current, state.uses_scan_codes);
  const bytes::SecureString new_text = AsSent(wanted, state.uses_scan_codes);
  const bool removes = wanted.empty();
  const Json before = state.installed ? kInstalled : kNotInstalled;
  const Json after = removes ? kNotInstalled : "a new password";
  const auto read = [cls = state.cls](Session& s) {
    return std::vector<Json>{ReadPasswordState(s, cls).installed ? kInstalled : kNotInstalled};
  };
  Plan plan;
  plan.needs_key = false;
  plan.subject = {{"class", state.cls}};
  plan.steps.push_back(
      {.changes =
           {{.target = Target(state.cls), .before = before, .after = after, .secret = !removes}},
       .read = read,
       .write = [state, old_text, new_text](Session& s, const Key&) {
         CChangePwdData data;
         data.MaxPwdLen = state.max_length;
         data.Password = old_text.str();
         data.NewPassword = new_text.str();
         Execute(s, {state.cls, kChangeSelect}, data,
                 {.target = Target(state.cls), .meanings = kMeanings});
       }});
  return plan;
}

Json ToJson(const PasswordState& state) {
  return {{"class", state.cls},
          {"installed", state.installed},
          {"maxLength", state.max_length},
          {"secondLength", state.second_length}};
}

PasswordState PasswordFromJson(const Json& json) {
  return {.cls = json.at("class"),
          .installed = json.at("installed"),
          .max_length = json.at("maxLength"),
          .second_length = json.at("secondLength")};
}

std::vector<Command> PasswordCommands() {
  return {
      {.name = "password.status",
       .summary = "Show which passwords are installed",
       .run = ShowStatus},
      {.name = "password.verify",
       .summary = "Ask the firmware whether a password is right",
       .arguments = {kPasswordClass},
       .secrets = {"password"},
       .run = Verify},
      {.name = "password.change",
       .summary = "Set, change or remove a password",
       .effect = Effect::kChanges,
       .arguments = {kPasswordClass,
                     {.name = "remove", .type = Type::kFlag, .help = "remove the password"}},
       .secrets = {"password", "new"},
       .run = ChangePassword},
  };
}

}  // namespace mira::client
