// Drive and pre-boot password commands: records byte for byte, answers decoded, texts and prompts.

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "buffers/buffer_factory.h"
#include "buffers/hdd_pwd_buffer.h"
#include "buffers/password_data.h"
#include "buffers/pba_buffer.h"
#include "buffers/prompt_input.h"
#include "buffers/secret_prompt.h"
#include "bytes/reader.h"
#include "bytes/writer.h"
#include "callif/password.h"
#include "tests/support/checked_cursors.h"
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
  test::CheckedWriter(buffer->Record(), 48).Bytes(bytes::AsBytes(area));
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

  const std::string base =
      "cbRES1 : 0\t The function completed successfully!\n\n"
      "cbRES2 : Byte 0 - 2\t Byte 1 - 0\t Byte 2 - 0\t Byte 3 - 0\n\n"
      "cbRES3 : Byte 0 - 0\t Byte 1 - 0\t Byte 2 - 0\t Byte 3 - 0\n\n"
      "cbRES4 : Byte 0 - 0\t Byte 1 - 0\t Byte 2 - 0\t Byte 3 - 0\n\n";
  for (const std::uint16_t select : {std::uint16_t{11}, std::uint16_t{28}}) {
    ConsoleCapture console;
    Answered(select, 2, two)->DisplayOutputBuffer();
    std::cout << 255;
    EXPECT_EQ(console.Output(),
              base +
                  (select == 11 ? "\nHDD Handle : 1\t HDD Description : SSD"
                                  "\nHDD Handle : ffffff82\t HDD Description : SATA-1"
                                : "") +
                  "255")
        << "decimal again";
  }
}

// A completion code's text, and the selects that have it.
struct TextRow {
  std::int32_t code;
  std::vector<std::uint16_t> selects;
  const char* text;
};

// What the buffer prints for the code.
template <typename Buffer>
std::string CodeText(std::int32_t code, std::uint16_t select) {
  struct Open : Buffer {
    using Buffer::Buffer;
    using Buffer::NewRecord;
  };
  Open buffer(10, select, 4096);
  buffer.NewRecord(44)->cbRES1 = code;
  ConsoleCapture console;
  buffer.DisplayReturnCode();
  return console.Output();
}

// Every code from 1 to `last` with every select: the rows' texts and no others.
template <typename Buffer>
void ExpectTexts(const std::vector<TextRow>& rows, std::int32_t last) {
  for (std::int32_t code = 1; code <= last + 1; ++code) {
    for (std::uint16_t select = 0; select <= 31; ++select) {
      std::string text;
      for (const TextRow& row : rows) {
        if (row.code == code && std::count(row.selects.begin(), row.selects.end(), select) != 0) {
          text = row.text + std::string("\n");
        }
      }
      EXPECT_EQ(CodeText<Buffer>(code, select), text) << code << " " << select;
    }
  }
  EXPECT_EQ(CodeText<Buffer>(0, 13), " The function completed successfully!\n");
  EXPECT_EQ(CodeText<Buffer>(-1, 8),
            " The function ended in error (possibly function-specific)!\n");
  EXPECT_EQ(CodeText<Buffer>(-7, 31), " Invalid security key!\n");
}

TEST(DrivePasswords, HaveTextsForTheirCodes) {
  ExpectTexts<CHDDPwdBuffer>(
      {
          {1, {13, 14}, "Invalid HDD Handle!"},
          {2, {13, 14}, "Interface Unavailable!"},
          {3, {13}, "Password is incorrect!"},
          {3, {14}, "Old Password is incorrect!"},
          {4, {13, 14}, "Admin Password is incorrect!"},
          {5, {14}, "New password is Malformed!"},
          {6, {14}, "Password cannot be deleted!"},
          {7, {13, 14}, "HDD is not present!"},
          {8, {14}, "Unable to set password; Maximum Security Mode (Secure Erase) unavailable!"},
      },
      8);
}

