// BIOS tables and values from bytes and back, and the requests that carry them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "buffers/buffer_factory.h"
#include "pldm/aci_info2_buffer.h"
#include "pldm/attribute_convert.h"
#include "pldm/progress.h"
#include "pldm/table_fetch.h"
#include "pldm/table_parser.h"
#include "tests/support/byte_builder.h"
#include "tests/support/checked_cursors.h"
#include "tests/support/console_capture.h"
#include "tests/support/host.h"

namespace mira::pldm {
namespace {

using test::ByteBuilder;
using test::Bytes;
using test::ConsoleCapture;
using test::Hex;

constexpr char kFlowLine[] = "Flow shouldn't reach here; contact the developer!!\n";

PLDM::ATTRIBUTE_TYPE Type(int number) { return static_cast<PLDM::ATTRIBUTE_TYPE>(number); }

Bytes AllBytes(const CBuffer& buffer) {
  return Bytes(buffer.Record().begin(), buffer.Record().end());
}

TEST(StringTable, SplitsTextsAtTheFirstBracket) {
  struct Case {
    const char* whole;
    const char* text;
    const char* suffix;
  };
  const Case cases[] = {{"Name[x]", "Name", "[x]"},
                        {"Name", "Name", ""},
                        {"[x]", "", "[x]"},
                        {"a[b][c]", "a", "[b][c]"},
                        {"Open [", "Open ", "["}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.whole);
    Tables tables;
    ParseStringTable(ByteBuilder().String(7, c.whole).Table(), tables);
    ASSERT_TRUE(tables.FindString(7));
    EXPECT_EQ(tables.FindString(7)->text, c.text);
    EXPECT_EQ(tables.FindString(7)->suffix, c.suffix);
  }
}

TEST(StringTable, StopsWhereItsEntriesEnd) {
  struct Case {
    const char* what;
    Bytes data;
    std::vector<std::string> texts;  // of handles 1, 2, …
  };
  const Case cases[] = {
      {"nothing", {}, {}},
      {"seven bytes", Hex("01 00 03 00 41 42 43"), {}},
      {"eight bytes", Hex("01 00 04 00 41 42 43 44"), {"ABCD"}},
      {"pad bytes and checksum are no entry",
       ByteBuilder().String(1, "ABC").String(2, "D").Table(),
       {"ABC", "D"}},
      {"a rest of seven bytes is none", Hex("01 00 02 00 41 42 02 00 03 00 43 44 45"), {"AB"}},
      {"a rest of eight bytes is one",
       Hex("01 00 02 00 41 42 02 00 04 00 43 44 45 46"),
       {"AB", "CDEF"}},
      {"an entry that overruns keeps those before it",
       Hex("01 00 02 00 41 42 02 00 05 00 43 44 45 46"),
       {"AB"}},
      {"an empty text", Hex("01 00 00 00 02 00 04 00 43 44 45 46"), {"", "CDEF"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Tables tables;
    ParseStringTable(c.data, tables);
    for (std::uint16_t handle = 1; handle <= c.texts.size(); ++handle) {
      ASSERT_TRUE(tables.FindString(handle));
      EXPECT_EQ(tables.Text(handle), c.texts[handle - 1u]);
    }
    EXPECT_FALSE(tables.FindString(static_cast<std::uint16_t>(c.texts.size() + 1)));
  }
}

TEST(StringData, HoldsWideTexts) {
  Tables::WideIndex index;
  ParseStringData(ByteBuilder().String(3, u"Gr\u00FC\u00DFe").String(0x104, u"\u65E5").Table(),
                  index);
  EXPECT_EQ(index.size(), 2u);
  EXPECT_EQ(index[3], u"Gr\u00FC\u00DFe");
  EXPECT_EQ(index[0x104], u"\u65E5");
  ParseStringData(Hex("03 00 01 00 41 00 05 00 FF FF 42 00 43 00"), index);
  EXPECT_EQ(index.size(), 2u) << "the length counts characters, which are not there";
  EXPECT_EQ(index[3], u"A") << "a later text replaces";
}

// An attribute of each type, in DSP0247's layout.
ByteBuilder EachAttribute() {
  ByteBuilder table;
  table.U16(0x20).U8(0).U16(1).U8(3).U16(10).U16(11).U16(12).U8(2).U8(2).U8(0);
  table.U16(0x21).U8(129).U16(2).U8(1).U16(4).U16(0x140).Text("dflt");
  table.U16(0x22).U8(2).U16(3).U8(2).U16(8).U16(32).Text("pw");
  table.U16(0x23).U8(3).U16(4).U64(5).U64(0x1122334455667788).U32(0x10).U64(21);
  table.U16(0x24).U8(4).U16(5).U8(1).U8(2).U8(3).U8(4).U8(2).U16(11).U16(10);
  table.U16(0x25).U8(5).U16(6).U16(12).U8(7).U8(8);
  table.U16(0x26).U8(134).U16(99).U8(1).U16(10);
  return table;
}

void AddNames(Tables& tables) {
  ByteBuilder strings;
  for (std::uint16_t handle = 1; handle <= 6; ++handle) {
    strings.String(handle, "Name" + std::to_string(handle));
  }
  strings.String(10, "A").String(11, "B[b]").String(12, "C");
  ParseStringTable(strings.Table(), tables);
}

TEST(AttributeTable, KeepsTypesAndFindsNames) {
  Tables tables;
  AddNames(tables);
  ParseAttributeTable(EachAttribute().Table(), tables);
  std::vector<unsigned> types;
  for (const auto* const attribute : tables.Attributes()) types.push_back(attribute->type);
  EXPECT_EQ(types, (std::vector<unsigned>{0, 129, 2, 3, 4, 5, 134}));
  EXPECT_EQ(tables.HandleOf("Name4"), 0x23);
  EXPECT_EQ(tables.HandleOf("Name9"), std::nullopt);
  EXPECT_EQ(tables.Text(tables.FindAttribute(0x26)->name_handle), "") << "no string has it";
}

TEST(AttributeTable, LetsLaterEntriesReplaceEarlierOnes) {
  Tables tables;
  AddNames(tables);
  ParseAttributeTable(Hex("09 00 00 01 00 00 00 "  // an enumeration without values
                          "08 00 06 01 00 00 "     // config sets
                          "09 00 06 02 00 01 0A 00 00 00 00 00"),
                      tables);
  ASSERT_EQ(tables.Attributes().size(), 2u);
  EXPECT_EQ(tables.Attributes().front()->handle, 8) << "ascending";
  EXPECT_EQ(tables.FindAttribute(9)->type, PLDM::BIOSConfigSet);
  EXPECT_EQ(tables.HandleOf("Name1"), 8);
  EXPECT_EQ(tables.HandleOf("Name2"), 9);
}

TEST(Tables, FindEachOfMany) {
  constexpr unsigned kCount = 60000;
  ByteBuilder strings;
  ByteBuilder attributes;
  for (unsigned i = 1; i <= kCount; ++i) {
    strings.String(static_cast<std::uint16_t>(i), "Attribute" + std::to_string(i) + "[x]");
    attributes.U16(kCount + 1 - i).U8(6).U16(i).U8(0);
  }
  Tables tables;
  ParseStringTable(strings.Table(), tables);
  ParseAttributeTable(attributes.Table(), tables);
  unsigned found = 0;
  for (unsigned i = 1; i <= kCount; ++i) {
    found += tables.HandleOf("Attribute" + std::to_string(i)) == kCount + 1 - i ? 1u : 0u;
  }
  EXPECT_EQ(found, kCount);
  EXPECT_EQ(tables.HandleOf("Attribute60001"), std::nullopt);
  EXPECT_EQ(tables.Attributes().front()->handle, 1);
}

TEST(Tables, SurviveBeingCutAnywhere) {
  const Bytes whole = EachAttribute().Done();
  std::size_t before = 0;
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    SCOPED_TRACE(length);
    // Memory of exactly this length, so that a read behind it is found.
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
    Tables tables;
    ParseAttributeTable(cut, tables);
    EXPECT_GE(tables.Attributes().size(), before) << "entries before the cut stay";
    before = tables.Attributes().size();
    ConsoleCapture console;
    ParseValueTable(cut, tables);
    ParseStringTable(cut, tables);
    ParseStringData(cut, tables.help_strings);
  }
  EXPECT_EQ(before, 7u);
}

TEST(Tables, SurviveCorruption) {
  const Bytes whole = EachAttribute().Table();
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (const unsigned byte : {0x00u, 0x7Fu, 0x80u, 0xFFu}) {
      Bytes corrupt = whole;
      corrupt[at] = static_cast<std::uint8_t>(byte);
      ConsoleCapture console;
      Tables tables;
      ParseStringTable(corrupt, tables);
      ParseAttributeTable(corrupt, tables);
      ParseValueTable(corrupt, tables);
      EXPECT_LE(tables.Attributes().size(), whole.size() / 5);
    }
  }
}

// The value part of an entry, which a write request carries behind the type.
TEST(Values, AreReadAndEncoded) {
  struct Case {
    int type;
    const char* value;
  };
  const Case cases[] = {
      {0, "02 01 05"},
      {0, "00"},
      {1, "03 00 61 62 63"},
      {2, "02 00 70 77"},
      {3, "88 77 66 55 44 33 22 11"},
      {4, "01 02 03 02 00 01"},
      {5, "02 20 00 04 03"},
      {6, "09"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    const Bytes bytes = Hex(c.value);
    test::CheckedReader in(bytes);
    const auto value = ReadValue(in, 1, Type(c.type));
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(in.Left(), 0u);
    Bytes encoded(EncodedSize(*value), 0xEE);
    test::CheckedWriter out(encoded);
    Encode(*value, out);
    EXPECT_TRUE(out.Ok());
    Bytes expected = {static_cast<std::uint8_t>(c.type)};
    expected.insert(expected.end(), bytes.begin(), bytes.end());
    EXPECT_EQ(encoded, expected);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
      bytes::Reader short_in(cut);
      EXPECT_EQ(ReadValue(short_in, 1, Type(c.type)), nullptr) << length;
    }
  }
}

TEST(Values, ComeFromTheirTable) {
  Tables tables;
  ParseValueTable(Hex("20 00 80 01 02 "
                      "21 00 01 05 00 66 69 72 73 74 "
                      "21 00 01 06 00 73 65 63 6F 6E 64 "
                      "22 00 06 04 00 00 C5 C5 C5 C5"),
                  tables);
  EXPECT_EQ(tables.FindValue(0x20)->type, PLDM::BIOSEnumerationReadOnly);
  EXPECT_EQ(dynamic_cast<const IntBIOSStringValue&>(*tables.FindValue(0x21)).text, "second");
  EXPECT_EQ(dynamic_cast<const IntBIOSConfigSetValue&>(*tables.FindValue(0x22)).index, 4);
  Tables none;
  ParseValueTable(Hex("20 00 00 03 01 02 03"), none);
  EXPECT_EQ(none.FindValue(0x20), nullptr) << "a table of seven bytes";
}

TEST(Types, ThatDoNotExistAreDiagnosed) {
  for (const int type : {7, 127, 135, 255}) {
    SCOPED_TRACE(type);
    {
      ConsoleCapture console;
      Tables tables;
      ParseAttributeTable(ByteBuilder().U16(1).U8(static_cast<unsigned>(type)).U16(1).Table(),
                          tables);
      EXPECT_TRUE(tables.Attributes().empty());
      EXPECT_EQ(console.Output(), kFlowLine);
    }
    ConsoleCapture console;
    EXPECT_EQ(MakeValue(Type(type)), nullptr);
    EXPECT_EQ(console.Output(), kFlowLine);
  }
  const auto read_only = MakeValue(PLDM::BIOSIntegerReadOnly);
  Bytes encoded(EncodedSize(*read_only), 0);
  test::CheckedWriter out(encoded);
  ConsoleCapture console;
  Encode(*read_only, out);
  EXPECT_EQ(encoded, Bytes{131}) << "not written";
  EXPECT_EQ(console.Output(), kFlowLine);
}

TEST(Convert, GivesEmptyNamesForPlacesThatAreNotThere) {
  Tables tables;
  AddNames(tables);
  ParseAttributeTable(EachAttribute().Table(), tables);
  IntBIOSEnumerationValue value;
  value.indices = {1, 200};
  PLDM::Enumeration out;
  out.DefaultValues = {"stale"};
  ASSERT_TRUE(Fill(*tables.FindAttribute(0x20), value, tables, out));
  EXPECT_EQ(out.PossibleValues, (std::list<std::string>{"A", "B", "C"}));
  EXPECT_EQ(out.SuffixedValues, (std::list<std::string>{"B[b]"}));
  EXPECT_EQ(out.DefaultValues, (std::list<std::string>{"C", "A"}));
  EXPECT_EQ(out.DefaultIndices, (std::list<std::uint8_t>{2, 0}));
  EXPECT_EQ(out.CurrentIndices, (std::list<std::uint8_t>{1, 200}));
  IntBIOSBootConfigSettingValue order;
  order.ordered_indices = {1, 2, 0};
  PLDM::BootConfigSetting boot;
  ASSERT_TRUE(Fill(*tables.FindAttribute(0x24), order, tables, boot));
  EXPECT_EQ(boot.OrderedSources, (std::list<std::string>{"A", "", "B"}));
  EXPECT_FALSE(Fill(*tables.FindAttribute(0x20), order, tables, boot)) << "not of one type";
}

TEST(Convert, JoinsPairsOf16BitCharacters) {
  Tables tables;
  ParseAttributeTable(ByteBuilder().U16(1).U8(6).U16(3).U8(0).Table(), tables);
  tables.display_strings[3] = u"\U0001F511!";
  PLDM::ConfigSet out;
  FillNames(*tables.FindAttribute(1), tables, out);
  EXPECT_EQ(out.DisplayText, L"\U0001F511!");
}

class Request : public ::testing::Test {
 protected:
  // The record of a command; empty when there is none.
  Bytes Fill(std::uint16_t select, std::uint32_t size = 0, std::uint32_t key = 0) {
    const std::unique_ptr<CBuffer> buffer(CreateBuffer(5, select, 4096));
    const bool filled = buffer->FillInputBuffer(key, size, record_) != nullptr;
    EXPECT_EQ(filled, !AllBytes(*buffer).empty());
    if (filled) {
      EXPECT_EQ(size, AllBytes(*buffer).size());
    }
    return AllBytes(*buffer);
  }
  void Exchange(int type, std::uint16_t handle, const char* value) {
    const Bytes bytes = Hex(value);
    test::CheckedReader in(bytes);
    record_.Exchange = ReadValue(in, handle, Type(type));
  }
  CACIInfo2Record record_;
};

TEST_F(Request, ForTheDirectoryAndATableAsksForRoom) {
  const std::string head = "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 ";
  EXPECT_EQ(Fill(3), Hex("05 00 03 00 2C 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 " + head +
                         "30 00 00 00 00 00 00 00"));
  EXPECT_TRUE(Fill(4).empty()) << "no table is chosen";
  record_.Descriptors.resize(2);
  record_.Descriptors[1].index = 7;
  record_.CurrentTable = 1;
  record_.Received = 0x102;
  record_.Arg2 = 9;
  EXPECT_EQ(Fill(4, 10, 5), Hex("05 00 04 00 2C 00 00 00 00 00 00 00 07 00 00 00 02 01 00 00 " +
                                head + "3A 00 00 00 0A 00 00 00 44 53 43 49 44 53 43 49 00 00"));
  EXPECT_TRUE(Fill(3, 0xFFFFFFFF).empty()) << "more than any transfer buffer holds";
}

TEST_F(Request, ForAValueIsSealed) {
  EXPECT_TRUE(Fill(5).empty());
  Exchange(3, 0x1234, "01 00 00 00 00 00 00 00");
  Bytes expected =
      Hex("05 00 05 00 2C 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
          "00 00 00 00 00 00 00 00 01 00 00 00 D2 00 00 00 A6 00 00 00 24 41 43 49 50 4C 44 4D "
          "77 00 00 00 A2 00 00 00 01 00 02 00 34 12 80 00");
  expected.resize(210);
  EXPECT_EQ(Fill(5, 0, 0x99), expected);
}

TEST_F(Request, ForAWriteCarriesValueAndKey) {
  EXPECT_TRUE(Fill(6).empty());
  Exchange(0, 0x0021, "01 02");
  const std::string tail =
      " 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 01 00 00 00 "
      "4C 00 00 00 20 00 00 00 24 41 43 49 50 4C 44 4D 9C 00 00 00 1C 00 00 00 01 00 02 00 "
      "21 00 03 00 00 01 02 00";
  EXPECT_EQ(Fill(6, 0, 0xA1B2C3D4), Hex("05 00 06 00 2C 00 00 00 D4 C3 B2 A1" + tail));
  record_.Arg2 = 0x77;
  EXPECT_EQ(Fill(6), Hex("05 00 06 00 2C 00 00 00 77 00 00 00" + tail)) << "no key";

  auto text = std::make_unique<IntBIOSStringValue>();
  text->type = PLDM::BIOSString;
  IntBIOSStringValue& string = *text;
  record_.Exchange = std::move(text);
  string.text.assign(65532, 'x');
  EXPECT_EQ(Fill(6).size(), 73u + 65535u);
  string.text += 'x';
  EXPECT_TRUE(Fill(6).empty()) << "its length would not fit";
}

TEST_F(Request, MovesAnswersIntoTheRecord) {
  struct Case {
    const char* what;
    std::size_t length;  // of the text in the answer
    bool complete;
  };
  const Case cases[] = {{"short", 3, true}, {"all there is", 135, true}, {"cut", 136, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Exchange(129, 0x20, "00 00");
    const std::unique_ptr<CBuffer> buffer(CreateBuffer(5, 5, 4096));
    std::uint32_t size = 0;
    ASSERT_NE(buffer->FillInputBuffer(0, size, record_), nullptr);
    test::CheckedWriter answer(buffer->Record(), 72);
    answer.U8(0);
    answer.U16(static_cast<std::uint16_t>(c.length));
    answer.Bytes(Bytes(std::min<std::size_t>(c.length, 135), 'v'));
    buffer->ParseOutputBuffer(record_);
    EXPECT_EQ(record_.ExchangeStatus.has_value(), c.complete);
    EXPECT_EQ(dynamic_cast<const IntBIOSStringValue&>(*record_.Exchange).text,
              std::string(c.complete ? c.length : 0, 'v'));
    EXPECT_EQ(record_.Exchange->handle, 0x20);
    EXPECT_EQ(record_.Exchange->type, PLDM::BIOSStringReadOnly);
  }
}

// A directory of two tables.
Bytes Directory() {
  return Hex(
      "24 41 43 49 02 01 BB AA 49 4E 46 4F 38 00 00 00 3C 00 00 80 11 22 5A 02 "
      "00 00 01 02 0A FF 00 01 00 10 00 00 00 00 AD DE "
      "10 01 00 00 00 00 09 05 20 00 00 00 34 12 00 00");
}

TEST(Directory, IsDecodedAsFarAsItGoes) {
  CACIInfo2Record record;
  record.DecodeHeader(Directory());
  EXPECT_EQ(record.HeaderWord, 0x2211) << "the second of the two words; the others are shown";
  record.CurrentTable = 2;
  EXPECT_EQ(record.CurrentDescriptor(), nullptr);
  const Bytes whole = Directory();
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
    record.DecodeHeader(cut);
    EXPECT_EQ(record.Descriptors.size(), length < 24 ? 0u : (length - 24) / 16) << length;
  }
}

TEST(Directory, IsShown) {
  const std::unique_ptr<CBuffer> buffer(CreateBuffer(5, 3, 4096));
  std::uint32_t size = static_cast<std::uint32_t>(Directory().size());
  SMBiosCI* const record = buffer->PromptInputBuffer(0, size, true);
  ASSERT_NE(record, nullptr);
  test::CheckedWriter(buffer->Record(), 48).Bytes(Directory());
  {
    ConsoleCapture console;
    buffer->DisplayOutputBuffer();
    const std::string output = console.Output();
    EXPECT_EQ(output.substr(0, output.find("\n") + 1),
              "cbRES1 : 0\t The function completed successfully!\n");
    EXPECT_EQ(output.substr(output.find("Signature")),
              "Signature : $ACI\n"
              "Version : 2.1\n"
              "Signatur 2 : INFO\n"
              "Size : 56\n"
              "ACI Features : 0x8000003c\n"
              "Checksum : 90\n"
              "No. of Tables : 2\n"
              "Table Description Record : 1\n"
              "Type : PLDM String Table\n"
              "Reserved : 0x1 0x2 0xa 0xff\n"
              "Table Index : 1\n"
              "Table Size  : 0x4096\n"
              "Table Address : 0xdead0000\n"
              "\n"
              "Table Description Record : 2\n"
              "Type : Display String\n"
              "Reserved : 0x0 0x0 0x0 0x0\n"
              "Table Index : 5\n"
              "Table Size  : 0x32\n"
              "Table Address : 0x1234\n"
              "\n");
  }
  record->cbRES1 = -1;
  ConsoleCapture console;
  buffer->DisplayOutputBuffer();
  EXPECT_EQ(console.Output(), "") << "a failed call has no directory";
  const std::unique_ptr<CBuffer> other(CreateBuffer(5, 4, 4096));
  EXPECT_EQ(other->PromptInputBuffer(0, size, true), nullptr) << "nothing to ask for";
}

// Tables of an independent encoder, and what they hold.
Bytes File(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(in), {});
}

