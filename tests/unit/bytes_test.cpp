// The bounded reader and writer, which everything that touches firmware bytes relies on, and the
// texts made of bytes.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bytes/reader.h"
#include "bytes/secure.h"
#include "bytes/text.h"
#include "bytes/utf16.h"
#include "bytes/writer.h"

namespace mira::bytes {
namespace {

using namespace std::string_literals;

constexpr std::array<std::uint8_t, 15> kBytes = {0x01, 0x34, 0x12, 0x78, 0x56, 0x34, 0x12, 'A',
                                                 'B',  0,    'C',  0,    0xFF, 0xFE, 0xFD};

TEST(Reader, ReadsLittleEndianInOrder) {
  Reader in(kBytes);
  EXPECT_EQ(in.U8(), 0x01);
  EXPECT_EQ(in.U16(), 0x1234);
  EXPECT_EQ(in.U32(), 0x12345678u);
  EXPECT_EQ(in.CString(), "AB");
  EXPECT_EQ(in.FixedText(2), "C");
  EXPECT_EQ(in.Number(3), 0xFDFEFFu);
  EXPECT_TRUE(in.Ok());
  EXPECT_EQ(in.Left(), 0u);
  Reader wide(kBytes, 1);
  EXPECT_EQ(wide.U64(), 0x4241123456781234u);
  EXPECT_TRUE(wide.Ok());
}

TEST(Reader, FailureSticksAndMovesNothing) {
  Reader in(kBytes, 13);
  EXPECT_EQ(in.U32(), 0u);
  EXPECT_FALSE(in.Ok());
  EXPECT_EQ(in.Offset(), 13u);
  EXPECT_EQ(in.U8(), 0u) << "one byte is there, but a failed reader yields nothing";
  EXPECT_TRUE(in.Rest().empty());
  EXPECT_FALSE(in.Ok());

  Reader no_nul(Slice(kBytes, 12));
  EXPECT_EQ(no_nul.CString(), "");
  EXPECT_FALSE(no_nul.Ok());

  Reader failed(AsBytes(std::string_view("text\0", 5)));
  failed.Take(6);
  EXPECT_EQ(failed.CString(), "") << "a text is there, but a failed reader yields nothing";
  EXPECT_EQ(failed.Offset(), 0u);
  EXPECT_FALSE(failed.Ok());

  Reader outside(kBytes, 16);
  EXPECT_FALSE(outside.Ok());
  Reader huge(kBytes, 1);
  EXPECT_TRUE(huge.Take(static_cast<std::size_t>(-1)).empty());
  EXPECT_FALSE(huge.Ok());
}

#ifdef MIRA_CHECKED

class Neglect : public ::testing::Test {
 protected:
  // How many cursors ended without having been asked while `use` ran.
  template <typename Use>
  int In(Use use) {
    count_ = 0;
    use();
    return count_;
  }