TEST(PreBootUsers, HaveTextsForTheirCodes) {
  ExpectTexts<CPBABuffer>(
      {
          {1, {7, 8, 9, 10, 17, 18}, "Incorrect PBA Config Key!"},
          {1, {15}, "No user is Authenticated via PBA!"},
          {2, {4}, "Password is not Correct!"},
          {2, {5}, " The (OLD?) Password is incorrect!"},
          {2, {7}, "Incorrect Password Supplied!"},
          {2, {8}, "No room to add another PBA user!"},
          {2, {9}, "No such PBA user!"},
          {2, {15}, "Incorrect User ID!"},
          {2, {16}, "Invalid bitmap\xEF\xBF\xBDno user authenticated with the given method!"},
          {2, {17}, "Invalid info format byte (in byte 0 of the cbARG3 buffer)!"},
          {2, {18}, "ID and key not in PBA database!"},
          {3, {5}, "Password not changed - new password does not meet the criteria!"},
          {3, {7, 8}, "System user password not set!"},
          {3,
           {16},
           "Invalid call\xEF\xBF\xBDthe function was already called successfully once before with "
           "the given bitmap!"},
          {3, {17}, "Invalid Info Type (in cbARG2)!"},
          {4, {7}, "Invalid Function (in cbArg1)!"},
          {4, {8, 9, 18}, "Unsupported User ID Format!"},
          {4, {17}, "The ID/key does not exist in the database!"},
          {5, {8, 9, 18}, "Unsupported Key Format!"},
          {6, {8}, "User Key already in the database!"},
          {7, {8}, "User ID already in the database!"},
          {8, {8}, "Permitted bitmap has no valid bit set!"},
          {9, {8}, "Required bitmap is not a subset of the permitted bitmap!"},
      },
      9);
}

// What a dialogue prints, with "<" and ">" where answers stop and begin to show.
template <typename Buffer>
std::string Dialogue(std::uint16_t select, const std::string& answers) {
  Buffer buffer(10, select, 4096);
  std::uint32_t size = 0;
  ConsoleCapture console(answers);
  buffers::SetEchoSwitch([](bool shows) { std::cout << (shows ? '>' : '<'); });
  const SMBiosCI* const record = buffer.PromptInputBuffer(0, size, true);
  buffers::SetEchoSwitch(nullptr);
  EXPECT_NE(record, nullptr);
  return console.Output();
}

TEST(DrivePasswords, AreAskedForInTheseWords) {
  struct Case {
    std::uint16_t select;
    const char* answers;
    const char* dialogue;
  };
  const Case cases[] = {
      {11, "", ""},
      {13, "2\nabc\nn\n",
       "Enter the HDD Handle : 0x<Enter the HDD Password : >"
       "Is Admin Password required as per cbClass 10, cbSelect 12 (y/n) ? "},
      {13, "2\nabc\nY\npw\n",
       "Enter the HDD Handle : 0x<Enter the HDD Password : >"
       "Is Admin Password required as per cbClass 10, cbSelect 12 (y/n) ? "
       "<Enter Admin Password : >"},
      {14, "2\ny\nold\ny\nnew\ny\npw\n",
       "Enter the HDD Handle : 0xIs a password already set (y/n)? "
       "<Enter the Current HDD Password : >Do you want to set new password (y/n)? "
       "<Enter the new HDD Password : >"
       "Is Admin Password required as per cbClass 10, cbSelect 12 (y/n) ? "
       "<Enter Admin Password : >"},
      {14, "2\nn\nn\nn\n1\n",
       "Enter the HDD Handle : 0xIs a password already set (y/n)? "
       "Do you want to set new password (y/n)? "
       "Is Admin Password required as per cbClass 10, cbSelect 12 (y/n) ? "
       "Enter the ATA Security Mode ( 0 / 1) : "},
  };
  for (const Case& c : cases) EXPECT_EQ(Dialogue<CHDDPwdBuffer>(c.select, c.answers), c.dialogue);
}