TEST(IndependentTables, AreReadAsTheirEncoderMeantThem) {
  const char* const folder = std::getenv("MIRA_TEST_DATA");
  const std::string path = folder != nullptr ? std::string(folder) + "/pldm/small/" : "";
  if (!std::ifstream(path + "expect.json")) GTEST_SKIP() << "MIRA_TEST_DATA has no tables";
  const auto expected = nlohmann::json::parse(std::ifstream(path + "expect.json"));
  Tables tables;
  ParseStringTable(File(path + "string.bin"), tables);
  ParseAttributeTable(File(path + "attr.bin"), tables);
  ParseValueTable(File(path + "value.bin"), tables);
  EXPECT_EQ(tables.Attributes().size(), expected["attributes"].size());
  for (const auto& e : expected["attributes"]) {
    const auto handle = e["handle"].get<std::uint16_t>();
    SCOPED_TRACE(handle);
    const IntPLDMAttribute* const attribute = tables.FindAttribute(handle);
    const IntPLDMAttributeValue* const value = tables.FindValue(handle);
    ASSERT_NE(attribute, nullptr);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(attribute->type, e["type"].get<unsigned>());
    EXPECT_EQ(value->type, attribute->type);
    EXPECT_EQ(tables.HandleOf(e["name"].get<std::string>()), handle);
    const auto out = PLDM::MakeAttribute(attribute->type);
    ASSERT_TRUE(Fill(*attribute, *value, tables, *out));
    EXPECT_EQ(out->Name, e["name"]);
    EXPECT_EQ(out->Suffix, e["suffix"]);
    nlohmann::json read;
    if (const auto* const o = dynamic_cast<PLDM::Enumeration*>(out.get())) {
      read = {{"possible", o->PossibleValues},
              {"default", o->DefaultValues},
              {"current", o->CurrentIndices}};
    } else if (const auto* const s = dynamic_cast<PLDM::String*>(out.get())) {
      read = {{"min", s->MinLength}, {"max", s->MaxLength}, {"text", s->Value}};
    } else if (const auto* const p = dynamic_cast<PLDM::Password*>(out.get())) {
      read = {{"min", p->MinLength}, {"max", p->MaxLength}, {"text", p->Value}};
    } else if (const auto* const i = dynamic_cast<PLDM::Integer*>(out.get())) {
      read = {{"lower", i->LowerBound},
              {"upper", i->UpperBound},
              {"step", i->ScalarIncrement},
              {"current", i->Value}};
    } else if (const auto* const b = dynamic_cast<PLDM::BootConfigSetting*>(out.get())) {
      std::string order;
      for (const std::string& source : b->OrderedSources) order += source + ";";
      read = {{"boot_type", b->BootConfigType}, {"fail_through", b->FailThroughMode}};
      read["text"] = order;
    } else if (const auto* const c = dynamic_cast<PLDM::Collection*>(out.get())) {
      read = {{"collection", c->CollectionName}, {"members", c->Members}};
    } else {
      const auto choices = Choices(*attribute);
      read["members"] = std::vector<std::uint16_t>(choices.begin(), choices.end());
      read["index"] = dynamic_cast<const IntBIOSConfigSetValue&>(*value).index;
    }
    for (const auto& [key, found] : read.items()) EXPECT_EQ(found, e[key]) << key;
  }
}

TEST(TableFetch, KeepsNothingOfAReadInChunksThatWasCancelled) {
  test::Host host;
  auto* const calling = dynamic_cast<CCallingInterface*>(host->GetBIOSObject(218));
  ASSERT_NE(calling, nullptr);
  const callif::Target target{*calling, host->GetACPIBufSize(), host->GetACPIInstanceName()};
  std::unique_ptr<CACIInfo2Record> record;
  ASSERT_TRUE(FetchTables(target, 0, record));
  ASSERT_TRUE(record);

  SetProgress([](void*, unsigned, unsigned, std::uint32_t,
                 std::uint32_t) { return ProgressAnswer::kCancel; },
              nullptr);
  EXPECT_FALSE(FetchStringData(target, 0, kDisplayStrings, record));
  SetProgress(nullptr, nullptr);
  ASSERT_TRUE(record) << "the other tables stay";
  EXPECT_EQ(record->Assembly, nullptr) << "else the next table is put behind these bytes";
  EXPECT_EQ(record->Received, 0u);
  EXPECT_TRUE(FetchStringData(target, 0, kDisplayStrings, record));
  EXPECT_FALSE(record->Tables.display_strings.empty());
}

}  // namespace
}  // namespace mira::pldm
