// Boot lists, load options, legacy priorities and data blocks: records byte for byte, answers
// decoded however they are cut, prompts and displays.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "buffers/buffer_factory.h"
#include "buffers/generic_data.h"
#include "buffers/legacy_bbs_data.h"
#include "buffers/uefi_boot_data.h"
#include "bytes/reader.h"
#include "bytes/writer.h"
#include "devicepath/load_option.h"
#include "tests/support/checked_cursors.h"
#include "tests/support/console_capture.h"

namespace mira {
namespace {

using test::ConsoleCapture;
using Words = std::vector<std::uint32_t>;
using Numbers = std::vector<std::uint16_t>;

constexpr std::uint32_t kTransferSize = 4096;

std::unique_ptr<CBuffer> Make(std::uint16_t cls, std::uint16_t select) {
  return std::unique_ptr<CBuffer>(CreateBuffer(cls, select, kTransferSize));
}

std::string Raw(std::initializer_list<int> bytes) {
  std::string raw;
  for (const int byte : bytes) raw += static_cast<char>(byte);
  return raw;
}

std::string Number(std::uint64_t value, std::size_t width) {
  std::string raw;
  for (; width > 0; --width, value >>= 8) raw += static_cast<char>(value & 0xFF);
  return raw;
}

// With its NUL.
std::string Utf16(std::u16string_view text) {
  std::string raw;
  for (const char16_t unit : text) raw += Number(unit, 2);
  return raw + Number(0, 2);
}

std::string Nul(const std::string& text) { return text + '\0'; }

// As the firmware finds it: the length of what follows, then the signature.
std::string Prepared(std::uint32_t length) {
  std::string area = Number(length, 4);
  for (std::uint32_t words = length / 4; words > 0; --words) area += "DSCI";
  area.resize(4 + length);
  return area;
}

struct Expected {
  Words args;
  std::uint32_t kinds;
  std::string area;
};

void ExpectRecord(const CBuffer& buffer, const Expected& expected) {
  test::CheckedReader in(buffer.Record(), 4);
  EXPECT_EQ((Words{in.U32(), in.U32(), in.U32(), in.U32()}), expected.args);
  in.Seek(36);
  EXPECT_EQ(in.U32(), expected.kinds);
  EXPECT_EQ(in.U32(), 44 + expected.area.size());
  EXPECT_EQ(bytes::AsText(in.Rest()), expected.area);
}

// A buffer with room for `answer`, which the firmware has put behind the length word.
std::unique_ptr<CBuffer> Answered(std::uint16_t select, const std::string& answer,
                                  IBIOSData& request) {
  auto buffer = Make(3, select);
  auto size = static_cast<std::uint32_t>(answer.size());
  EXPECT_NE(buffer->FillInputBuffer(0, size, request), nullptr);
  test::CheckedWriter(buffer->Record(), 48).Bytes(bytes::AsBytes(answer));
  return buffer;
}

// ---- Boot lists ----

std::string TwoLists() { return Raw({2, 1, 0xA2}) + Utf16(u"UEFI") + Utf16(u"Älteres"); }

TEST(BootLists, AreAskedFor) {
  for (const std::uint32_t room : {0u, 11u}) {
    auto buffer = Make(3, 9);
    CUEFIBootList lists;
    lists.Arg1 = lists.Arg2 = lists.Arg3 = 7;
    lists.KeyArgIndex = 3;
    std::uint32_t size = room;
    ASSERT_NE(buffer->FillInputBuffer(0x1234, size, lists), nullptr);
    EXPECT_EQ(size, 48 + room);
    ExpectRecord(*buffer, {{44, 0, 0, 0}, 1, Prepared(room)});
  }
}

TEST(BootLists, AreDecoded) {
  CUEFIBootList lists;
  const auto buffer = Answered(9, TwoLists(), lists);
  buffer->ParseOutputBuffer(lists);
  buffer->ParseOutputBuffer(lists);  // nothing of before is left
  EXPECT_EQ(lists.Count, 2u);
  ASSERT_EQ(lists.Items.size(), 2u);
  EXPECT_EQ(lists.Items[0].Enum, 1);
  EXPECT_EQ(lists.Items[0].Name, u"UEFI");
  EXPECT_EQ(lists.Items[1].Enum, 0xA2);
  EXPECT_EQ(lists.Items[1].Name, u"Älteres");

  CUEFILOList other;
  EXPECT_THROW(buffer->ParseOutputBuffer(other), std::bad_cast);
}

TEST(BootLists, EndWithTheBytesReceived) {
  const std::string whole = TwoLists();
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    SCOPED_TRACE(size);
    const std::size_t expected = size == whole.size() ? 2 : size >= 13 ? 1 : 0;
    CUEFIBootList lists;
    Answered(9, whole.substr(0, size), lists)->ParseOutputBuffer(lists);
    EXPECT_EQ(lists.Count, expected);
    EXPECT_EQ(lists.Items.size(), expected);
    EXPECT_EQ(lists.IsComplete, size == whole.size());

    // The record has more room than the firmware says that it used.
    const auto roomy = Answered(9, whole, lists);
    test::CheckedWriter(roomy->Record(), 44).U32(static_cast<std::uint32_t>(size));
    roomy->ParseOutputBuffer(lists);
    EXPECT_EQ(lists.Count, expected);
  }
  CUEFIBootList none;
  Answered(9, Raw({0}), none)->ParseOutputBuffer(none);
  EXPECT_EQ(none.Count, 0u);
  EXPECT_TRUE(none.Items.empty());
  EXPECT_TRUE(none.IsComplete);
}

// ---- Load options ----

// Descriptions with a letter beyond ASCII and with one beyond 16 bits.
const char16_t kDisk[] = u"Plätte";
const char16_t kNet[] = u"Net \U0001F600";

std::string Option(std::uint16_t number, std::uint32_t attributes, std::u16string_view description,
                   const std::string& path, const std::string& optional_data = "") {
  const std::string option =
      Number(attributes, 4) + Number(path.size(), 2) + Utf16(description) + path + optional_data;
  return Number(number, 2) + Number(option.size(), 4) + option;
}

const std::string kEnd = Raw({0x7F, 0xFF, 4, 0});
const std::string kPciRoot = Raw({2, 1, 12, 0, 0xD0, 0x41, 0x03, 0x0A, 0, 0, 0, 0});
const std::string kSata = Raw({3, 0x12, 10, 0, 1, 0, 0xFF, 0xFF, 0, 0});
const std::string kUsb = Raw({3, 5, 6, 0, 3, 1});

std::string TwoOptions() {
  return Number(2, 4) + Number(7, 2) + Number(0x10, 2) +
         Option(0x10, 1, kDisk, kPciRoot + kSata + kEnd, "\x01\x02") +
         Option(7, 0x101, kNet, kUsb + Raw({0x7F, 1, 4, 0}) + kPciRoot + kEnd);
}

// Of one list, without paths: the bytes are those of the boot specification.
std::string TwoLegacyOptions() {
  return Number(2, 4) + Number(0, 2) + Number(1, 2) +
         Option(0, 1, u"Disk", Raw({5, 1, 2, 0, 0x10, 0}) + Nul("IDE 0")) +
         Option(1, 0, u"Net", Raw({5, 1, 0x80, 0, 0, 1}) + Nul("PXE"));
}

TEST(LoadOptions, AreAskedFor) {
  auto buffer = Make(3, 11);
  CUEFILOList options;
  options.ListEnum = 0x1234;
  options.Arg3 = 9;
  options.KeyArgIndex = 4;
  std::uint32_t size = 8;
  ASSERT_NE(buffer->FillInputBuffer(0x55, size, options), nullptr);
  EXPECT_EQ(size, 56u);
  ExpectRecord(*buffer, {{0x34, 44, 0, 0}, 0x100, Prepared(8)});
}

TEST(LoadOptions, AreDecodedWithTheirPaths) {
  CUEFILOList options;
  options.IsUEFI = true;
  const auto buffer = Answered(11, TwoOptions(), options);
  buffer->ParseOutputBuffer(options);
  buffer->ParseOutputBuffer(options);
  EXPECT_EQ(options.Count, 2u);
  EXPECT_EQ(options.BootOrder, (Numbers{7, 0x10}));
  ASSERT_EQ(options.Options.size(), 2u);

  const CUEFILOList::LoadOption& disk = options.Options[0];
  EXPECT_EQ(disk.Index, 0x10);
  EXPECT_EQ(disk.EntrySize, 4u + 2 + 14 + 26 + 2);
  EXPECT_EQ(disk.Attributes, 1u);
  EXPECT_EQ(disk.FilePathListLength, 26);
  EXPECT_EQ(disk.Description, kDisk);
  EXPECT_EQ(devicepath::DevicePathToText(disk.FilePath), "PciRoot(0x0)/Sata(0x1,0xFFFF,0x0)");
  const std::optional<devicepath::LoadOption> whole = devicepath::DecodeLoadOption(disk.Option);
  ASSERT_TRUE(whole);
  EXPECT_EQ(whole->optional_data, (std::vector<std::uint8_t>{1, 2}));

  // Of several instances, the first is decoded.
  const CUEFILOList::LoadOption& net = options.Options[1];
  EXPECT_EQ(net.Index, 7);
  EXPECT_EQ(net.Attributes, 0x101u);
  EXPECT_EQ(net.Description, kNet);
  EXPECT_EQ(devicepath::DevicePathToText(net.FilePath), "USB(0x3,0x1)");
  EXPECT_EQ(devicepath::DecodeLoadOption(net.Option)->paths.front().text,
            "USB(0x3,0x1),/PciRoot(0x0)");
}

TEST(LoadOptions, OfALegacyListAreDecodedAsRecords) {
  CUEFILOList options;
  const auto buffer = Answered(11, TwoLegacyOptions(), options);
  buffer->ParseOutputBuffer(options);
  ASSERT_EQ(options.Options.size(), 2u);
  ASSERT_EQ(options.Options[0].FilePath.size(), 1u);
  const auto* const disk = dynamic_cast<const CUEFILOList::LegacyFilePathList*>(
      options.Options[0].FilePath.front().get());
  ASSERT_NE(disk, nullptr);
  EXPECT_EQ(disk->Type, 5);
  EXPECT_EQ(disk->SubType, 1);
  EXPECT_EQ(disk->DeviceType, 2);
  EXPECT_EQ(disk->StatusFlag, 0x10);
  EXPECT_EQ(disk->Description, "IDE 0");
  EXPECT_EQ(devicepath::DevicePathToText(options.Options[0].FilePath), "BBS(HD,IDE 0,0x10)");
  EXPECT_EQ(devicepath::DevicePathToText(options.Options[1].FilePath), "BBS(0x80,PXE,0x100)");

  // A description ends with its entry; without the numbers there is no record.
  struct Case {
    std::string path;
    const char* text;
  };
  for (const Case& c : {Case{Raw({5, 1, 2, 0, 0, 0}) + "IDE", "BBS(HD,IDE,0x0)"},
                        Case{Raw({5, 1, 2, 0, 0, 0}), "BBS(HD,,0x0)"},
                        Case{Raw({5, 1, 2, 0, 0}), ""}, Case{"", ""}}) {
    CUEFILOList one;
    Answered(11, Number(1, 4) + Number(0, 2) + Option(0, 1, u"x", c.path), one)
        ->ParseOutputBuffer(one);
    ASSERT_EQ(one.Options.size(), 1u);
    EXPECT_EQ(devicepath::DevicePathToText(one.Options[0].FilePath), c.text);
  }
}

TEST(LoadOptions, EndWithTheBytesReceived) {
  for (const bool is_uefi : {true, false}) {
    const std::string whole = is_uefi ? TwoOptions() : TwoLegacyOptions();
    const std::size_t first_end = 8 + (is_uefi ? 6 + 48 : 6 + 28);
    for (std::size_t size = 0; size <= whole.size(); ++size) {
      SCOPED_TRACE(size);
      const std::size_t expected = size == whole.size() ? 2 : size >= first_end ? 1 : 0;
      CUEFILOList options;
      options.IsUEFI = is_uefi;
      Answered(11, whole.substr(0, size), options)->ParseOutputBuffer(options);
      EXPECT_EQ(options.Count, expected);
      EXPECT_EQ(options.Options.size(), expected);
      EXPECT_EQ(options.IsComplete, size == whole.size());
      EXPECT_EQ(options.BootOrder.size(), size >= 8 ? 2u : size >= 6 ? 1u : 0u);
    }
    // Any byte may hold anything.
    for (std::size_t at = 0; at < whole.size(); ++at) {
      for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(value);
        CUEFILOList options;
        options.IsUEFI = is_uefi;
        const auto buffer = Answered(11, damaged, options);
        buffer->ParseOutputBuffer(options);
        EXPECT_LE(options.Count, whole.size() / 6);
        ConsoleCapture console;
        buffer->DisplayOutputBuffer();
      }
    }
  }
}

