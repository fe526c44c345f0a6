// Secrets do not outlive their use: they are gone from memory when it is given back.

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "buffers/hdd_pwd_buffer.h"
#include "buffers/password_data.h"
#include "bytes/secure.h"
#include "tests/support/freed_memory.h"
#include "tests/support/host.h"

namespace mira {
namespace {

using bytes::SecureString;
using test::FreedMemoryWatch;

// Longer than what a string keeps in itself.
const std::string kSecret = "Vault-Passphrase";
const std::string kOther = "Other-Passphrase";

TEST(WatchOfFreedMemory, SeesASecretThatIsNotWiped) {
  if (!FreedMemoryWatch::IsAvailable()) GTEST_SKIP() << "needs the address sanitizer";
  const FreedMemoryWatch watch(kSecret);
  { const std::string unwiped = kSecret; }
  const int finds = watch.Finds();
  { const std::string other = kOther; }
  const int finds_later = watch.Finds();
  EXPECT_EQ(finds, 1);
  EXPECT_EQ(finds_later, 1);
}

// Each way in which a SecureString, or a string that is treated like one, gives memory back.
TEST(SecureStrings, AreWipedWhicheverWayTheyEnd) {
  if (!FreedMemoryWatch::IsAvailable()) GTEST_SKIP() << "needs the address sanitizer";
  struct Case {
    const char* what;
    std::function<void()> run;
  };
  const Case cases[] = {
      {"the end", [] { const SecureString text{std::string_view(kSecret)}; }},
      {"a move away",
       [] {
         SecureString from{std::string_view(kSecret)};
         const SecureString to(std::move(from));
         EXPECT_EQ(to.str(), kSecret);
         EXPECT_TRUE(from.empty());  // NOLINT(bugprone-use-after-move)
       }},
      {"a copy",
       [] {
         const SecureString from{std::string_view(kSecret)};
         const SecureString to(from);
         EXPECT_EQ(to.str(), from.str());
       }},
      {"another text assigned",
       [] {
         SecureString text{std::string_view(kSecret)};
         text = SecureString(std::string_view(kOther + kOther));
         EXPECT_EQ(text.str(), kOther + kOther);
       }},
      {"itself assigned",
       [] {
         SecureString text{std::string_view(kSecret)};
         const SecureString& same = text;
         text = same;
         EXPECT_EQ(text.str(), kSecret);
       }},
      {"cleared, then grown",
       [] {
         SecureString text{std::string_view(kSecret)};
         text.Clear();
         text.str().reserve(1000);
       }},
      {"a text cut before it ends",
       [] {
         SecureString text{std::string_view(kSecret)};
         text.str().resize(2);
       }},
      {"a string replaced by a longer one",
       [] {
         std::string text = kSecret;
         bytes::Replace(text, std::string(1000, 'x'));
         EXPECT_EQ(text, std::string(1000, 'x'));
       }},
      {"a string replaced by a shorter one",
       [] {
         std::string text = kSecret;
         bytes::Replace(text, "x");
         EXPECT_EQ(text, "x");
       }},
      {"a cut string wiped",
       [] {
         std::string text = kSecret;
         text.resize(3);
         bytes::Wipe(text);
         EXPECT_TRUE(text.empty());
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const FreedMemoryWatch watch(kSecret);
    c.run();
    EXPECT_GT(watch.Blocks(), 0);
    EXPECT_EQ(watch.Finds(), 0);
  }
}

TEST(SecureStrings, ReplacedByThemselvesKeepTheirText) {
  std::string text = kSecret;
  bytes::Replace(text, text);
  EXPECT_EQ(text, kSecret);
  bytes::Wipe(text);
}

// A text short enough to stand in the string itself.
TEST(SecureStrings, WipeShortTextsInPlace) {
  SecureString from(std::string_view("short"));
  const char* const memory = from.str().data();
  const SecureString to(std::move(from));
  EXPECT_EQ(to.str(), "short");
  EXPECT_EQ(std::string(memory, 5), std::string(5, '\0'));
}

TEST(Wiping, OverwritesExactlyTheBytesThatItIsGiven) {
  std::array<unsigned char, 5> memory = {1, 2, 3, 4, 5};
  bytes::Wipe(memory.data() + 1, 3);
  EXPECT_EQ(memory, (std::array<unsigned char, 5>{1, 0, 0, 0, 5}));
}

// What the library gives back in the course of each operation with a password. The firmware refuses
// the calls unseen, so that nothing that it does is found.
TEST(PasswordOperations, LeaveNoPasswordInFreedMemory) {
  if (!FreedMemoryWatch::IsAvailable()) GTEST_SKIP() << "needs the address sanitizer";
  struct Case {
    const char* what;
    std::function<void(test::Host&)> run;
  };
  const Case cases[] = {
      {"a password verified by a request",
       [](test::Host& host) {
         CVerifyPwdData data;
         data.MaxPwdLen = 33;
         data.Password = kSecret;
         CVerifyPwdData copy = data;
         copy = data;
         EXPECT_NE(host->ExecuteDACI(9, 4, copy, "", PwdInfo::PWD_NONE), STATUS_NOT_SUPPORTED);
       }},
      {"a password changed",
       [](test::Host& host) {
         CChangePwdData data;
         data.MaxPwdLen = 33;
         data.Password = kSecret;
         data.NewPassword = kSecret;
         CChangePwdData copy = data;
         copy = data;
         EXPECT_NE(host->ExecuteDACI(9, 5, copy, "", PwdInfo::PWD_NONE), STATUS_NOT_SUPPORTED);
       }},
      {"a key asked for",
       [](test::Host& host) { host->ValidatePwd(kSecret, PwdInfo::PWD_CLASS9); }},
      {"a call with a password",
       [](test::Host& host) {
         CSimpleTokenData data;
         host->ExecuteDACI(0, 0, data, kSecret, PwdInfo::PWD_CLASS9);
       }},
      {"an attribute written with a password",
       [](test::Host& host) {
         const auto attribute = PLDM::MakeAttribute(PLDM::BIOSString);
         attribute->Name = "AssetTag";
         EXPECT_EQ(host->SetAttributeValue(*attribute, kSecret, PwdInfo::PWD_CLASS9, 0),
                   STATUS_SECURITY_KEY_FAILED);
       }},
      {"a drive's password verified",
       [](test::Host& host) {
         CHDDPwd data;
         data.HDDHandle = 1;
         data.Password = kSecret;
         data.AdminPassword = kSecret;
         CHDDPwd copy = data;
         copy = data;
         host->ExecuteDACI(10, 13, copy, "", PwdInfo::PWD_NONE);
       }},
      {"a drive's password changed",
       [](test::Host& host) {
         CHDDPwd data;
         data.HDDHandle = 1;
         data.Password = kSecret;
         data.NewPassword = kSecret;
         data.AdminPassword = kSecret;
         host->ExecuteDACI(10, 14, data, "", PwdInfo::PWD_NONE);
       }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    sim::Profile profile;
    profile.class9 = {.text = "Installed-Password", .max_length = 32, .min_length = 4};
    test::Host host(profile, true);
    ASSERT_EQ(host.init_status(), STATUS_SUCCESS);
    for (const char* const call :
         {"firmware 9/4", "firmware 9/5", "firmware 10/13", "firmware 10/14"}) {
      host.machine().GetFaults().Add({.operation = call, .nth = 0, .completion = -1});
    }
    const FreedMemoryWatch watch(kSecret);
    c.run(host);
    EXPECT_GT(watch.Blocks(), 0);
    EXPECT_EQ(watch.Finds(), 0);
  }
}

}  // namespace
}  // namespace mira
