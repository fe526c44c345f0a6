// Passwords and what they open: status, keys, lock-out, drives, pre-boot users.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "buffers/hdd_pwd_buffer.h"
#include "buffers/password_data.h"
#include "tests/support/console_program.h"
#include "tests/support/host.h"

namespace mira {
namespace {

using test::Document;
using test::Host;
using test::Mira;
using test::TemporaryFile;
using Calls = std::vector<std::pair<int, int>>;

constexpr unsigned kNoKey = 0xFFFFFFFF;

const Calls kStatusCalls = {{10, 3}, {9, 3}, {12, 3}};

sim::Profile WithPasswords(const std::string& class9, const std::string& class10,
                           const std::string& class12 = "") {
  sim::Profile profile;
  profile.class9 = {.text = class9, .max_length = 10, .min_length = 4};
  profile.class10 = {.text = class10, .max_length = 20, .min_length = 5};
  profile.class12 = {.text = class12, .max_length = 30, .min_length = 6};
  return profile;
}

TEST(PasswordInfo, ReportsWhatIsInstalled) {
  struct Case {
    const char* class9;
    const char* class10;
    const char* class12;
    std::uint32_t installed;
  };
  const Case cases[] = {{"", "", "", 0},
                        {"nine", "", "", 1},
                        {"", "ten10", "", 2},
                        {"nine", "ten10", "", 3},
                        {"", "", "twelve", 8},
                        {"nine", "", "twelve", 9},
                        {"", "ten10", "twelve", 10},
                        {"nine", "ten10", "twelve", 11}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.installed);
    Host host(WithPasswords(c.class9, c.class10, c.class12));
    PwdInfo info;
    info.installed = 0xFF;
    EXPECT_TRUE(host->GetPwdInfo(info));
    EXPECT_EQ(info.installed, c.installed);
    const std::uint32_t lengths[] = {info.class9SecondLength,  info.class9MaxLength,
                                     info.class10SecondLength, info.class10MaxLength,
                                     info.class12SecondLength, info.class12MaxLength};
    EXPECT_EQ(testing::PrintToString(lengths), "{ 4, 10, 5, 20, 6, 30 }");
    EXPECT_EQ(host.Calls(), kStatusCalls);
  }
}

TEST(PasswordInfo, TakesAFailedStatusForNotInstalled) {
  Host host(WithPasswords("nine", "ten10", "twelve"));
  host.machine().GetFaults().Add({.operation = "firmware 10/3", .nth = 0, .completion = -1});
  PwdInfo info;
  EXPECT_TRUE(host->GetPwdInfo(info));
  EXPECT_EQ(info.installed, 9u);
  EXPECT_EQ(info.class10MaxLength, 0u);
  EXPECT_EQ(host->ValidatePwd("ten10", PwdInfo::PWD_CLASS10), 0u);

  host.machine().GetFaults().Add({.operation = "firmware", .nth = 0, .completion = -1});
  EXPECT_TRUE(host->GetPwdInfo(info)) << "also when no status can be read";
  EXPECT_EQ(info.installed, 0u);
  EXPECT_EQ(info.class9MaxLength, 0u);

  Host without(*sim::FindProfile("no-calling-interface"));
  info.installed = 5;
  EXPECT_FALSE(without->GetPwdInfo(info));
  EXPECT_EQ(info.installed, 0u);
  EXPECT_EQ(without->ValidatePwd("nine", PwdInfo::PWD_CLASS9), 0u);
}

TEST(PasswordKey, IsGivenForTheRightPasswordAlone) {
  enum Answer { kZero, kNone, kKey };
  struct Case {
    const char* what;
    const char* text;
    PwdInfo::PWDTYPE type;
    Answer answer;
    bool verified;
  };
  const Case cases[] = {
      {"right", "tencharact", PwdInfo::PWD_CLASS9, kKey, true},
      {"wrong, as long as it may be", "TENCHARACT", PwdInfo::PWD_CLASS9, kNone, true},
      {"one character too long", "tencharacte", PwdInfo::PWD_CLASS9, kNone, false},
      {"empty", "", PwdInfo::PWD_CLASS9, kNone, false},
      {"not installed", "anything", PwdInfo::PWD_CLASS10, kZero, false},
      {"not installed, empty", "", PwdInfo::PWD_CLASS10, kZero, false},
      {"none for class 12", "twelve", PwdInfo::PWD_CLASS12, kZero, false},
      {"no type", "tencharact", PwdInfo::PWD_NONE, kZero, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Host host(WithPasswords("tencharact", "", "twelve"));
    const unsigned key = host->ValidatePwd(c.text, c.type);
    EXPECT_EQ(key == 0 ? kZero : key == kNoKey ? kNone : kKey, c.answer);
    const Calls calls = host.Calls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), std::pair(9, 4)), c.verified ? 1 : 0);
  }
}