TEST(LoadOptions, KeepWhatACutEntryHolds) {
  struct Case {
    const char* what;
    std::string entry;  // behind its number
    std::u16string description;
    std::string path;
  };
  const std::string head = Number(1, 4) + Number(4, 2);
  const Case cases[] = {
      {"nothing", "", u"", ""},
      {"attributes alone", Number(1, 4), u"", ""},
      {"a description without an end", head + Utf16(u"Di").substr(0, 4), u"Di", ""},
      {"a description without a path", head + Utf16(u"Di"), u"Di", ""},
      {"a path without an end", head + Utf16(u"Di") + kPciRoot, u"Di", "PciRoot(0x0)"},
      {"a cut node", head + Utf16(u"Di") + kPciRoot + kSata.substr(0, 9), u"Di", "PciRoot(0x0)"},
      {"an unknown node", head + Utf16(u"Di") + kPciRoot + Raw({3, 7, 4, 0}) + kSata + kEnd, u"Di",
       "PciRoot(0x0)"},
      {"an end first", head + Utf16(u"Di") + kEnd + kSata, u"Di", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    CUEFILOList options;
    options.IsUEFI = true;
    Answered(11,
             Number(2, 4) + Number(5, 2) + Number(9, 2) + Number(5, 2) + Number(c.entry.size(), 4) +
                 c.entry + Option(9, 1, u"Next", kUsb + kEnd),
             options)
        ->ParseOutputBuffer(options);
    ASSERT_EQ(options.Options.size(), 2u);
    EXPECT_EQ(options.Options[0].Index, 5);
    EXPECT_EQ(options.Options[0].EntrySize, c.entry.size());
    EXPECT_EQ(options.Options[0].Description, c.description);
    EXPECT_EQ(devicepath::DevicePathToText(options.Options[0].FilePath), c.path);
    EXPECT_EQ(devicepath::DevicePathToText(options.Options[1].FilePath), "USB(0x3,0x1)");
  }
}

// ---- Boot order ----

TEST(BootOrder, IsSent) {
  struct Case {
    const char* what;
    std::uint32_t room;
    std::uint32_t count;
    Numbers order;
    bool has_record;
    std::string area;
  };
  const Case cases[] = {
      {"three", 0, 3, {2, 0, 0x1001}, true, Raw({2, 0, 0, 0, 1, 0x10})},
      {"the first two", 0, 2, {2, 0, 1}, true, Raw({2, 0, 0, 0})},
      {"with room", 3, 1, {2}, true, Raw({2, 0, 0, 0, 0})},
      {"none", 0, 0, {}, true, ""},
      {"fewer than counted", 0, 2, {1}, false, ""},
      {"no array", 0, 0xFFFFFFFF, {}, false, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto buffer = Make(3, 12);
    CUEFILOList list;
    list.ListEnum = 0x12345;
    list.Count = c.count;
    list.BootOrder = c.order;
    list.Arg4 = 0x44;
    list.KeyArgIndex = 3;
    std::uint32_t size = c.room;
    EXPECT_EQ(buffer->FillInputBuffer(0x77, size, list) != nullptr, c.has_record);
    if (!c.has_record) continue;
    EXPECT_EQ(size, 44 + c.area.size());
    ExpectRecord(*buffer, {{0x12345, 44, 0x77, 0x44}, 0x100, c.area});
  }
}

TEST(BootOrder, IsAskedForAtTheConsole) {
  const std::string ask_list = "Enter the Enum Value of the Boot List (from Class 3, Select 9) : ";
  const std::string ask_count = "Enter the Load Option Item count (from Class 3, Select 11) : ";
  const std::string ask_order = "Enter 3 Elements for new Boot Order : ";
  struct Case {
    std::uint16_t select;
    const char* answers;
    bool has_record;
    Expected record;
    std::string output;
  };
  const Expected order = {{5, 44, 0, 0}, 0x100, Raw({2, 0, 10, 0, 0, 0})};
  const Case cases[] = {
      {9, "", true, {{44, 0, 0, 0}, 1, Prepared(0)}, ""},
      {11, "300\n", true, {{44, 44, 0, 0}, 0x100, Prepared(0)}, ask_list},
      {11, "", false, {}, ask_list},
      {12, "5\n3\n2\n10\n0\n", true, order, ask_list + ask_count + ask_order},
      {12, "5\n3\n2 10 0\n", true, order, ask_list + ask_count + ask_order},
      // A line that is not numbers alone, or holds too many, is asked again.
      {12, "5\n3\nx\n2 y\n65536\n2 10\n1 2\n0\n", true, order,
       ask_list + ask_count + ask_order + ask_order + ask_order + ask_order},
      {12, "5\n70000\n3\n2 10 0\n", true, order, ask_list + ask_count + ask_count + ask_order},
      {12, "5\n3\n2 10\n", false, {}, ask_list + ask_count + ask_order},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.answers);
    auto buffer = Make(3, c.select);
    std::uint32_t size = 0;
    ConsoleCapture console(c.answers);
    EXPECT_EQ(buffer->PromptInputBuffer(0, size, true) != nullptr, c.has_record);
    EXPECT_EQ(console.Output(), c.output);
    if (c.has_record) ExpectRecord(*buffer, c.record);
  }
  ConsoleCapture silent;
  std::uint32_t size = 0;
  EXPECT_NE(Make(3, 12)->PromptInputBuffer(0, size, false), nullptr);
  EXPECT_EQ(silent.Output(), "");
}

// ---- Displays ----

// Behind the four result words.
std::string Shown(CBuffer& buffer) {
  ConsoleCapture console;
  buffer.DisplayOutputBuffer();
  const std::string output = console.Output();
  const std::string words_end = "cbRES4 : Byte 0 - 0\t Byte 1 - 0\t Byte 2 - 0\t Byte 3 - 0\n\n";
  const std::size_t end = output.find(words_end);
  return end == std::string::npos ? output : output.substr(end + words_end.size());
}

TEST(BootDisplay, ShowsListsAndOptions) {
  CUEFIBootList lists;
  EXPECT_EQ(Shown(*Answered(9, TwoLists(), lists)),
            "Boot List Count : 2\nBoot List Items (Enum : Name) : \n1 : UEFI\na2 : Älteres\n");
  CUEFILOList options;
  options.IsUEFI = true;
  EXPECT_EQ(Shown(*Answered(11, TwoOptions(), options)),
            "Load Option Item Count : 2\nBoot Order Array : 7 10 \nEFI Load Option Item : \n"
            "Index - 10\tAttributes : 1\tOption Description : Plätte\nFile Path List :- \n"
            "Index - 7\tAttributes : 101\tOption Description : Net \xF0\x9F\x98\x80\n"
            "File Path List :- \n");
  options.IsUEFI = false;
  EXPECT_EQ(Shown(*Answered(11, TwoLegacyOptions(), options)),
            "Load Option Item Count : 2\nBoot Order Array : 0 1 \nEFI Load Option Item : \n"
            "Index - 0\tAttributes : 1\tOption Description : Disk\nFile Path List :- \n"
            "Type : 5\tSub-Type : 1\tDeviceType : 2\tStatus Flag : 10\tDescription String : IDE 0\n"
            "Index - 1\tAttributes : 0\tOption Description : Net\nFile Path List :- \n"
            "Type : 5\tSub-Type : 1\tDeviceType : 80\tStatus Flag : 100\tDescription String : "
            "PXE\n");
  // Decimal again.
  ConsoleCapture console;
  std::cout << 16;
  EXPECT_EQ(console.Output(), "16");

  const auto failed = Answered(9, TwoLists(), lists);
  test::CheckedWriter(failed->Record(), 20).U32(0xFFFFFFFF);
  EXPECT_EQ(Shown(*failed), "");
}

// The kind of a list is what was said with the request or the answer, whatever its bytes look like;
// where nobody said it, the bytes are asked.
TEST(BootDisplay, ShowsLegacyEntriesOfLegacyLists) {
  struct Case {
    const char* what;
    std::string path;
    bool looks_legacy;
  };
  const Case cases[] = {
      {"a path", kUsb + kEnd, false},
      {"a legacy entry", Raw({5, 1, 2, 0, 0x10, 0}) + Nul("IDE 0"), true},
      {"a legacy entry that is a node", Raw({5, 1, 6, 0, 0, 0}) + Nul("Net"), true},
      {"a legacy entry of another type", Raw({2, 1, 2, 0, 0x10, 0}) + Nul("USB 0"), true},
      {"a path without an end", kUsb + kPciRoot, false},
      {"a path of the boot specification", Raw({5, 1, 9, 0, 2, 0, 0, 0, 0}) + kEnd, false},
  };
  enum { kFilled, kParsed, kPrompted };
  for (const Case& c : cases) {
    const std::string answer = Number(1, 4) + Number(0, 2) + Option(0, 1, u"x", c.path);
    for (const bool is_uefi : {true, false}) {
      for (const auto how : {kFilled, kParsed, kPrompted}) {
        SCOPED_TRACE(c.what + std::string(is_uefi ? " UEFI " : " legacy ") + std::to_string(how));
        CUEFILOList options;
        options.IsUEFI = how == kFilled ? is_uefi : !is_uefi;
        auto buffer = Answered(11, answer, options);
        if (how == kPrompted) {
          ConsoleCapture console("0\n");
          auto size = static_cast<std::uint32_t>(answer.size());
          ASSERT_NE(buffer->PromptInputBuffer(0, size, true), nullptr);
          test::CheckedWriter(buffer->Record(), 48).Bytes(bytes::AsBytes(answer));
        }
        if (how == kParsed) {
          options.IsUEFI = is_uefi;
          buffer->ParseOutputBuffer(options);
        }
        const bool is_shown = Shown(*buffer).find("DeviceType") != std::string::npos;
        EXPECT_EQ(is_shown, how == kPrompted ? c.looks_legacy : !is_uefi);
      }
    }
  }
}

// One stream of what both outputs get, in order.
class Both : public std::wstreambuf, public std::streambuf {
 public:
  Both()
      : wide_before_(std::wcout.rdbuf(static_cast<std::wstreambuf*>(this))),
        narrow_before_(std::cout.rdbuf(static_cast<std::streambuf*>(this))) {}
  ~Both() override {
    std::wcout.rdbuf(wide_before_);
    std::cout.rdbuf(narrow_before_);
  }
  std::wstring text;

 private:
  std::wstreambuf::int_type overflow(std::wstreambuf::int_type c) override {
    text += static_cast<wchar_t>(c);
    return c;
  }
  std::streambuf::int_type overflow(std::streambuf::int_type c) override {
    text += static_cast<wchar_t>(c);
    return c;
  }
  std::wstreambuf* wide_before_;
  std::streambuf* narrow_before_;
};

TEST(BootDisplay, WritesNamesToTheWideOutput) {
  CUEFILOList options;
  const auto buffer = Answered(11, TwoOptions(), options);
  Both both;
  buffer->DisplayOutputBuffer();
  EXPECT_NE(both.text.find(L"Option Description : Pl\u00E4tte\nFile Path List :- \n"),
            std::wstring::npos);
  EXPECT_NE(both.text.find(L"Option Description : Net \U0001F600\nFile Path List :- \n"),
            std::wstring::npos);
}

// ---- Legacy priorities ----

TEST(LegacyPriorities, AreAskedFor) {
  struct Case {
    const char* what;
    std::uint32_t devices;
    std::uint32_t entry_length;
    bool has_record;
    Words args;
    std::uint32_t length;
  };
  const Case cases[] = {
      {"eight devices", 8, 16, true, {44, 56, 188, 0}, 200},
      {"no device", 0, 16, true, {44, 48, 52, 0}, 56},
      {"entries of no length", 3, 0, true, {44, 51, 55, 0}, 62},
      {"as many as fit", 221, 16, true, {44, 269, 3809, 0}, 4034},
      {"more than fit", 225, 16, false, {}, 0},
      {"many devices", 0xFFFFFFFF, 0, false, {}, 0},
      {"a product of 32 bits", 0x10000, 0x10000, false, {}, 0},
      {"a product of 64 bits", 0xFFFFFFFF, 0xFFFFFFFF, false, {}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto buffer = Make(3, 3);
    CLegacyBBSIPLPriority data;
    data.MaxDevices = c.devices;
    data.EntryLength = c.entry_length;
    data.Arg4 = 9;
    data.KeyArgIndex = 4;
    std::uint32_t size = 0;
    EXPECT_EQ(buffer->FillInputBuffer(0x1234, size, data) != nullptr, c.has_record);
    if (!c.has_record) continue;
    EXPECT_EQ(size, c.length);
    ExpectRecord(*buffer, {c.args, 0x10101,
                           Prepared(c.devices) + Prepared(c.devices * c.entry_length) +
                               Prepared(c.devices)});
  }
  // Offsets are words of 16 bits, however large the transfer buffer is.
  const std::unique_ptr<CBuffer> large(CreateBuffer(3, 3, 1024 * 1024));
  CLegacyBBSIPLPriority data;
  data.MaxDevices = 5000;
  data.EntryLength = 16;
  std::uint32_t size = 0;
  EXPECT_EQ(large->FillInputBuffer(0, size, data), nullptr);
}

TEST(LegacyPriorities, AreSent) {
  CLegacyBBSIPLPriority data;
  data.Count = 3;
  data.IPLPriority = {1, 2, 3, 9};
  data.BCVPriority = {4, 5, 6};
  data.Arg4 = 8;
  data.KeyArgIndex = 3;
  auto buffer = Make(3, 5);
  std::uint32_t size = 0;
  ASSERT_NE(buffer->FillInputBuffer(0x55, size, data), nullptr);
  EXPECT_EQ(size, 50u);
  ExpectRecord(*buffer, {{44, 47, 0x55, 8}, 0x101, Raw({1, 2, 3, 4, 5, 6})});
  data.Count = 4;
  EXPECT_EQ(buffer->FillInputBuffer(0, size, data), nullptr) << "a list is too short";
}

TEST(LegacyPriorities, AreDecoded) {
  struct Case {
    const char* what;
    std::uint32_t count;
    std::uint32_t entry_length;
    std::uint32_t table_length;  // as the firmware says
    std::size_t expected;
  };
  const Case cases[] = {
      {"all", 3, 16, 48, 3},
      {"fewer than there are", 2, 16, 48, 2},
      {"none", 0, 16, 48, 0},
      {"more than there are", 0xFFFFFFFF, 16, 48, 3},
      {"short entries", 3, 12, 36, 2},
      {"long entries", 3, 20, 60, 3},
      {"fewer received", 3, 16, 31, 1},
      {"more said than there are", 3, 16, 0xFFFFFFFF, 3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto buffer = Make(3, 3);
    CLegacyBBSIPLPriority data;
    data.MaxDevices = 3;
    data.EntryLength = c.entry_length;
    data.Count = c.count;
    std::uint32_t size = 0;
    ASSERT_NE(buffer->FillInputBuffer(0, size, data), nullptr);
    test::CheckedWriter out(buffer->Record(), 48);
    out.Bytes(bytes::AsBytes(Raw({2, 0, 1})));
    out.U32(c.table_length);
    for (std::uint8_t i = 0; i < 3 * c.entry_length; ++i) out.U8(i);
    out.U32(3);
    out.Bytes(bytes::AsBytes(Raw({7, 8, 9})));
    EXPECT_TRUE(out.Ok());

    buffer->ParseOutputBuffer(data);
    EXPECT_EQ(data.Count, c.expected);
    EXPECT_EQ(data.DeviceTable.size(), c.expected);
    std::vector<std::uint8_t> ipl = {2, 0, 1};
    std::vector<std::uint8_t> bcv = {7, 8, 9};
    ipl.resize(c.expected);
    bcv.resize(c.expected);
    EXPECT_EQ(data.IPLPriority, ipl);
    EXPECT_EQ(data.BCVPriority, bcv);
    if (c.expected < 2) continue;
    // Entries stand 16 bytes apart, whatever length was asked for.
    const CLegacyBBSIPLPriority::DeviceEntry& second = data.DeviceTable[1];
    EXPECT_EQ(second.First, 0x1110);
    EXPECT_EQ(second.Second, 0x1312);
    EXPECT_EQ(second.Third, 0x17161514u);
    EXPECT_EQ(second.Fourth, 0x1B1A1918u);
    EXPECT_EQ(second.Fifth, 0x1F1E1D1Cu);
  }
}

TEST(LegacyPriorities, AskForTheirSizesAtTheConsole) {
  auto buffer = Make(3, 3);
  std::uint32_t size = 0;
  {
    ConsoleCapture console("8\n16\n");
    ASSERT_NE(buffer->PromptInputBuffer(0, size, true), nullptr);
    EXPECT_EQ(console.Output(),
              "Enter the details for BBS IPL Priority:"
              "What is the maximum (system) number of Devices supported ? "
              "How long (in Bytes) is each table entry? ");
  }
  EXPECT_EQ(size, 200u);
  ConsoleCapture console("8\n");
  EXPECT_EQ(buffer->PromptInputBuffer(0, size, true), nullptr) << "the input ended";
  EXPECT_NE(Make(3, 5)->PromptInputBuffer(0, size, true), nullptr);
}

TEST(LegacyPriorities, DisplayOnlyWhatWasWritten) {
  CLegacyBBSIPLPriority data;
  for (const std::uint16_t select : {std::uint16_t{3}, std::uint16_t{5}}) {
    auto buffer = Make(3, select);
    std::uint32_t size = 0;
    ASSERT_NE(buffer->FillInputBuffer(0, size, data), nullptr);
    ConsoleCapture console;
    buffer->DisplayOutputBuffer();
    EXPECT_EQ(console.Output().empty(), select == 3);
  }
}

// ---- Data blocks ----

TEST(DataBlock, IsSentOrAskedFor) {
  struct Case {
    const char* what;
    bool is_read;
    std::uint32_t argument;
    std::uint32_t length;
    bool has_data;
    bool has_record;
    Expected record;
  };
  const std::string sent = Raw({0xA1, 0xA2, 0xA3, 0, 0, 0, 0});
  const Case cases[] = {
      {"write", false, 2, 3, true, true, {{1, 44, 3, 4}, 0x100, sent}},
      {"write by the fourth word", false, 4, 3, true, true, {{1, 2, 3, 44}, 0x1000000, sent}},
      {"write by no word", false, 0, 3, true, true, {{1, 2, 3, 4}, 0, sent}},
      {"write nothing", false, 1, 0, false, true, {{44, 2, 3, 4}, 1, Number(0, 4)}},
      {"write of no block", false, 1, 3, false, false, {}},
      {"read", true, 3, 9, true, true, {{1, 2, 44, 4}, 0x10000, Prepared(9)}},
      {"read by the fifth word", true, 5, 0, false, true, {{1, 2, 3, 4}, 0, Prepared(0)}},
      {"read of too much", true, 1, 0xFFFFFFFF, false, false, {}},
  };
  for (const auto& [cls, select] : {std::pair{2, 1}, std::pair{6, 5}}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.what);
      auto buffer = Make(static_cast<std::uint16_t>(cls), static_cast<std::uint16_t>(select));
      std::uint8_t block[16] = {0xA1, 0xA2, 0xA3, 0xA4};
      CGenericData data;
      data.Arg1 = 1;
      data.Arg2 = 2;
      data.Arg3 = 3;
      data.Arg4 = 4;
      data.KeyArgIndex = 1;  // the key is not placed
      data.IsRead = c.is_read;
      data.BufferArgIndex = c.argument;
      data.DataLength = c.length;
      data.Data = c.has_data ? block : nullptr;
      std::uint32_t size = 0;
      EXPECT_EQ(buffer->FillInputBuffer(0x1234, size, data) != nullptr, c.has_record);
      if (!c.has_record) continue;
      EXPECT_EQ(size, 44 + c.record.area.size());
      ExpectRecord(*buffer, c.record);
    }
  }
}

TEST(DataBlock, IsReceived) {
  struct Case {
    const char* what;
    bool is_read;
    bool has_data;
    std::uint32_t room;
    std::uint32_t said;
    std::uint32_t received;
    std::uint32_t copied;
  };
  const Case cases[] = {
      {"less than there is room for", true, true, 16, 10, 10, 10},
      {"all", true, true, 16, 16, 16, 16},
      {"more than there is room for", true, true, 16, 0xFFFFFFFF, 16, 16},
      {"nothing", true, true, 16, 0, 0, 0},
      {"no block", true, false, 16, 10, 16, 0},
      {"a write", false, true, 16, 10, 16, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    auto buffer = Make(2, 1);
    std::uint8_t block[20] = {};
    CGenericData data;
    data.IsRead = c.is_read;
    data.BufferArgIndex = 1;
    data.DataLength = c.room;
    data.Data = c.has_data ? block : nullptr;
    std::uint32_t size = 0;
    ASSERT_NE(buffer->FillInputBuffer(0, size, data), nullptr);
    test::CheckedWriter out(buffer->Record(), 44);
    out.U32(c.said);
    out.Bytes(bytes::AsBytes(std::string(16, 'x')));
    buffer->ParseOutputBuffer(data);
    EXPECT_EQ(data.DataLength, c.received);
    EXPECT_EQ(std::string(block, block + 20),
              std::string(c.copied, 'x') + std::string(20 - c.copied, '\0'));
  }
}

}  // namespace
}  // namespace mira