 private:
  struct Handler {
    Handler() : before(SetNeglectHandler([](const Place&) { ++count_; })) {}
    ~Handler() { SetNeglectHandler(before); }
    NeglectHandler before;
  };
  static inline int count_ = 0;
  const Handler handler_;
};

TEST_F(Neglect, IsNoticedInEachCursorThatNobodyAsked) {
  std::array<std::uint8_t, 4> target{};
  EXPECT_EQ(In([] { Reader(kBytes).U8(); }), 1);
  EXPECT_EQ(In([] { Reader(kBytes, 99).CString(); }), 1);
  EXPECT_EQ(In([] { Reader(kBytes).Seek(99); }), 1);
  EXPECT_EQ(In([&] { Writer(target).U32(1); }), 1);
  EXPECT_EQ(In([&] { Writer(target, 2).Text("long"); }), 1);
  EXPECT_EQ(In([] {
              Reader in(kBytes);
              in.U8();
              EXPECT_TRUE(in.Ok());
              in.U8();
            }),
            1)
      << "asked before the last read";
  EXPECT_EQ(In([] {
              Reader in(kBytes);
              EXPECT_EQ(in.Left(), kBytes.size());
              in.Take(kBytes.size() + 1);
            }),
            1)
      << "counted, but not kept to the count";
}

TEST_F(Neglect, IsNoneWhereSomebodyAskedOrNothingCanFail) {
  std::array<std::uint8_t, 4> target{};
  EXPECT_EQ(In([] {
              Reader in(kBytes, 14);
              in.U32();
              EXPECT_FALSE(in.Ok());
            }),
            0);
  EXPECT_EQ(In([&] {
              Writer out(target);
              out.U16(1);
              EXPECT_TRUE(out.Ok());
            }),
            0);
  EXPECT_EQ(In([] {
              for (Reader in(kBytes); in.Left() >= 2;) in.U16();
            }),
            0)
      << "counted";
  EXPECT_EQ(In([] { Reader(kBytes).Rest(); }), 0);
  EXPECT_EQ(In([] { Reader::Lenient(kBytes, 99).U32(); }), 0);
  EXPECT_EQ(In([] {
              try {
                Reader in(kBytes);
                in.U8();
                throw 1;
              } catch (int) {
              }
            }),
            0)
      << "an exception tells enough";
}

TEST_F(Neglect, IsThatOfTheLastCopy) {
  EXPECT_EQ(In([] {
              Reader in(kBytes);
              in.U8();
              Reader copy = in;
              EXPECT_TRUE(copy.Ok());
            }),
            0);
  EXPECT_EQ(In([] {
              Reader in(kBytes);
              in.U8();
              const Reader moved = std::move(in);
            }),
            1);
  EXPECT_EQ(In([] {
              Reader in(kBytes);
              in.U8();
              in = Reader(kBytes);
            }),
            1)
      << "assigning asks nothing";
}

#endif

TEST(Slice, StaysInsideItsBytes) {
  EXPECT_EQ(Slice(kBytes, 14, 9).size(), 1u);
  EXPECT_EQ(Slice(kBytes, 15).size(), 0u);
  EXPECT_EQ(Slice(kBytes, 16).size(), 0u);
  EXPECT_EQ(Slice(kBytes, 2, 3).front(), 0x12);
}

TEST(Writer, WritesWhatFitsOrNothing) {
  std::vector<std::uint8_t> target(8, 0xEE);
  Writer out(target, 1);
  out.U16(0x1234);
  out.Text("ok");
  EXPECT_TRUE(out.Ok());
  EXPECT_EQ(out.Offset(), 6u);
  out.U32(0xFFFFFFFF);
  EXPECT_FALSE(out.Ok());
  out.U8(0x77);
  EXPECT_FALSE(out.Ok());
  EXPECT_EQ(target, (std::vector<std::uint8_t>{0xEE, 0x34, 0x12, 'o', 'k', 0, 0xEE, 0xEE}));
}

TEST(SecureString, WipesWhatItHeld) {
  SecureString secret(std::string_view("a password longer than any small-string buffer"));
  const char* const memory = secret.str().data();
  const std::size_t size = secret.size();
  secret.Clear();  // keeps its memory, so that it can be looked at
  EXPECT_TRUE(secret.empty());
  EXPECT_EQ(std::string(memory, size), std::string(size, '\0'));
}

TEST(Utf16Text, IsConvertedWhole) {
  struct Case {
    std::u16string text;
    std::string utf8;
    std::size_t code_points;
  };
  const Case cases[] = {
      {u"", "", 0},
      {u"Disk", "Disk", 4},
      {u"\u00FC\u0416\u65E5", "\xC3\xBC\xD0\x96\xE6\x97\xA5", 3},
      {u"\xD83D\xDE00", "\xF0\x9F\x98\x80", 1},
      {u"\xD800\xDC00\xDBFF\xDFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", 2},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.utf8);
    EXPECT_EQ(Utf8(c.text), c.utf8);
    EXPECT_EQ(Utf16(c.utf8), c.text);
    EXPECT_EQ(Wide(c.text).size(), sizeof(wchar_t) == 2 ? c.text.size() : c.code_points);
  }
  if constexpr (sizeof(wchar_t) == 4) {
    EXPECT_EQ(Wide(u"\xD83D\xDE00"), std::wstring(1, static_cast<wchar_t>(0x1F600)));
  }

