// Secrets are overwritten before their memory is given back.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "buffers/hdd_pwd_buffer.h"
#include "buffers/password_data.h"
#include "buffers/pba_buffer.h"
#include "bytes/secure.h"
#include "bytes/writer.h"
#include "callif/password.h"
#include "callif/scan_codes.h"
#include "pldm/aci_info2_buffer.h"
#include "pldm/attribute.h"
#include "pldm/attribute_convert.h"
#include "pldm/tables.h"
#include "tests/support/console_capture.h"
#include "tests/support/freed_memory.h"
#include "tests/support/host.h"

namespace mira {
namespace {

using test::ConsoleCapture;
using test::FreedMemoryWatch;

// A request with the secret is destroyed, and one is overwritten by another's text.
template <typename Request>
void DestroyAndAssign(std::string Request::*member, const std::string& secret) {
  const auto empty = std::make_unique<Request>();
  const auto overwritten = std::make_unique<Request>();
  (*overwritten).*member = secret;
  *overwritten = *empty;
  const auto larger = std::make_unique<Request>();
  (*larger).*member = std::string(200, 'x');
  (*overwritten).*member = secret;
  *overwritten = *larger;
  auto destroyed = std::make_unique<Request>();
  (*destroyed).*member = secret;
  auto copy = std::make_unique<Request>(*destroyed);
  copy.reset();
  destroyed.reset();
}

// A record with the secret is replaced by another, which ends with its buffer.
template <typename Buffer, typename Request>
void Build(std::uint16_t select, Request& request) {
  Buffer buffer(10, select, 4096);
  for (int i = 0; i < 2; ++i) {
    std::uint32_t size = 0;
    ASSERT_NE(buffer.FillInputBuffer(0, size, request), nullptr);
  }
}

TEST(Wiping, LeavesNoSecretInFreedMemory) {
  if (!FreedMemoryWatch::IsAvailable()) GTEST_SKIP() << "needs AddressSanitizer";
  using Secret = const std::string&;
  struct Case {
    const char* what;
    std::function<void(Secret)> run;
  };
  const Case cases[] = {
      {"request to verify",
       [](Secret secret) { DestroyAndAssign(&CVerifyPwdData::Password, secret); }},
      {"request to change, old",
       [](Secret secret) { DestroyAndAssign<CChangePwdData>(&CChangePwdData::Password, secret); }},
      {"request to change, new",
       [](Secret secret) { DestroyAndAssign(&CChangePwdData::NewPassword, secret); }},
      {"drive request, current",
       [](Secret secret) { DestroyAndAssign(&CHDDPwd::Password, secret); }},
      {"drive request, new",
       [](Secret secret) { DestroyAndAssign(&CHDDPwd::NewPassword, secret); }},
      {"drive request, administrator's",
       [](Secret secret) { DestroyAndAssign(&CHDDPwd::AdminPassword, secret); }},
      {"attribute", [](Secret secret) { DestroyAndAssign(&PLDM::Password::Value, secret); }},
      {"record to verify",
       [](Secret secret) {
         CVerifyPwdData data;
         data.MaxPwdLen = 100;
         data.Password = secret;
         Build<CPBABuffer>(4, data);
       }},
      {"record to change",
       [](Secret secret) {
         CChangePwdData data;
         data.MaxPwdLen = 100;
         data.NewPassword = secret;
         Build<CPBABuffer>(5, data);
       }},
      {"record of a drive",
       [](Secret secret) {
         CHDDPwd data;
         data.Password = data.NewPassword = data.AdminPassword = secret;
         Build<CHDDPwdBuffer>(14, data);
       }},
      {"value of an attribute",
       [](Secret secret) {
         auto value = std::make_unique<pldm::IntBIOSPasswordValue>();
         value->text = secret;
         auto attribute = std::make_unique<pldm::IntBIOSPassword>();
         attribute->default_text = secret;
         value.reset();
         attribute.reset();
       }},
      {"attribute read over what was typed",
       [](Secret secret) {
         PLDM::Password attribute;
         attribute.Value = secret;
         pldm::IntBIOSPasswordValue value;
         value.type = PLDM::BIOSPassword;
         value.text = std::string(200, 'x');
         pldm::IntBIOSPassword description;
         description.type = PLDM::BIOSPassword;
         ASSERT_TRUE(pldm::Fill(description, value, pldm::Tables(), attribute));
         EXPECT_EQ(attribute.Value, value.text);
       }},
      {"write of an attribute",
       [](Secret secret) {
         PLDM::Password attribute;
         attribute.Value = secret;
         CACIInfo2Record record;
         record.Exchange = pldm::ToValue(attribute, pldm::Tables());
         ASSERT_NE(record.Exchange, nullptr);
         CACIInfo2Buffer buffer(5, 6, 4096);
         std::uint32_t size = 0;
         ASSERT_NE(buffer.FillInputBuffer(0, size, record), nullptr);
       }},
      {"scan codes",
       [](Secret secret) {
         auto codes = std::make_unique<bytes::SecureString>();
         ASSERT_TRUE(callif::ToScanCodes(secret, *codes));
         codes->str().assign(secret);
         ASSERT_FALSE(callif::ToScanCodes("\xE9", *codes));
       }},
  };
  const std::string secrets[] = {"hush-hush", "a secret that no small string holds, of 50 letters"};
  for (const Case& c : cases) {
    for (const std::string& secret : secrets) {
      const FreedMemoryWatch freed(secret);
      c.run(secret);
      EXPECT_EQ(freed.Finds(), 0) << c.what << ", " << secret.size() << " characters";
    }
  }
  FreedMemoryWatch freed(secrets[1]);
  { const std::string plain = secrets[1]; }
  EXPECT_NE(freed.Finds(), 0) << "what is not wiped is seen";
}

TEST(Wiping, LeavesNoAnswerInFreedMemory) {
  if (!FreedMemoryWatch::IsAvailable()) GTEST_SKIP() << "needs AddressSanitizer";
  const std::string secret(300, 's');  // outgrows what a line has room for at first
  const std::string huge(5000, 's');   // and what the items of a record have
  struct Case {
    std::uint16_t select;
    std::string answers;
  };
  const Case cases[] = {
      {4, secret + "\n400\n"},
      {5, "400\n" + secret + "\n" + secret + "\n"},
      {7, "1\n" + secret + "\n"},
      {8, "AB\n1\njo\n1\n" + secret + "\n3\n1\n"},
      {8, "AB\n1\njo\n1\n" + huge + "\n3\n1\n"},
      {17, "AB\n2\n1\n" + secret + "\n"},
      {18, "AB\n1\njo\n1\n" + secret + "\n"},
      {18, "AB\n1\n" + huge + "\n1\n" + huge + "\n"},
  };
  for (const Case& c : cases) {
    ConsoleCapture console(c.answers);
    const std::string part = secret.substr(0, 60);
    const FreedMemoryWatch freed(part);
    {
      CPBABuffer buffer(10, c.select, 65536);
      std::uint32_t size = 0;
      EXPECT_NE(buffer.PromptInputBuffer(0, size, true), nullptr);
    }
    EXPECT_EQ(freed.Finds(), 0) << c.select;
  }
  const char* const drives[] = {"2\ny\n", "2\nn\n"};
  for (const char* const begin : drives) {
    ConsoleCapture console(begin + (begin[2] == 'y' ? secret + "\n" : "") + "y\n" + secret +
                           "\ny\n" + secret + "\n");
    const std::string part = secret.substr(0, 60);
    const FreedMemoryWatch freed(part);
    {
      CHDDPwdBuffer buffer(10, 14, 65536);
      std::uint32_t size = 0;
      EXPECT_NE(buffer.PromptInputBuffer(0, size, true), nullptr);
    }
    EXPECT_EQ(freed.Finds(), 0) << begin;
  }
}

// Among all memory, since the simulated firmware keeps its key, only that of the answer is looked
// at.
TEST(Wiping, TakesTheKeyOutOfTheAnswerToAPassword) {
  if (!FreedMemoryWatch::IsAvailable()) GTEST_SKIP() << "needs AddressSanitizer";
  test::Host host(*sim::FindProfile("locked"));
  const std::uint32_t key = host->ValidatePwd("setup1", PwdInfo::PWD_CLASS9);
  ASSERT_NE(key, CPwdContext::kNoKey);
  std::string bytes;
  for (unsigned i = 0; i < sizeof(key); ++i) bytes += static_cast<char>(key >> (8 * i) & 0xFF);
  const FreedMemoryWatch freed(bytes, sizeof(CVerifyPwdData));
  ASSERT_EQ(host->ValidatePwd("setup1", PwdInfo::PWD_CLASS9), key);
  EXPECT_EQ(freed.Finds(), 0);
  EXPECT_NE(freed.Blocks(), 0);
}

TEST(Wiping, TakesTheKeyOutOfTheAttributeStore) {
  if (!FreedMemoryWatch::IsAvailable()) GTEST_SKIP() << "needs AddressSanitizer";
  sim::Machine machine{sim::Profile()};
  const sim::Session session(machine);
  std::ostringstream diagnostics;
  auto mira = std::make_unique<CMiraIntf>(diagnostics);
  ASSERT_EQ(mira->Init(true, false, false), STATUS_SUCCESS);
  ASSERT_TRUE(mira->IsPLDMSupported());
  PLDM::String attribute;
  attribute.Name = "AssetTag";
  attribute.Value = "7";
  const std::uint32_t key = 0x5EC2E7A1;
  mira->SetAttributeValue(attribute, "", PwdInfo::PWD_NONE, key);
  // Later calls carry the key no more, so that of all memory the store alone still has it.
  CSimpleTokenData data;
  mira->ExecuteDACI(0, 0, data, "", PwdInfo::PWD_NONE);
  const std::string bytes = "\xA1\xE7\xC2\x5E";
  const FreedMemoryWatch freed(bytes);
  mira.reset();
  EXPECT_EQ(freed.Finds(), 0);
}

}  // namespace
}  // namespace mira
