// Identity, battery and class 17 commands: which buffer serves them, records byte for byte, answers
// decoded, prompts and displays.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "buffers/aux_mac_buffer.h"
#include "buffers/battery_data.h"
#include "buffers/buffer_factory.h"
#include "buffers/eppid_buffer.h"
#include "buffers/received_data.h"
#include "buffers/tag_data.h"
#include "bytes/writer.h"
#include "tests/support/checked_cursors.h"
#include "tests/support/console_capture.h"
#include "tests/support/expected_record.h"

namespace mira {
namespace {

using namespace std::string_literals;
using test::Area;
using test::ConsoleCapture;
using test::Expected;
using test::ExpectRecord;
using test::Nul;

TEST(Factory, KnowsEveryPair) {
  const std::map<char, const char*> names = {
      {'C', "CBuffer"},
      {'G', "CGenericBuffer"},
      {'L', "CLegacyBBSBuffer"},
      {'U', "CUEFIBootBuffer"},
      {'A', "CACIInfo2Buffer"},
      {'S', "CSkyportBuffer"},
      {'b', "CBatteryInfoGetBuffer"},
      {'s', "CBatteryInfoSetBuffer"},
      {'P', "CPBABuffer"},
      {'H', "CHDDPwdBuffer"},
      {'t', "CAssetSvcTagBuffer"},
      {'i', "CImageServerDataBuffer"},
      {'m', "CAuxMACBuffer"},
      {'x', "CTagEx"},
      {'7', "C17Buffer"},
      {'l', "CLogEntryBuffer"},
      {'o', "COwnershipTagBuffer"},
      {'e', "CEPPIDBuffer"},
      {'n', "CThinClientInfoBuffer"},
  };
  // The selects from 0 on, a letter each, and what all further selects have. Classes that are not
  // here have nothing.
  struct Row {
    const char* selects;
    char others;
  };
  const std::map<std::uint16_t, Row> rows = {
      {0, {"", 'C'}},
      {1, {"", 'C'}},
      {2, {"CG", '.'}},
      {3, {"CCCL.L.CCUCUUC", '.'}},
      {4, {"", 'C'}},
      {5, {"...AAAA", '.'}},
      {6, {"C...CG", 'C'}},
      {7, {"....CSSSSS", '.'}},
      {8, {"CCCCCCCCCCCCCCCCCCbs", '.'}},
      {9, {"CCCCPP", 'C'}},
      {10, {"CCCCPPCPPPCHCHHPPPPCC....CCCHCHH", 'C'}},
      {11, {"ttttiimmxx", '.'}},
      {12, {"CCCCPP", 'C'}},
      {16, {"", 'C'}},
      {17, {"CCCC.7CCCCCCCC7.7C7CCC7Cl", 'C'}},
      {18, {"", 'C'}},
      {19, {"", 'C'}},
      {20, {"", 'o'}},
      {21, {".ee", '.'}},
      {22, {"", 'C'}},
      {23, {"", 'o'}},
      {26, {".n", '.'}},
      {28, {"..C", '.'}},
      {30, {"", 'C'}},
  };
  const auto expect = [&](std::uint16_t cls, std::uint16_t select) {
    SCOPED_TRACE(std::to_string(cls) + "/" + std::to_string(select));
    const auto row = rows.find(cls);
    const std::string_view selects = row != rows.end() ? row->second.selects : "";
    const char others = row != rows.end() ? row->second.others : '.';
    const char letter = select < selects.size() ? selects[select] : others;
    const std::unique_ptr<CBuffer> buffer(CreateBuffer(cls, select, 4096));
    if (letter == '.') {
      EXPECT_EQ(buffer, nullptr);
      return;
    }
    ASSERT_NE(buffer, nullptr);
    const CBuffer& made = *buffer;
    if (letter == 'C') {
      EXPECT_EQ(typeid(made), typeid(CBuffer));
    } else {
      EXPECT_TRUE(std::string_view(typeid(made).name()).ends_with(names.at(letter)))
          << typeid(made).name();
    }
    EXPECT_EQ(made.Class(), cls);
    EXPECT_EQ(made.Select(), select);
  };
  ConsoleCapture console;
  for (std::uint16_t cls = 0; cls <= 64; ++cls) {
    for (std::uint16_t select = 0; select <= 40; ++select) expect(cls, select);
    expect(cls, 0x3039);
    expect(cls, 0xFFFF);
  }
  const std::string line = "PBA DB Handler is not implemented... Contact the developer!!\n";
  EXPECT_EQ(console.Output(), line + line + line + line) << "class 10 selects 21 to 24";
}

TEST(Factory, SaysWhatElseACommandNeeds) {
  using Commands = std::set<std::pair<int, int>>;
  Commands probed;
  Commands after_info;
  Commands unprompted;
  for (std::uint16_t cls = 0; cls <= 64; ++cls) {
    for (std::uint16_t select = 0; select <= 40; ++select) {
      const CommandTraits traits = TraitsOf(cls, select);
      if (traits.preparation == CommandTraits::kProbe) probed.emplace(cls, select);
      if (traits.preparation == CommandTraits::kLegacyBootInfo) after_info.emplace(cls, select);
      if (!traits.has_prompts) unprompted.emplace(cls, select);
    }
  }
  EXPECT_EQ(probed,
            (Commands{{3, 9}, {3, 11}, {11, 8}, {17, 5}, {17, 16}, {17, 18}, {17, 22}, {17, 24}}));
  EXPECT_EQ(after_info, (Commands{{3, 3}, {3, 4}}));
  EXPECT_EQ(unprompted, (Commands{{5, 4}, {5, 5}, {5, 6}, {10, 28}, {10, 30}, {10, 31}}));
}

std::shared_ptr<CTagData> Tag(const std::string& text, std::uint32_t arg1 = 0,
                              std::uint32_t key_index = 0) {
  auto data = std::make_shared<CTagData>();
  data->Tag = text;
  data->Arg1 = arg1;
  data->Arg2 = 0xA2;
  data->Arg3 = 0xA3;
  data->Arg4 = 0xA4;
  data->KeyArgIndex = key_index;
  return data;
}

std::shared_ptr<CMACAddr> Mac(std::string_view text) {
  auto data = std::make_shared<CMACAddr>();
  std::copy(text.begin(), text.end(), data->MAC.begin());
  return data;
}

std::shared_ptr<CEPPID> Eppid(std::string_view text) {
  auto data = std::make_shared<CEPPID>();
  std::copy(text.begin(), text.end(), data->EPPID.begin());
  return data;
}

template <typename Config>
std::shared_ptr<Config> Battery(std::uint16_t command, std::uint16_t number) {
  auto data = std::make_shared<Config>();
  data->Command = command;
  data->BatteryNumber = number;
  data->Arg2 = 0xA2;
  data->KeyArgIndex = 2;
  return data;
}

std::shared_ptr<ADV_BATT_CONFIG> Charging(std::uint16_t command) {
  auto data = Battery<ADV_BATT_CONFIG>(command, 2);
  data->Version = 0x00010002;
  data->DaySchedule = {1, 2, 3, 4, 5, 6, 0x01020307};
  data->ChargingMode = 5;
  data->StartChargingLimit = 60;
  data->StopChargingLimit = 200;
  return data;
}

std::shared_ptr<PEAK_SHIFT_CONFIG> PeakShift(std::uint16_t command) {
  auto data = Battery<PEAK_SHIFT_CONFIG>(command, 1);
  data->Enabled = true;
  data->CurrentThreshold = 10;
  data->MinimumThreshold = 20;
  data->MaximumThreshold = 30;
  data->Version = 9;
  data->DaySchedule = {7, 0, 0, 0, 0, 0, 8};
  return data;
}

const std::string kDays = "\2\0\1\0\1\0\0\0\2\0\0\0\3\0\0\0\4\0\0\0\5\0\0\0\6\0\0\0\7\3\2\1"s;
const std::string kPeakDays = "\11\0\0\0\7\0\0\0"s + std::string(20, '\0') + "\10\0\0\0"s;
const std::string kLongTag(100, 'T');
const std::string kEppid = "ABCDEFGHIJKLMNOPQRSTUVW";  // adds up to 0x6D4

TEST(Identity, BuildsItsRecords) {
  const std::string ppid = "PPID\x1E\0"s;
  // A plain record's size argument gives back 0, others' the record's length.
  const auto check = [](const char* what, std::uint16_t cls, std::uint16_t select,
                        const std::shared_ptr<IBIOSData>& data, std::uint32_t key,
                        std::uint32_t room, const Expected& expected, bool is_plain = false) {
    SCOPED_TRACE(what);
    const std::unique_ptr<CBuffer> buffer(CreateBuffer(cls, select, 4096));
    ASSERT_NE(buffer, nullptr);
    std::uint32_t size = room;
    ASSERT_NE(buffer->FillInputBuffer(key, size, *data), nullptr);
    ExpectRecord(*buffer, expected);
    EXPECT_EQ(size, is_plain ? 0 : expected.length);
  };
  check("asset tag read", 11, 0, Tag("x", 7), 9, 5, {{7, 0xA2, 0xA3, 0xA4}, 0, 44, ""}, true);
  check("key as the request says", 11, 2, Tag("", 7, 3), 9, 0, {{7, 0xA2, 9, 0xA4}, 0, 44, ""},
        true);
  check("asset tag", 11, 1, Tag("ABCDE"), 9, 0, {{0x44434241, 0x45, 0, 9}, 0, 44, ""}, true);
  check("without key", 11, 3, Tag("ABCDEFGHIJKLM", 0, 2), 0, 0,
        {{0x44434241, 0x48474645, 0x4C4B4A49, 0xA4}, 0, 44, ""}, true);
  check("sign-extended", 11, 1, Tag("A\x80"s + "BCDE\xFF"), 0, 0,
        {{0xFFFF8041, 0xFFFF4544, 0, 0xA4}, 0, 44, ""}, true);
  check("image server read", 11, 4, Tag("", 7), 9, 0, {{7, 0xA2, 0xA3, 0xA4}, 0, 44, ""}, true);
  check("MAC read", 11, 6, Mac(""), 9, 0, {{44, 0, 0, 0}, 1, 61, Area(13, 3) + "\0"s});
  check("MAC read with room", 11, 6, Mac(""), 0, 3, {{44, 0, 0, 0}, 1, 64, Area(16, 4)});
  check("MAC", 11, 7, Mac("02A1B2C3D4E5"), 0, 0,
        {{44, 0, 0, 0}, 1, 61, "\15\0\0\0"s + "02A1B2C3D4E5" + "\0"s});
  check("extended tag probe", 11, 8, Tag("", 3), 0, 0,
        {{3, 44, 0xA3, 0xA4}, 0x100, 48, Area(0, 0)});
  check("extended tag read", 11, 8, Tag("", 3), 9, 9,
        {{3, 44, 0xA3, 0xA4}, 0x100, 57, Area(9, 2) + "\0"s});
  check("extended tag", 11, 9, Tag("abc", 3), 9, 0,
        {{3, 44, 9, 0xA4}, 0x100, 52, Nul("abc") + "\0\0\0\0"s});
  check("extended tag without key", 11, 9, Tag("", 3), 0, 77,
        {{3, 44, 0xA3, 0xA4}, 0x100, 49, "\0\0\0\0\0"s});
  check("ownership tag read", 20, 0, Tag("x", 3), 9, 0,
        {{44, 9, 0xA3, 0xA4}, 1, 129, Area(81, 20) + "\0"s});
  check("ownership tag", 23, 1, Tag("Desk 12"), 0, 0,
        {{44, 0xA2, 0xA3, 0xA4}, 1, 129, "Desk 12" + std::string(77, ' ') + "\0"s});
  check("ownership tag, cut", 20, 1, Tag(kLongTag), 9, 0,
        {{44, 9, 0xA3, 0xA4}, 1, 129, std::string(80, 'T') + "    " + "\0"s});
  check("ePPID read", 21, 1, Eppid(kEppid), 9, 0,
        {{44, 0, 0, 0}, 1, 74, ppid + std::string(24, '\0')});
  check("ePPID", 21, 2, Eppid(kEppid), 0, 0, {{44, 0, 0, 0}, 1, 74, ppid + kEppid + "\x81"});
  check("ePPID that adds up to 0x55", 21, 2, Eppid("T\1"), 0, 0,
        {{44, 0, 0, 0}, 1, 74, ppid + "T\1" + std::string(22, '\0')});
  check("thin client read", 26, 1, Tag("x"), 9, 0, {{0, 0xA2, 44, 0xA4}, 0x10000, 68, Area(20, 5)});
  check("thin client", 26, 1, Tag("abc", 2), 0, 0,
        {{2, 0xA2, 44, 0xA4}, 0x10000, 68, "\4\0\0\0"s + "abc" + std::string(17, '\0')});
  check("thin client, 19 characters", 26, 1, Tag("1234567890123456789", 2), 0, 0,
        {{2, 0xA2, 44, 0xA4}, 0x10000, 68, "\24\0\0\0"s + "1234567890123456789" + "\0"s});
  check("thin client with room", 26, 1, Tag("12345678901234567890", 2), 0, 1,
        {{2, 0xA2, 44, 0xA4}, 0x10000, 69, "\25\0\0\0"s + "12345678901234567890" + "\0"s});
  check("battery, nothing", 8, 18, Battery<BATTERY_INFO>(2, 1), 9, 0,
        {{0x102, 0, 0, 0}, 0, 48, Area(0, 0)});
  check("battery, advanced", 8, 18, Battery<ADV_BATT_CONFIG>(0x300, 0x102), 9, 0,
        {{0x200, 44, 0, 0}, 0x100, 80, Area(32, 8)});
  check("battery, advanced 3", 8, 18, Battery<ADV_BATT_CONFIG>(3, 1), 9, 0,
        {{0x103, 44, 0, 0}, 0x100, 80, Area(32, 8)});
  check("battery, peak shift", 8, 18, Battery<PEAK_SHIFT_CONFIG>(4, 1), 9, 0,
        {{0x104, 44, 0, 0}, 0x100, 80, Area(32, 8)});
  check("set advanced", 8, 19, Charging(0), 9, 0,
        {{0x200, 0xC83C05, 44, 0}, 0x10000, 80, "\40\0\0\0"s + kDays});
  check("set peak shift", 8, 19, PeakShift(1), 9, 0,
        {{0x101, 0x1E140A01, 44, 0}, 0x10000, 80, "\40\0\0\0"s + kPeakDays});
  check("set nothing", 8, 19, Battery<BATTERY_INFO>(4, 1), 9, 0,
        {{0x104, 0, 44, 0}, 0x10000, 80, Area(32, 8)});
  check("class 17 probe", 17, 22, Tag("", 1, 2), 0, 0, {{44, 0, 0xA3, 0xA4}, 1, 48, Area(0, 0)});
  check("class 17 read", 17, 5, Tag("", 1, 2), 9, 6,
        {{44, 9, 0xA3, 0xA4}, 1, 54, Area(6, 1) + "\0\0"s});
  check("log", 17, 24, Tag(""), 9, 4, {{44, 0xA2, 0xA3, 0xA4}, 1, 52, Area(4, 1)});
  check("message seen", 17, 14, Tag("", 1, 4), 9, 6, {{1, 0xA2, 0xA3, 9}, 0, 44, ""}, true);
  check("class 7", 7, 5, Tag("", 1, 4), 9, 0, {{1, 0xA2, 0xA3, 9}, 0, 44, ""}, true);
  check("class 7 with room", 7, 9, Tag("", 1), 9, 4, {{44, 0xA2, 0xA3, 0xA4}, 1, 52, Area(4, 1)});
}

TEST(Identity, RefusesWhatDoesNotFit) {
  struct Case {
    const char* what;
    std::uint16_t cls;
    std::uint16_t select;
    std::shared_ptr<IBIOSData> data;
    std::uint32_t room;
  };
  const std::vector<Case> cases = {
      {"thin client, 20 characters", 26, 1, Tag("12345678901234567890", 1), 0},
      {"extended tag longer than any transfer buffer", 11, 9, Tag(std::string(1 << 24, 'x')), 0},
      {"extended tag read, absurd length", 11, 8, Tag(""), 0xFFFFFFFF},
      {"list, absurd length", 17, 5, Tag(""), 0xFFFFFFFF},
      {"log, absurd length", 17, 24, Tag(""), 0x01000000},
      {"MAC, absurd room", 11, 6, Mac(""), 0xFFFFFFFF},
      {"thin client, absurd room", 26, 1, Tag(""), 0xFFFFFFFF},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    const std::unique_ptr<CBuffer> buffer(CreateBuffer(c.cls, c.select, 4096));
    std::uint32_t size = c.room;
    EXPECT_EQ(buffer->FillInputBuffer(0, size, *c.data), nullptr);
  }
  // A request of another kind is the caller's mistake.
  CSimpleTokenData plain;
  BATTERY_INFO info;
  std::uint32_t size = 0;
  const auto fill = [&](std::uint16_t cls, std::uint16_t select, IBIOSData& data) {
    const std::unique_ptr<CBuffer> buffer(CreateBuffer(cls, select, 4096));
    buffer->FillInputBuffer(0, size, data);
  };
  for (const std::uint16_t select : std::vector<std::uint16_t>{1, 7, 9}) {
    EXPECT_THROW(fill(11, select, plain), std::bad_cast);
  }
  EXPECT_THROW(fill(20, 1, plain), std::bad_cast);
  EXPECT_THROW(fill(21, 2, plain), std::bad_cast);
  EXPECT_THROW(fill(26, 1, plain), std::bad_cast);
  EXPECT_THROW(fill(8, 18, plain), std::bad_cast);
  EXPECT_THROW(fill(8, 19, info), std::bad_cast);
}

// The firmware's answer to a request: result words, and bytes from the area's start on.
struct Answer {
  std::uint32_t results[3];
  std::string area;
};

std::unique_ptr<CBuffer> Answered(std::uint16_t cls, std::uint16_t select, IBIOSData& data,
                                  std::uint32_t room, const Answer& answer) {
  std::unique_ptr<CBuffer> buffer(CreateBuffer(cls, select, 4096));
  SMBiosCI* const record = buffer->FillInputBuffer(0, room, data);
  record->cbRES2 = answer.results[0];
  record->cbRES3 = answer.results[1];
  record->cbRES4 = answer.results[2];
  test::CheckedWriter out(buffer->Record(), 44);
  out.Bytes(bytes::AsBytes(answer.area));
  EXPECT_TRUE(out.Ok());
  return buffer;
}

TEST(Identity, DecodesItsAnswers) {
  // The request's text is "old" before.
  const auto check = [](const char* what, std::uint16_t cls, std::uint16_t select,
                        std::uint32_t room, const Answer& answer, const std::string& tag) {
    SCOPED_TRACE(what);
    CTagData data;
    data.Tag = "old";
    Answered(cls, select, data, room, answer)->ParseOutputBuffer(data);
    EXPECT_EQ(data.Tag, tag);
    EXPECT_EQ(data.Res2, answer.results[0]);
  };
  check("words end one by one", 11, 2, 0, {{0x00434241, 0x44, 0}, ""}, "ABCD");
  check("all twelve", 11, 0, 0, {{0x44434241, 0x48474645, 0x4C4B4A49}, ""}, "ABCDEFGHIJKL");
  check("a NUL ends its word", 11, 0, 0, {{0x41004241, 0x00410000, 0x80FF}, ""}, "AB\xFF\x80");
  check("empty", 11, 0, 0, {{0, 0, 0}, ""}, "");
  check("a write leaves it", 11, 1, 0, {{0x41, 0, 0}, ""}, "old");
  check("image server", 11, 4, 0, {{0x41, 0, 0}, ""}, "old");
  check("extended tag", 11, 8, 5, {{0, 0, 0}, "\3\0\0\0abcde"s}, "oldabc");
  check("extended tag beyond the record", 11, 8, 2, {{0, 0, 0}, "\xFF\xFF\xFF\xFF\1\2"s},
        "old\1\2");
  check("extended tag without an answer", 11, 8, 0, {{0, 0, 0}, "\5\0\0\0"s}, "old");
  check("extended tag write", 11, 9, 0, {{0, 0, 0}, "\2\0\0\0"s}, "old");
  check("ownership tag", 20, 0, 0, {{0, 0, 0}, "\x50\0\0\0"s + "ABC" + std::string(77, ' ')},
        "oldABC");
  check("ownership tag with NUL", 23, 0, 0,
        {{0, 0, 0}, "\x51\0\0\0"s + " A B " + std::string(75, ' ') + "\0"s}, "old A B");
  check("ownership tag, full", 20, 0, 0, {{0, 0, 0}, "\x50\0\0\0"s + kLongTag.substr(0, 80)},
        "old" + std::string(80, 'T'));
  check("ownership tag, short", 20, 0, 0, {{0, 0, 0}, "\2\0\0\0ABCD"s}, "oldAB");
  check("ownership tag beyond the record", 20, 0, 0,
        {{0, 0, 0}, "\xFF\xFF\xFF\xFF"s + kLongTag.substr(0, 81)}, "old" + std::string(81, 'T'));
  check("ownership tag of blanks", 20, 0, 0, {{0, 0, 0}, "\x51\0\0\0"s + std::string(81, ' ')},
        "old");
  check("thin client", 26, 1, 0, {{0, 0, 0}, "\xFF\0\0\0kiosk\0x"s}, "kiosk");
  check("thin client without NUL", 26, 1, 0, {{0, 0, 0}, "\0\0\0\0"s + std::string(20, 'k')},
        std::string(20, 'k'));
  CTagData written;
  written.Arg1 = 1;
  written.Tag = "new";
  Answered(26, 1, written, 0, {{0, 0, 0}, "\4\0\0\0odd\0"s})->ParseOutputBuffer(written);
  EXPECT_EQ(written.Tag, "new") << "a write is not decoded";

  const auto mac = Mac("------------");
  Answered(11, 6, *mac, 0, {{0, 0, 0}, "\xFF\0\0\0"s + "02A1B2C3D4E5x"})->ParseOutputBuffer(*mac);
  EXPECT_EQ(std::string(mac->MAC.data(), mac->MAC.size()), "02A1B2C3D4E5");
  const auto kept = Mac("02A1B2C3D4E5");
  Answered(11, 7, *kept, 0, {{0, 0, 0}, "\15\0\0\0xxxx"s})->ParseOutputBuffer(*kept);
  EXPECT_EQ(kept->MAC, Mac("02A1B2C3D4E5")->MAC);

  const auto eppid = Eppid("");
  Answered(21, 1, *eppid, 0, {{0, 0, 0}, "......"s + kEppid})->ParseOutputBuffer(*eppid);
  EXPECT_EQ(std::string(eppid->EPPID.data(), eppid->EPPID.size()), kEppid);
}

TEST(Identity, AsksForWhatItWrites) {
  const std::string asset = "Enter the Asset Tag ( <= 12 Characters ) : ";
  const std::string image = "Enter the Image Sever Data : ";
  const std::string battery =
      "Enter the Battery Command (cbArg1, byte 0) : Enter the Battery Number (see Table Type 22) "
      ": ";
  const auto check = [](std::uint16_t cls, std::uint16_t select, const std::string& answers,
                        const Expected& expected, const std::string& asked) {
    SCOPED_TRACE(std::to_string(cls) + "/" + std::to_string(select) + " " + answers);
    const std::unique_ptr<CBuffer> buffer(CreateBuffer(cls, select, 4096));
    std::uint32_t size = 0;
    ConsoleCapture console(answers);
    ASSERT_NE(buffer->PromptInputBuffer(9, size, true), nullptr);
    ExpectRecord(*buffer, expected);
    EXPECT_EQ(console.Output(), asked);
    if (answers.empty()) return;
    ConsoleCapture ended;
    EXPECT_EQ(buffer->PromptInputBuffer(9, size, true), nullptr) << "the input ended";
    EXPECT_NE(buffer->PromptInputBuffer(9, size, false), nullptr) << "nothing is asked";
    EXPECT_EQ(ended.Output(), asked.substr(0, ended.Output().size()));
  };
  check(11, 0, "", {{0, 0, 0, 0}, 0, 44, ""}, "");
  check(11, 1, "1234567890123\nA B\n", {{0x422041, 0, 0, 9}, 0, 44, ""}, asset + asset);
  check(11, 3, "\n", {{0, 0, 0, 9}, 0, 44, ""}, "Enter the Service Tag ( <= 12 Characters ) : ");
  check(11, 4, "", {{44, 0, 0, 0}, 1, 560, Area(512, 128)}, "");
  check(11, 5, "s 1\n",
        {{44, 0, 0, 0}, 1, 560, Area(512, 0) + Nul("s 1") + Area(512, 128).substr(8)}, image);
  check(11, 5, std::string(600, 'x') + "\n",
        {{44, 0, 0, 0}, 1, 560, Area(512, 0) + Nul(std::string(511, 'x'))}, image);
  check(11, 8, "10\n", {{10, 44, 0, 0}, 0x100, 48, Area(0, 0)}, "Enter the Tag Command value :");
  check(11, 9, "1\na b\n", {{1, 44, 9, 0}, 0x100, 52, Nul("a b") + "\0\0\0\0"s},
        "Enter the Tag Command value :Enter the Tag to be set : ");
  check(8, 18, "4\n1\n", {{0x104, 44, 0, 0}, 0x100, 80, Area(32, 8)}, battery);
  check(8, 18, "2\n1\n", {{0x102, 0, 0, 0}, 0, 48, Area(0, 0)}, battery);
  check(8, 19, "1\n1\n", {{0x101, 0, 44, 0}, 0x10000, 80, Area(32, 0) + std::string(32, '\0')},
        battery);
  check(8, 19, "2\n3\n", {{0x302, 0, 44, 0}, 0x10000, 80, Area(32, 8)}, battery);
  check(17, 22, "1\n2\n3\n4\n", {{44, 2, 3, 4}, 1, 48, Area(0, 0)},
        "Arg1 : 0xArg2 : 0xArg3 : 0xArg4 : 0x");
}

// What a buffer shows behind the result words.
std::string Shown(CBuffer& buffer) {
  ConsoleCapture console;
  buffer.DisplayOutputBuffer();
  const std::string output = console.Output();
  const std::size_t words = output.find("cbRES4");
  return words == std::string::npos ? output : output.substr(output.find("\n\n", words) + 2);
}

TEST(Identity, ShowsWhatItRead) {
  const auto eppid = Eppid("");
  EXPECT_EQ(Shown(*Answered(21, 1, *eppid, 0, {{0, 0, 0}, "......"s + kEppid})),
            "ePPID is : " + kEppid + "\n");

  for (const std::uint16_t select : std::vector<std::uint16_t>{4, 5}) {
    const std::unique_ptr<CBuffer> image(CreateBuffer(11, select, 4096));
    std::uint32_t size = 0;
    SMBiosCI* const record = image->PromptInputBuffer(0, size, false);
    test::CheckedWriter(image->Record(), 48).Text("images.example");
    EXPECT_EQ(Shown(*image), select == 4 ? "Image Server Data : images.example\n" : "");
    std::fill(image->Record().begin() + 48, image->Record().end(), std::uint8_t{'x'});
    EXPECT_EQ(Shown(*image),
              select == 4 ? "Image Server Data : " + std::string(512, 'x') + "\n" : "");
    record->cbRES1 = -1;
    EXPECT_EQ(Shown(*image), "");
  }

  CReceivedData data;
  EXPECT_EQ(Shown(*Answered(17, 5, data, 3, {{0, 0, 0}, "\2\0\0\0\1\xFE"s})), "Data : 1 fe\n");
}

TEST(Batteries, AreDecodedAndShown) {
  const Answer answer = {{0x3C281E01, 0, 0}, "\40\0\0\0"s + kDays};
  ADV_BATT_CONFIG charging;
  charging.Command = BATTERY_GET_ADVANCED_3;
  const auto three = Answered(8, 18, charging, 0, answer);
  three->ParseOutputBuffer(charging);
  EXPECT_EQ(charging.ChargingMode, 1);
  EXPECT_EQ(charging.StartChargingLimit, 30);
  EXPECT_EQ(charging.StopChargingLimit, 40);
  EXPECT_EQ(charging.Version, 0x00010002u);
  EXPECT_EQ(charging.DaySchedule, (std::array<std::uint32_t, 7>{1, 2, 3, 4, 5, 6, 0x01020307}));
  EXPECT_EQ(Shown(*three), "") << "command 3 shows nothing more";

  PEAK_SHIFT_CONFIG peak;
  peak.Command = BATTERY_GET_PEAK_SHIFT;
  const auto four = Answered(8, 18, peak, 0, answer);
  four->ParseOutputBuffer(peak);
  EXPECT_TRUE(peak.Enabled);
  EXPECT_EQ(peak.CurrentThreshold, 30);
  EXPECT_EQ(peak.MinimumThreshold, 40);
  EXPECT_EQ(peak.MaximumThreshold, 60);
  EXPECT_EQ(peak.Version, 0x00010002u);
  EXPECT_EQ(peak.DaySchedule[6], 0x01020307u);
  Answered(8, 18, peak, 0, {{2, 0, 0}, ""})->ParseOutputBuffer(peak);
  EXPECT_FALSE(peak.Enabled) << "only 1 is on";

  BATTERY_INFO none;
  none.Command = 2;
  Answered(8, 18, none, 0, {{7, 0, 0}, ""})->ParseOutputBuffer(none);
  EXPECT_EQ(none.Res2, 7u);
  none.Command = 4;
  const auto foreign = Answered(8, 18, none, 0, answer);
  EXPECT_THROW(foreign->ParseOutputBuffer(none), std::bad_cast);

  charging.Command = BATTERY_GET_ADVANCED;
  const std::string days = "\2\0\1\0\0\0\0\0\40\104\0\0\40\104\124\0\7\3\2\1"s;
  const Answer shown = {{0x005A3205, 0, 0}, "\40\0\0\0"s + days + std::string(12, '\0')};
  const std::string schedule =
      "Sunday : off\nSunday (raw) : 0\n"
      "Monday : 08:00 - 17:00\nMonday (raw) : 17440\n"
      "Tuesday : 08:00 - 17:00, charging from 21:00\nTuesday (raw) : 5522464\n"
      "Wednesday : unknown\nWednesday (raw) : 16909063\n"
      "Thursday : off\nThursday (raw) : 0\nFriday : off\nFriday (raw) : 0\n"
      "Saturday : off\nSaturday (raw) : 0\n";
  EXPECT_EQ(Shown(*Answered(8, 18, charging, 0, shown)),
            "Version : 1.2\nCurrent Charging Mode : 5\nStart Charging Limit : 50%\n"
            "Stop Charging Limit : 90%\n" +
                schedule);
  EXPECT_EQ(Shown(*Answered(8, 18, peak, 0, shown)),
            "Version : 1.2\nPeak Shift setting is Disabled\nPeak Shift Current Threshold : 50%\n"
            "Peak Shift Minimum Threshold : 90\nPeak Shift Maximum Threshold : 0\n" +
                schedule);
  const auto failed = Answered(8, 18, charging, 0, shown);
  test::CheckedWriter(failed->Record(), 20).U32(0xFFFFFFFF);
  EXPECT_EQ(Shown(*failed), "");
}

TEST(Batteries, ReadAndWriteDays) {
  struct Case {
    std::uint32_t word;
    const char* text;
  };
  const Case cases[] = {
      {0, "off"},
      {0x00004420, "08:00 - 17:00"},
      {0x00006000, "00:00 - 24:00"},
      {0x00541F01, "00:15 - 07:45, charging from 21:00"},
      {0x00604420, "08:00 - 17:00, charging from 24:00"},
      {0x00002020, "unknown"},  // ends where it begins
      {0x00001F20, "unknown"},  // ends before it begins
      {0x00006120, "unknown"},  // ends past midnight
      {0x00614420, "unknown"},  // charging past midnight
      {0x01004420, "unknown"},  // the last byte is not used
      {0x00540000, "unknown"},  // charging alone
      {0xFFFFFFFF, "unknown"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(battery::DayText(c.word), c.text) << c.word;
    const auto times = battery::UnpackDay(c.word);
    ASSERT_EQ(times.has_value(), c.text != "unknown"s);
    if (times) {
      EXPECT_EQ(battery::PackDay(*times), c.word);
    }
  }
  EXPECT_EQ(battery::VersionText(0x00020010), "2.16");
}

TEST(Lists, AreDecodedWholeEntryByWholeEntry) {
  // A request of the list's kind, and a text of the entries that it got.
  const auto read = [](std::uint16_t select, auto request, const std::string& bytes,
                       const auto& text) {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    request.Entries.resize(1);
    Answered(17, select, request, size, {{0, 0, 0}, Area(size, 0) + bytes})
        ->ParseOutputBuffer(request);
    EXPECT_EQ(std::string(request.Data.begin(), request.Data.end()), bytes);
    std::string all;
    for (const auto& entry : request.Entries) all += text(entry) + ";";
    return all;
  };
  const auto n = [](auto number) { return std::to_string(number) + " "; };
  const auto life = [&](const CExtBatteryLife::Entry& e) {
    return n(e.Battery) + n(e.ChargeCycles) + n(e.DesignCapacity) + n(e.FullChargeCapacity);
  };
  EXPECT_EQ(read(5, CExtBatteryLife(), "\1\0\2\1\3\0\0\1\4\0\0\0\2\0\0\0\0\0\0\0\0\0\0"s, life),
            "1 258 16777219 4 ;")
      << "the second entry lacks a byte";
  EXPECT_EQ(read(5, CExtBatteryLife(), "", life), "");
  const auto message = [&](const CFirmwareMessages::Entry& e) {
    return n(e.Number) + n(e.Severity) + n(e.Seen) + e.Text;
  };
  EXPECT_EQ(read(16, CFirmwareMessages(), "\1\0\2\1Hot\0\2\1\0\0\0\3\0\0\0cut"s, message),
            "1 2 1 Hot;258 0 0 ;");
  const auto button = [&](const CTabletScanCodes::Entry& e) { return n(e.ScanCode) + e.Button; };
  EXPECT_EQ(read(18, CTabletScanCodes(), "\x5B\xE0Home\0\1"s, button), "57435 Home;");
  const auto sensor = [&](const CThermalSensors::Entry& e) {
    return n(e.Number) + n(e.Temperature) + n(e.Limit) + e.Location;
  };
  EXPECT_EQ(read(22, CThermalSensors(), "\1\0\xC9\xFF\xE8\3CPU\0"s, sensor), "1 -55 1000 CPU;");
  const auto entry = [&](const CLogEntries::Entry& e) {
    return n(e.Year) + n(e.Month) + n(e.Day) + n(e.Hour) + n(e.Minute) + n(e.Second) +
           n(e.Severity) + n(e.Code) + e.Text;
  };
  EXPECT_EQ(read(24, CLogEntries(), "\xEA\7\1\2\3\4\5\6\7\1Fan\0"s, entry),
            "2026 1 2 3 4 5 6 263 Fan;");

  // A request of another list's kind gets the bytes, a plain one the result words.
  CThermalSensors sensors;
  Answered(17, 5, sensors, 2, {{3, 0, 0}, "\2\0\0\0\1\2"s})->ParseOutputBuffer(sensors);
  EXPECT_EQ(sensors.Data, (std::vector<std::uint8_t>{1, 2}));
  EXPECT_TRUE(sensors.Entries.empty());
  CSimpleTokenData plain;
  Answered(17, 24, plain, 2, {{3, 0, 0}, "\xFF\xFF\xFF\xFF\1\2"s})->ParseOutputBuffer(plain);
  EXPECT_EQ(plain.Res2, 3u);
}

}  // namespace
}  // namespace mira