TEST(PasswordKey, GoesWhereTheRequestSaysAndIsNeeded) {
  Host host(WithPasswords("nine", "ten10"));
  CSimpleTokenData write;
  write.Arg1 = 0x70;
  write.Arg2 = 5;
  write.KeyArgIndex = 3;
  EXPECT_EQ(host->ExecuteDACI(1, 0, write, "", PwdInfo::PWD_NONE), STATUS_FAILURE);
  EXPECT_EQ(write.Res1, -7);
  const std::size_t first = host.machine().Journal().size();
  EXPECT_EQ(host->ExecuteDACI(1, 0, write, "nine", PwdInfo::PWD_CLASS9), STATUS_SUCCESS);
  EXPECT_EQ(host.Calls(first), (Calls{{10, 3}, {9, 3}, {12, 3}, {9, 4}, {1, 0}}));
  EXPECT_TRUE(host.machine().Journal().back().masked[2]) << "no key stands in the journal";
  EXPECT_EQ(host->ExecuteDACI(1, 0, write, "ten10", PwdInfo::PWD_CLASS10), STATUS_SUCCESS);

  const std::size_t before = host.machine().Journal().size();
  EXPECT_EQ(host->ExecuteDACI(1, 0, write, "ten10", PwdInfo::PWD_CLASS9),
            STATUS_SECURITY_KEY_FAILED);
  EXPECT_EQ(host.Calls(before), (Calls{{10, 3}, {9, 3}, {12, 3}, {9, 4}}));
  EXPECT_EQ(host->ExecuteDACI(1, 0, write, std::string(11, 'x'), PwdInfo::PWD_CLASS9),
            STATUS_SECURITY_KEY_FAILED);
  EXPECT_EQ(host.diagnostics(), "");
}

TEST(PasswordKey, IsSentInScanCodesWhereTheFirmwareTakesThem) {
  // The keys of A, b and 1: whoever types "a", "B" and "!" presses the same ones.
  sim::Profile profile = WithPasswords("\x1E\x30\x02", "");
  profile.passwords_are_scan_codes = true;
  Host host(profile);
  EXPECT_NE(host->ValidatePwd("Ab1", PwdInfo::PWD_CLASS9), kNoKey);
  EXPECT_NE(host->ValidatePwd("aB!", PwdInfo::PWD_CLASS9), kNoKey);
  EXPECT_EQ(host->ValidatePwd("\x1E\x30\x02", PwdInfo::PWD_CLASS9), kNoKey);
  const std::size_t before = host.machine().Journal().size();
  EXPECT_EQ(host->ValidatePwd("caf\xE9", PwdInfo::PWD_CLASS9), kNoKey);
  EXPECT_EQ(host.Calls(before), kStatusCalls) << "what no key types is never sent";
}

TEST(Passwords, LockAfterWrongOnesUntilTheRestart) {
  Host host(WithPasswords("nine", ""));
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(host->ValidatePwd("wrong", PwdInfo::PWD_CLASS9), kNoKey);
  }
  EXPECT_EQ(host->ValidatePwd("nine", PwdInfo::PWD_CLASS9), kNoKey);
  host.machine().Reboot();
  EXPECT_NE(host->ValidatePwd("nine", PwdInfo::PWD_CLASS9), kNoKey);
}