TEST(PreBootUsers, AreAskedForInTheseWords) {
  const std::string key = "Enter the PBA Config Key (See cbSelect = 7 ; Function = 1) : 0x";
  const std::string length = "What is the maximum password length (see cbSelect = 3 ) ? ";
  const std::string user = "Enter the type of User ID (0 - Binary ; 1 - ASCIIZ) : ";
  const std::string text_user = user + "Enter the User ID or User Name (in ASCIIZ format) : ";
  const std::string ask_bytes =
      "Enter 8 Bytes of User ID (in binary format pressing \"Enter\" Key after each byte) : 0x";
  const std::string ask_key =
      "Enter 16 Bytes of Passphrase (in binary format pressing \"Enter\" Key after each byte) : "
      "0x";
  const std::string passphrase = "Enter the type of Passphrase (0 - Binary ; 1 - ASCIIZ) : ";
  const std::string existing = key +
                               "Enter the choice of input (1 - User ID ; 2 - User Key) : "
                               "Enter the type of input (0 - Binary ; 1 - ASCIIZ) : ";
  const std::string function = "Enter the Function (0 - Status, 1 - Get, 2 - Clear) : ";
  const std::string eight = "1\n2\n3\n4\n5\n6\n7\n8\n";
  struct Case {
    std::uint16_t select;
    std::string answers;
    std::string dialogue;
  };
  const Case cases[] = {
      {4, "abc\n5\n", "<Enter the Password : >" + length},
      {5, "5\nold\nnew\n", length + "<Enter the Old Password : ><Enter the new Password : >"},
      {7, "0\n", function},
      {7, "1\nsecret\n", function + "<Enter the Password : >"},
      {7, "2\nAB\n", function + "Enter the PBA Config Key (See Function 1) : 0x"},
      {8, "AB\n0\n" + eight + "0\n" + eight + eight + "3\n1\n",
       key + user + ask_bytes + passphrase + "<" + ask_key + ">" +
           "Enter the 32-bit Permitted Authentication Bitmap (see cbSelect = 7, Function 0) : 0x"
           "Enter the 32-bit Required Authentication Bitmap (subset of Permitted) : 0x"},
      {9, "AB\n1\njo\n", key + text_user},
      {15, "", ""},
      {16, "10\n5\n", "Enter the Credential Buffer Size : Enter the Authentication Bitmap : 0x"},
      {17, "AB\n1\n0\n" + eight, existing + ask_bytes},
      {17, "AB\n2\n0\n" + eight + eight, existing + "<" + ask_key + ">"},
      {17, "AB\n2\n1\nkey\n", existing + "<Enter the information (in ASCIIZ format) : >"},
      {18, "AB\n1\njo\n1\npw\n", key + text_user + passphrase + "<Enter the Passpharse : >"},
  };
  for (const Case& c : cases) EXPECT_EQ(Dialogue<CPBABuffer>(c.select, c.answers), c.dialogue);
}