  // Half a pair: UTF-8 has no form for it, a wide text has.
  struct Half {
    std::u16string text;
    const char* utf8;
  };
  const Half halves[] = {{u"\xD83D"s, "\xEF\xBF\xBD"},
                         {u"\xDE00"s, "\xEF\xBF\xBD"},
                         {u"a\xD83D!"s, "a\xEF\xBF\xBD!"},
                         {u"\xDE00\xD83D"s, "\xEF\xBF\xBD\xEF\xBF\xBD"},
                         {u"\xD83D\xD83D\xDE00"s, "\xEF\xBF\xBD\xF0\x9F\x98\x80"}};
  for (const Half& half : halves) {
    EXPECT_EQ(Utf8(half.text), half.utf8);
    EXPECT_EQ(Utf8(Wide(half.text)), half.utf8);
    EXPECT_EQ(static_cast<char16_t>(Wide(half.text)[0]), half.text[0]);
  }
  // Stray, missing and cut continuations, a longer form than needed, a surrogate, past the last.
  for (const char* const bad : {"\x80", "\xC3", "\xC3!", "\xE6\x97", "\xC0\x80", "\xE0\x80\x80",
                                "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF"}) {
    EXPECT_FALSE(Utf16(bad));
    EXPECT_FALSE(IsUtf8(bad));
  }
  EXPECT_TRUE(IsUtf8("\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF"));
}

TEST(Latin1, IsUtf8WithOneByteForEachCodePoint) {
  EXPECT_EQ(Utf8OfLatin1("a\x7F\x80\xE9\xFF"), "a\x7F\xC2\x80\xC3\xA9\xC3\xBF");
  EXPECT_EQ(Latin1OfUtf8("a\xC2\x80\xC3\xBF"), "a\x80\xFF");
  EXPECT_EQ(Latin1OfUtf8("\xC4\x80"), std::nullopt) << "U+0100";
  EXPECT_EQ(Latin1OfUtf8("\xE9"), std::nullopt) << "no UTF-8";
}

TEST(Numbers, AreReadWholeOrNotAtAll) {
  struct Case {
    const char* text;
    std::optional<std::uint64_t> number, hex;  // with or without a prefix; as hexadecimal digits
  };
  const Case cases[] = {
      {"0", 0u, 0u},
      {"0010", 10u, 16u},
      {"18446744073709551615", ~std::uint64_t{0}, std::nullopt},
      {"18446744073709551616", std::nullopt, std::nullopt},
      {"0x1f", 31u, std::nullopt},
      {"0XFFFFFFFFFFFFFFFF", ~std::uint64_t{0}, std::nullopt},
      {"0x10000000000000000", std::nullopt, std::nullopt},
      {"aB", std::nullopt, 0xABu},
      {"", std::nullopt, std::nullopt},
      {"0x", std::nullopt, std::nullopt},
      {"+1", std::nullopt, std::nullopt},
      {"-1", std::nullopt, std::nullopt},
      {" 1", std::nullopt, std::nullopt},
      {"1 ", std::nullopt, std::nullopt},
      {"0x0x1", std::nullopt, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(ParseNumber(c.text), c.number);
    EXPECT_EQ(ParseDigits(c.text, 16), c.hex);
  }
  EXPECT_EQ(ParseNumber("255", 255), 255u);
  EXPECT_EQ(ParseNumber("0x100", 255), std::nullopt);
}

TEST(HexTexts, AreWrittenAndReadBack) {
  EXPECT_EQ(HexNumber(0), "0");
  EXPECT_EQ(HexNumber(0x1F, 4), "001f");
  EXPECT_EQ(HexNumber(0xFEDCBA9876543210, 2, HexCase::kUpper), "FEDCBA9876543210");
  EXPECT_EQ(HexText(Slice(kBytes, 10)), "4300fffefd");
  EXPECT_EQ(HexText(Slice(kBytes, 12), HexCase::kUpper), "FFFEFD");
  EXPECT_EQ(ParseHexText("00fFA7"), (std::vector<std::uint8_t>{0x00, 0xFF, 0xA7}));
  EXPECT_EQ(ParseHexText(""), std::vector<std::uint8_t>());
  for (const char* const bad : {"0", "0g", "g0", "0x", " 1", "1 ", "00 ff", "+1", "-1"}) {
    EXPECT_FALSE(ParseHexText(bad)) << bad;
  }
  for (int c = 0; c < 256; ++c) {
    const bool is_digit = "0123456789abcdefABCDEF"s.find(static_cast<char>(c)) != std::string::npos;
    EXPECT_EQ(IsHexDigit(static_cast<char>(c)), is_digit) << c;
  }
}

TEST(Letters, AreThoseOfAscii) {
  EXPECT_EQ(Lower("@AZ[`az{\xC4"), "@az[`az{\xC4");
  EXPECT_EQ(Upper("@AZ[`az{\xE4"), "@AZ[`AZ{\xE4");
  EXPECT_TRUE(SameText("UEFI boot", "uefi BOOT"));
  EXPECT_FALSE(SameText("UEFI", "UEFI "));
  EXPECT_TRUE(ContainsText("Legacy BIOS", "bios"));
  EXPECT_FALSE(ContainsText("BIO", "bios"));
}

}  // namespace
}  // namespace mira::bytes