TEST(Passwords, AreChangedByTheFirmwaresRules) {
  struct Case {
    std::uint16_t cls;
    const char* old_text;
    const char* new_text;
    std::uint32_t field;
    Status status;
    std::int32_t completion;
  };
  const Case cases[] = {
      {9, "nine", "newer", 10, STATUS_SUCCESS, 0},
      {9, "nine", "ten letter", 10, STATUS_SUCCESS, 0},
      {9, "wrong", "newer", 10, STATUS_FAILURE, 2},
      {9, "nine", "new", 10, STATUS_FAILURE, 3},
      {9, "nine", "", 10, STATUS_SUCCESS, 0},
      {10, "", "first", 20, STATUS_SUCCESS, 0},
      {12, "twelve", "thirteen", 30, STATUS_SUCCESS, 0},
      {9, "nine", "newer", 5, STATUS_SUCCESS, 0},        // fields as the record's length says
      {9, "nine", "newer", 4, STATUS_NOT_SUPPORTED, 0},  // the new one would leave its field
      {9, "nine", "newer", 65537, STATUS_NOT_SUPPORTED, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.cls << " " << c.old_text << " " << c.new_text);
    Host host(WithPasswords("nine", "", "twelve"));
    CChangePwdData change;
    change.MaxPwdLen = c.field;
    change.Password = c.old_text;
    change.NewPassword = c.new_text;
    EXPECT_EQ(host->ExecuteDACI(c.cls, 5, change, "", PwdInfo::PWD_NONE), c.status);
    EXPECT_EQ(change.Res1, c.completion);
    EXPECT_EQ(host.Calls().size(), c.status == STATUS_NOT_SUPPORTED ? 0u : 1u);
    if (c.status != STATUS_SUCCESS || *c.new_text == '\0') continue;
    CVerifyPwdData verify;
    verify.MaxPwdLen = c.field + 1;
    verify.Password = c.new_text;
    EXPECT_EQ(host->ExecuteDACI(c.cls, 4, verify, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  }
}

TEST(Passwords, MayBothBeAsLongAsTheLongest) {
  const std::string longest = "ten letter";
  Host host(WithPasswords(longest, ""));
  CChangePwdData change;
  change.MaxPwdLen = 10;
  change.Password = longest;
  change.NewPassword = "LETTER ten";
  EXPECT_EQ(host->ExecuteDACI(9, 5, change, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  EXPECT_EQ(host->ValidatePwd(longest, PwdInfo::PWD_CLASS9), kNoKey);
  EXPECT_NE(host->ValidatePwd("LETTER ten", PwdInfo::PWD_CLASS9), kNoKey);
  change.Password = "LETTER ten";
  change.NewPassword = "";
  EXPECT_EQ(host->ExecuteDACI(9, 5, change, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  EXPECT_EQ(host->ValidatePwd("any", PwdInfo::PWD_CLASS9), 0u) << "removed";
}

TEST(Drives, AreListedAndOpenedAsTheFirmwareSays) {
  sim::Profile profile;
  profile.drives = {{0x01, "A", "first"},
                    {0x82, "B"},
                    {0x03, "C", "third", /*present=*/false},
                    {0x04, "D", "fourth", true, /*answers=*/false},
                    {0x05, "E", "fifth", true, true, /*can_clear=*/false},
                    {0x06, "F", "", true, true, true, /*has_maximum_security=*/false}};
  Host host(profile);
  CHDDPwd list;
  ASSERT_EQ(host->ExecuteDACI(10, 28, list, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  ASSERT_EQ(list.HDDList.size(), 6u);
  EXPECT_EQ(list.HDDList.front(), std::pair(std::uint8_t{1}, std::string("A")));

  struct Case {
    std::uint16_t select;
    std::uint32_t handle;
    const char* current;
    const char* changed;
    std::uint32_t mode;
    std::int32_t completion;
  };
  const Case cases[] = {
      {13, 1, "first", "", 0, 0},
      {13, 1, "wrong", "", 0, 3},
      {30, 1, "wrong", "", 0, 3},
      {13, 9, "first", "", 0, 1},
      {13, 3, "third", "", 0, 7},
      {13, 4, "fourth", "", 0, 2},
      {14, 0x82, "", "second", 1, 0},
      {14, 0x82, "", "", 0, 6},
      {31, 1, "first", "", 0, 0},
      {14, 5, "fifth", "", 0, 6},
      {14, 6, "", "sixth", 1, 8},
      {14, 6, "", "sixth", 0, 0},
      {14, 1, "wrong", "another", 0, 3},
      {14, 1, "first", "a password of more than 32 characters", 0, 5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.select << " " << c.handle << " " << c.changed);
    Host fresh(profile);
    CHDDPwd data;
    data.HDDHandle = c.handle;
    data.Password = c.current;
    data.NewPassword = c.changed;
    data.ATASecurityMode = c.mode;
    EXPECT_EQ(fresh->ExecuteDACI(10, c.select, data, "", PwdInfo::PWD_NONE),
              c.completion == 0 ? STATUS_SUCCESS : STATUS_FAILURE);
    EXPECT_EQ(data.Res1, c.completion);
  }

  // Where a setup password is installed, a drive wants it, too.
  profile.class9.text = "setup1";
  Host guarded(profile);
  CHDDPwd data;
  data.HDDHandle = 1;
  data.Password = "first";
  EXPECT_EQ(guarded->ExecuteDACI(10, 13, data, "", PwdInfo::PWD_NONE), STATUS_FAILURE);
  EXPECT_EQ(data.Res1, 4);
  data.AdminPassword = "setup1";
  EXPECT_EQ(guarded->ExecuteDACI(10, 13, data, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
}

TEST(PasswordCommand, ShowsVerifiesAndChanges) {
  const nlohmann::json status = Document(Mira({"--sim=locked", "password", "status", "--json"}));
  EXPECT_EQ(
      status["passwords"][1],
      nlohmann::json({{"class", 10}, {"installed", true}, {"maxLength", 32}, {"secondLength", 4}}));

  const TemporaryFile good("setup1\n");
  const TemporaryFile fresh("brandnew");
  const TemporaryFile marked("\xEF\xBB\xBFsetup1\r\n");
  const TemporaryFile both("setup1\nbrandnew\n");
  struct Case {
    std::vector<std::string> arguments;
    const char* input;
    int status;
    const char* said;
  };
  const Case cases[] = {
      {{"password", "verify", "--class", "9", "--password-stdin"}, "setup1\n", 0, "is right"},
      {{"password", "verify", "--class", "9", "--password-stdin"}, "nope\n", 5, "is wrong"},
      {{"password", "verify", "--class", "9", "--password-stdin"}, "", 5, "could be read"},
      {{"password", "verify", "--class", "9", "--password-file", good.path()}, "", 0, "is right"},
      {{"password", "verify", "--class", "9", "--password-file", marked.path()}, "", 0, "is right"},
      {{"password", "verify", "--class", "9", "--password-file", ""}, "", 5, "could be read"},
      {{"password", "verify", "--class", "9", "--password-env", ""}, "", 5, "could be read"},
      {{"password", "verify", "--class", "12", "--password-stdin"}, "x\n", 3, "is installed"},
      {{"password", "verify", "--class", "11", "--password-stdin"}, "x\n", 2, "11"},
      {{"password", "verify", "--class", "9"}, "", 5, "A password is needed"},
      {{"password", "verify", "--class", "9", "setup1"}, "", 2, "setup1"},
      {{"password", "change", "--class", "9", "--password-file", good.path(), "--new-password-file",
        fresh.path()},
       "",
       8,
       "--yes"},
      {{"password", "change", "--class", "9", "--password-file", good.path(), "--new-password-file",
        fresh.path(), "--yes"},
       "",
       0,
       "was changed"},
      {{"password", "change", "--class", "9", "--password-stdin", "--new-password-stdin", "--yes"},
       "setup1\nbrandnew\n",
       0,
       "was changed"},
      {{"password", "change", "--class", "9", "--password-file", fresh.path(),
        "--new-password-file", good.path(), "--yes"},
       "",
       5,
       "is wrong"},
      {{"password", "change", "--class", "9", "--password-file", good.path(), "--new-password-file",
        fresh.path(), "--what-if"},
       "",
       0,
       "Nothing was written"},
      {{"password", "change", "--class", "9", "--remove", "--password-file", good.path(), "--yes"},
       "",
       0,
       "was removed"},
      {{"hdd", "list"}, "", 0, "0x82"},
      {{"hdd", "verify", "1", "--password-stdin", "--admin-password-stdin"},
       "drive1\nsetup1\n",
       0,
       "is right"},
      {{"hdd", "verify", "1", "--password-stdin", "--admin-password-stdin"},
       "drive1\nwrong\n",
       5,
       "setup (administrator)"},
      {{"hdd", "verify", "7", "--password-stdin"}, "x\n", 3, "no drive 7"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    std::vector<std::string> arguments = c.arguments;
    arguments.insert(arguments.begin(), "--sim=locked");
    const test::ProgramResult result = Mira(arguments, c.input);
    EXPECT_EQ(result.status, c.status) << result.err;
    EXPECT_NE((result.out + result.err).find(c.said), std::string::npos)
        << result.out << result.err;
    if (c.status != 2) {
      for (const char* const secret : {"setup1", "brandnew", "drive1"}) {
        EXPECT_EQ((result.out + result.err).find(secret), std::string::npos) << secret;
      }
    }
  }
}

// Of several secrets on standard input each has its own line, whether it is needed or not.
TEST(PasswordCommand, ShiftsNoSecretIntoAnothersPlace) {
  sim::Machine machine;
  const sim::Session session(machine);
  const auto change = [](const char* input) {
    return Mira({"password", "change", "--class", "9", "--password-stdin", "--new-password-stdin",
                 "--yes"},
                input)
        .status;
  };
  EXPECT_EQ(change("unneeded1\nwanted1\n"), 0);
  EXPECT_EQ(Mira({"password", "verify", "--class", "9", "--password-stdin"}, "wanted1\n").status,
            0);
  EXPECT_EQ(Mira({"password", "verify", "--class", "9", "--password-stdin"}, "unneeded1\n").status,
            5);
  EXPECT_EQ(change("wanted1\n"), 5) << "there is no line for the new one";
}

}  // namespace
}  // namespace mira