TEST(Prompts, TellAMissingAnswerFromARefusedOne) {
  struct Case {
    const char* answers;
    bool ended;
  };
  // A password that does not fit its field makes no record.
  const Case cases[] = {{"2\nabc\nab\n", false},
                        {"2\nabc\nab", false},
                        {"2\nabc\n", true},
                        {"2\nabc", true},
                        {"", true}};
  for (const Case& c : cases) {
    CPBABuffer buffer(9, 5, 4096);
    std::uint32_t size = 0;
    ConsoleCapture console(c.answers);
    EXPECT_EQ(buffer.PromptInputBuffer(0, size, true), nullptr);
    EXPECT_EQ(buffers::InputEnded(), c.ended) << c.answers;
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

  // As long as they may be: the new text is written over the old one's NUL.
  both.MaxPwdLen = 3;
  both.Password = "old";
  ASSERT_NE(change.FillInputBuffer(0, size, both), nullptr);
  ExpectRecord(change, {{44, 0, 0, 0}, 1, 51, "old" + Nul("new")});
  both.NewPassword = "";
  ASSERT_NE(change.FillInputBuffer(0, size, both), nullptr);
  ExpectRecord(change, {{44, 0, 0, 0}, 1, 51, "old" + std::string(4, '\0')});
}

TEST(Passwords, NeverRunPastTheirField) {
  struct Case {
    std::uint16_t select;
    std::uint32_t field;
    const char* old_password;
    const char* new_password;
    bool is_built;
  };
  const Case cases[] = {
      {4, 4, "abc", "", true},    {4, 3, "abc", "", false},    {4, 0, "", "", false},
      {4, 1, "", "", true},       {5, 3, "abc", "", true},     {5, 2, "abc", "", false},
      {5, 3, "", "abc", true},    {5, 3, "", "abcd", false},   {5, 0, "", "", true},
      {5, 65536, "a", "b", true}, {5, 65537, "a", "b", false}, {5, 0xFFFFFFFF, "a", "b", false},
      {4, 65536, "a", "", true},  {4, 65537, "a", "", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.select) + " " + std::to_string(c.field) + c.old_password);
    CPBABuffer buffer(12, c.select, 4096);
    CChangePwdData data;
    data.MaxPwdLen = c.field;
    data.Password = c.old_password;
    data.NewPassword = c.new_password;
    std::uint32_t size = 0;
    EXPECT_EQ(buffer.FillInputBuffer(0, size, data) != nullptr, c.is_built);
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

// A pre-boot buffer built from these answers, and what it then shows of the firmware's reply.
std::string Shown(std::uint16_t select, const std::string& answers, const std::string& area,
                  std::int32_t completion = 0) {
  CPBABuffer buffer(10, select, 4096);
  std::uint32_t size = 0;
  SMBiosCI* record = nullptr;
  {
    ConsoleCapture console(answers);
    record = buffer.PromptInputBuffer(0, size, true);
  }
  if (record == nullptr) return "no record";
  test::CheckedWriter out(buffer.Record(), 44);
  out.Bytes(bytes::AsBytes(area));
  EXPECT_TRUE(out.Ok());
  record->cbRES1 = completion;
  ConsoleCapture console;
  buffer.DisplayOutputBuffer();
  std::cout << 255;
  const std::string output = console.Output();
  const std::string last = "cbRES4 : Byte 0 - 0\t Byte 1 - 0\t Byte 2 - 0\t Byte 3 - 0\n\n";
  EXPECT_TRUE(output.starts_with("cbRES1 : " + std::to_string(completion) + "\t"));
  return output.substr(output.find(last) + last.size());
}

TEST(PreBootUsers, ShowWhatTheyHold) {
  const std::string eight = "1\n2\n3\n4\n5\n6\n7\n80\n";
  const std::string bitmaps = "3\n1\n";
  struct Case {
    const char* what;
    std::uint16_t select;
    std::string answers;
    std::string area;  // over what the answers made
    std::int32_t completion;
    std::string shown;
  };
  const Case cases[] = {
      {"binary and text", 8, "1\n0\n" + eight + "1\npassphrase-of-20-chars\n" + bitmaps, "", 0,
       "Binary User Id is : 0x1 2 3 4 5 6 7 ffffff80 \nASCIIZ Passphrase is : passphrase-of-20"},
      {"text and binary", 8, "1\n1\nnine-long\n0\n" + eight + eight + bitmaps, "", 0,
       "ASCIIZ User ID is : nine-lonBinary Passphrase is : 0x1 2 3 4 5 6 7 ffffff80 "
       "1 2 3 4 5 6 7 ffffff80 \n"},
      {"texts, after an error", 8, "1\n1\njo\n1\npw\n" + bitmaps, "", 2,
       "ASCIIZ User ID is : joASCIIZ Passphrase is : pw"},
      {"no such format", 8, "1\n1\njo\n1\npw\n" + bitmaps, "\x02", 0, ""},
      {"credential", 16, "8\n1\n", std::string("\3\0\0\0\1\xFE\3", 7), 0,
       "Logon Credential is : 1 fffffffe 3 "},
      {"credential, too small", 16, "8\n1\n", std::string("\3\1\0\0", 4), -6,
       "Required Buffer Size is : 0x103\n"},
      {"credential, refused", 16, "8\n1\n", "", 3, ""},
      {"credential beyond the record", 16, "2\n1\n", "\xFF\xFF\xFF\xFF\1\2", 0,
       "Logon Credential is : 1 2 "},
      {"nothing more", 9, "1\n1\njo\n", "", 0, ""},
      {"nothing more", 15, "", "", 0, ""},
      {"nothing more", 17, "1\n1\n1\njo\n", "", 0, ""},
      {"nothing more", 18, "1\n1\njo\n1\npw\n", "", 0, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Shown(c.select, c.answers, c.area, c.completion), c.shown + "255") << c.what;
  }
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
