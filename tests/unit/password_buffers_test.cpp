// Drive and pre-boot password commands: records byte for byte, answers decoded, texts and prompts.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "buffers/buffer_factory.h"
#include "buffers/hdd_pwd_buffer.h"
#include "buffers/password_data.h"
#include "buffers/pba_buffer.h"
#include "bytes/reader.h"
#include "bytes/writer.h"
#include "callif/password.h"
#include "tests/support/console_capture.h"
#include "tests/support/expected_record.h"

namespace mira {
namespace {

using test::Area;
using test::ConsoleCapture;
using test::Expected;
using test::ExpectRecord;
using test::Nul;

TEST(DrivePasswords, BuildTheirRecords) {
  struct Case {
    const char* what;
    std::uint16_t select;
    const char* password;
    const char* new_password;
    const char* admin;
    std::uint32_t mode;
    Expected expected;
  };
  const Case cases[] = {
      {"list", 11, "", "", "", 0, {{44, 0, 0, 0}, 1, 304, Area(256, 64)}},
      {"list, second form", 28, "", "", "", 0, {{44, 0, 0, 0}, 1, 304, Area(256, 64)}},
      {"verify", 13, "abc", "", "", 0, {{7, 44, 0, 0}, 0x100, 48, Nul("abc")}},
      {"verify with administrator",
       30,
       "abc",
       "",
       "pw",
       0,
       {{7, 44, 48, 0}, 0x10100, 51, Nul("abc") + Nul("pw")}},
      {"set with administrator",
       14,
       "",
       "xy",
       "pw",
       1,
       {{7, 44, 45, 48}, 0x1010100, 51, Nul("") + Nul("xy") + Nul("pw")}},
      {"set without administrator",
       31,
       "",
       "xy",
       "",
       1,
       {{7, 44, 45, 1}, 0x10100, 48, Nul("") + Nul("xy")}},
      {"clear", 14, "xy", "", "", 0, {{7, 44, 47, 0}, 0x10100, 48, Nul("xy") + Nul("")}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CHDDPwdBuffer buffer(10, c.select, 4096);
    CHDDPwd data;
    data.HDDHandle = 7;
    data.Password = c.password;
    data.NewPassword = c.new_password;
    data.AdminPassword = c.admin;
    data.ATASecurityMode = c.mode;
    std::uint32_t size = 99;
    ASSERT_NE(buffer.FillInputBuffer(0x1234, size, data), nullptr);
    EXPECT_EQ(size, c.expected.length);
    ExpectRecord(buffer, c.expected);
  }
  CHDDPwdBuffer other(10, 12, 4096);
  CHDDPwd data;
  std::uint32_t size = 0;
  EXPECT_EQ(other.FillInputBuffer(0, size, data), nullptr);
}

// A list buffer whose firmware has answered.
std::unique_ptr<CHDDPwdBuffer> Answered(std::uint16_t select, std::uint32_t count,
                                        const std::string& area) {
  auto buffer = std::make_unique<CHDDPwdBuffer>(std::uint16_t{10}, select, 4096u);
  CHDDPwd data;
  std::uint32_t size = 0;
  SMBiosCI* const record = buffer->FillInputBuffer(0, size, data);
  record->cbRES2 = count;
  bytes::Writer(buffer->Record(), 48).Bytes(bytes::AsBytes(area));
  return buffer;
}

TEST(DrivePasswords, DecodeTheList) {
  using List = std::list<std::pair<std::uint8_t, std::string>>;
  const std::string two = "\x01" + Nul("SSD") + "\x82" + Nul("SATA-1");
  CHDDPwd data;
  data.HDDList.emplace_back(9, "kept");
  Answered(11, 2, two)->ParseOutputBuffer(data);
  EXPECT_EQ(data.HDDList, (List{{9, "kept"}, {1, "SSD"}, {0x82, "SATA-1"}}));
  Answered(28, 0, two)->ParseOutputBuffer(data);
  EXPECT_EQ(data.HDDList.size(), 3u);

  // A count beyond the record's bytes ends with the record.
  CHDDPwd many;
  Answered(11, 0xFFFFFFFF, std::string(256, 'x'))->ParseOutputBuffer(many);
  EXPECT_TRUE(many.HDDList.empty());
  Answered(11, 0xFFFFFFFF, std::string(256, '\0'))->ParseOutputBuffer(many);
  EXPECT_EQ(many.HDDList.size(), 128u);

  ConsoleCapture console;
  Answered(11, 2, two)->DisplayOutputBuffer();
  const std::string output = console.Output();
  EXPECT_EQ(output.substr(output.find("\nHDD Handle")),
            "\nHDD Handle : 1\t HDD Description : SSD"
            "\nHDD Handle : ffffff82\t HDD Description : SATA-1");
}

struct TextCase {
  std::int32_t code;
  std::uint16_t select;
  const char* text;
};

template <typename Buffer>
std::string CodeText(const TextCase& c) {
  struct Open : Buffer {
    using Buffer::Buffer;
    using Buffer::NewRecord;
  };
  Open buffer(10, c.select, 4096);
  buffer.NewRecord(44)->cbRES1 = c.code;
  ConsoleCapture console;
  buffer.DisplayReturnCode();
  return console.Output();
}

TEST(DrivePasswords, HaveTextsForTheirCodes) {
  const TextCase cases[] = {
      {1, 13, "Invalid HDD Handle!\n"},
      {2, 14, "Interface Unavailable!\n"},
      {3, 13, "Password is incorrect!\n"},
      {3, 14, "Old Password is incorrect!\n"},
      {3, 30, ""},
      {4, 14, "Admin Password is incorrect!\n"},
      {5, 13, ""},
      {5, 14, "New password is Malformed!\n"},
      {6, 14, "Password cannot be deleted!\n"},
      {7, 13, "HDD is not present!\n"},
      {8, 14, "Unable to set password; Maximum Security Mode (Secure Erase) unavailable!\n"},
      {8, 11, ""},
      {9, 13, ""},
      {-7, 31, " Invalid security key!\n"},
      {0, 11, " The function completed successfully!\n"},
  };
  for (const TextCase& c : cases) {
    EXPECT_EQ(CodeText<CHDDPwdBuffer>(c), c.text) << c.code << " " << c.select;
  }
}

TEST(PreBootUsers, HaveTextsForTheirCodes) {
  const TextCase cases[] = {
      {1, 10, "Incorrect PBA Config Key!\n"},
      {1, 15, "No user is Authenticated via PBA!\n"},
      {1, 4, ""},
      {2, 4, "Password is not Correct!\n"},
      {2, 5, " The (OLD?) Password is incorrect!\n"},
      {2, 16, "Invalid bitmap\xEF\xBF\xBDno user authenticated with the given method!\n"},
      {3, 16,
       "Invalid call\xEF\xBF\xBDthe function was already called successfully once before with the "
       "given bitmap!\n"},
      {2, 17, "Invalid info format byte (in byte 0 of the cbARG3 buffer)!\n"},
      {3, 17, "Invalid Info Type (in cbARG2)!\n"},
      {4, 7, "Invalid Function (in cbArg1)!\n"},
      {4, 17, "The ID/key does not exist in the database!\n"},
      {5, 9, "Unsupported Key Format!\n"},
      {9, 8, "Required bitmap is not a subset of the permitted bitmap!\n"},
      {9, 9, ""},
      {10, 8, ""},
      {-1, 8, " The function ended in error (possibly function-specific)!\n"},
  };
  for (const TextCase& c : cases) {
    EXPECT_EQ(CodeText<CPBABuffer>(c), c.text) << c.code << " " << c.select;
  }
}

TEST(Passwords, BuildTheirRecords) {
  CPBABuffer verify(9, 4, 4096);
  CVerifyPwdData data;
  data.MaxPwdLen = 32;
  data.Password = "abc";
  data.Arg1 = 9;
  data.Arg2 = 5;
  data.KeyArgIndex = 3;
  std::uint32_t size = 0;
  ASSERT_NE(verify.FillInputBuffer(0x77, size, data), nullptr);
  EXPECT_EQ(size, 76u);
  ExpectRecord(verify, {{44, 5, 0x77, 0}, 1, 76, "abc" + std::string(29, '\0')});

  CPBABuffer change(10, 5, 4096);
  CChangePwdData both;
  both.MaxPwdLen = 32;
  both.NewPassword = "new";
  ASSERT_NE(change.FillInputBuffer(0, size, both), nullptr);
  ExpectRecord(change,
               {{44, 0, 0, 0}, 1, 109, std::string(32, '\0') + "new" + std::string(30, '\0')});
}

TEST(Passwords, NeverRunPastTheirField) {
  struct Case {
    std::uint32_t field;
    const char* old_password;
    const char* new_password;
    bool is_built;
  };
  const Case cases[] = {{4, "abc", "", true},     {3, "abc", "", false},
                        {4, "", "abcd", false},   {0, "", "", false},
                        {1, "", "", true},        {65536, "a", "b", true},
                        {65537, "a", "b", false}, {0xFFFFFFFF, "a", "b", false}};
  for (const Case& c : cases) {
    CPBABuffer buffer(12, 5, 4096);
    CChangePwdData data;
    data.MaxPwdLen = c.field;
    data.Password = c.old_password;
    data.NewPassword = c.new_password;
    std::uint32_t size = 0;
    EXPECT_EQ(buffer.FillInputBuffer(0, size, data) != nullptr, c.is_built) << c.field;
  }
  CPBABuffer users(10, 8, 4096);
  CChangePwdData data;
  std::uint32_t size = 0;
  EXPECT_EQ(users.FillInputBuffer(0, size, data), nullptr);
}

TEST(PreBootUsers, AreBuiltFromAnswers) {
  struct Case {
    std::uint16_t select;
    const char* answers;
    Expected expected;
    const char* last_prompt;
  };
  const std::string binary_id = std::string("\0\x01\x02\x03\x04\x05\x06\x07\xff", 9);
  const Case cases[] = {
      {7,
       "0\n",
       {{0, 0, 0, 0}, 0, 44, ""},
       "Enter the Function (0 - Status, 1 - Get, 2 - Clear) : "},
      {7, "3\n1\nsecret\n", {{1, 44, 0, 0}, 0x100, 51, Nul("secret")}, "Enter the Password : "},
      {7,
       "2\nABCD\n",
       {{2, 0xABCD, 0, 0}, 0, 44, ""},
       "Enter the PBA Config Key (See Function 1) : 0x"},
      {8,
       "AB\n0\n1\n2\n3\n4\n5\n6\n7\n1ff\n1\npw\n3\n1\n",
       {{0xAB, 44, 57, 65},
        0x1010100,
        93,
        binary_id + "\x01" + Nul("pw") + std::string("\x03\0\0\0\x01\0\0\0", 8) + Area(24, 6)},
       "Enter the 32-bit Required Authentication Bitmap (subset of Permitted) : 0x"},
      {9,
       "AB\n1\njo\n",
       {{0xAB, 44, 0, 0}, 0x100, 48, "\x01" + Nul("jo")},
       "Enter the User ID or User Name (in ASCIIZ format) : "},
      {15, "", {{44, 56, 0, 0}, 0x101, 188, Area(8, 2) + Area(128, 32)}, ""},
      {16,
       "10\n5\n",
       {{5, 44, 0, 0}, 0x100, 58, Area(10, 2) + std::string(2, '\0')},
       "Enter the Authentication Bitmap : 0x"},
      {17,
       "AB\n3\n1\n1\njo\n",
       {{0xAB, 1, 44, 0}, 0x10000, 48, "\x01" + Nul("jo")},
       "Enter the information (in ASCIIZ format) : "},
      {18,
       "AB\n1\njo\n1\npw\n",
       {{0xAB, 44, 0, 0}, 0x100, 52, "\x01" + Nul("jo") + "\x01" + Nul("pw")},
       "Enter the Passpharse : "},
      {4,
       "abc\n5\n",
       {{44, 0, 0, 0}, 1, 49, "abc" + std::string(2, '\0')},
       "What is the maximum password length (see cbSelect = 3 ) ? "},
      {5,
       "5\nold\nn w\n",
       {{44, 0, 0, 0}, 1, 55, "old" + std::string(2, '\0') + "n w" + std::string(3, '\0')},
       "Enter the new Password : "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.select) + " " + c.answers);
    CPBABuffer buffer(10, c.select, 4096);
    std::uint32_t size = 0;
    ConsoleCapture console(c.answers);
    ASSERT_NE(buffer.PromptInputBuffer(0, size, true), nullptr);
    ExpectRecord(buffer, c.expected);
    EXPECT_EQ(size, c.expected.length);
    EXPECT_TRUE(console.Output().ends_with(c.last_prompt)) << console.Output();

    // Whenever the input ends early there is no record.
    const std::string answers = c.answers;
    if (answers.empty()) continue;
    const std::string cut = answers.substr(0, answers.rfind('\n', answers.size() - 2) + 1);
    CPBABuffer unanswered(10, c.select, 4096);
    ConsoleCapture ended(cut);
    EXPECT_EQ(unanswered.PromptInputBuffer(0, size, true), nullptr);
  }
}

TEST(PreBootUsers, ShowWhatTheyHold) {
  std::uint32_t size = 0;
  const auto shown = [](CPBABuffer& buffer) {
    ConsoleCapture console;
    buffer.DisplayOutputBuffer();
    const std::string output = console.Output();
    return output.substr(output.find("Byte 3 - 0\n\n", output.find("cbRES4")) + 12);
  };
  CPBABuffer user(10, 8, 4096);
  {
    ConsoleCapture console("1\n0\n1\n2\n3\n4\n5\n6\n7\n80\n1\npassphrase-of-20-chars\n3\n1\n");
    ASSERT_NE(user.PromptInputBuffer(0, size, true), nullptr);
  }
  EXPECT_EQ(shown(user),
            "Binary User Id is : 0x1 2 3 4 5 6 7 ffffff80 \nASCIIZ Passphrase is : "
            "passphrase-of-20");

  CPBABuffer credential(10, 16, 4096);
  SMBiosCI* record = nullptr;
  {
    ConsoleCapture console("8\n1\n");
    record = credential.PromptInputBuffer(0, size, true);
  }
  ASSERT_NE(record, nullptr);
  bytes::Writer out(credential.Record(), 44);
  out.U32(3);
  out.Bytes(bytes::AsBytes("\x01\xFE\x03"));
  EXPECT_EQ(shown(credential), "Logon Credential is : 1 fffffffe 3 ");
  record->cbRES1 = -6;
  EXPECT_EQ(shown(credential), "Required Buffer Size is : 0x3\n");
  record->cbRES1 = 0;
  bytes::Writer(credential.Record(), 44).U32(0xFFFFFFFF);
  EXPECT_EQ(shown(credential).substr(0, 24), "Logon Credential is : 1 ") << "bounded by the record";
}

TEST(DrivePasswords, AreBuiltFromAnswers) {
  struct Case {
    std::uint16_t select;
    const char* answers;
    Expected expected;
  };
  const Case cases[] = {
      {11, "", {{44, 0, 0, 0}, 1, 304, Area(256, 64)}},
      {13, "0x2\nabc\nn\n", {{2, 44, 0, 0}, 0x100, 48, Nul("abc")}},
      {13, "2\nabc\nYes\npw\n", {{2, 44, 48, 0}, 0x10100, 51, Nul("abc") + Nul("pw")}},
      {14, "2\nn\ny\nxy\nn\n7\n1\n", {{2, 44, 45, 1}, 0x10100, 48, Nul("") + Nul("xy")}},
      {14,
       "2\ny\nold\nn\ny\npw\n",
       {{2, 44, 48, 49}, 0x1010100, 52, Nul("old") + Nul("") + Nul("pw")}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.select) + " " + c.answers);
    CHDDPwdBuffer buffer(10, c.select, 4096);
    std::uint32_t size = 0;
    ConsoleCapture console(c.answers);
    ASSERT_NE(buffer.PromptInputBuffer(0, size, true), nullptr);
    ExpectRecord(buffer, c.expected);
  }
  CHDDPwdBuffer other(10, 30, 4096);
  std::uint32_t size = 0;
  EXPECT_EQ(other.PromptInputBuffer(0, size, true), nullptr);
}

TEST(ScanCodes, AreThoseOfTheKeyThatTypes) {
  struct Case {
    const char* text;
    const char* codes;
  };
  const Case cases[] = {{"Ab1", "\x1E\x30\x02"},       {"a!", "\x1E\x02"},
                        {"0 \r", "\x0B\x39\x1C"},      {"zZ~", "\x2C\x2C\x29"},
                        {"\\|/?", "\x2B\x2B\x35\x35"}, {"", ""}};
  for (const Case& c : cases) {
    bytes::SecureString codes;
    EXPECT_TRUE(callif::ToScanCodes(c.text, codes));
    EXPECT_EQ(codes.str(), c.codes) << c.text;
  }
  bytes::SecureString codes;
  EXPECT_FALSE(callif::ToScanCodes("caf\xE9", codes));
}

}  // namespace
}  // namespace mira
