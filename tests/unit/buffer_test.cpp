// The base command buffer: the record it builds, what it decodes, what it prints and asks.

#include "buffers/buffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "buffers/buffer_factory.h"
#include "tests/support/console_capture.h"

namespace {

using mira::test::ConsoleCapture;

// Gives a test what only derived buffers see.
class OpenBuffer : public CBuffer {
 public:
  using CBuffer::CBuffer;
  using CBuffer::InitExtendedBuffer;
  using CBuffer::m_pCIBuffer;
  using CBuffer::NewRecord;
};

CSimpleTokenData FourArguments(std::uint32_t key_arg_index) {
  CSimpleTokenData data;
  data.Arg1 = 0x11;
  data.Arg2 = 0x2222;
  data.Arg3 = 0x333333;
  data.Arg4 = 0x44444444;
  data.KeyArgIndex = key_arg_index;
  return data;
}

TEST(BaseBuffer, BuildsTheFixedRecord) {
  OpenBuffer buffer(0x0102, 0x0304, 4096);
  CSimpleTokenData data = FourArguments(2);
  std::uint32_t size = 99;
  SMBiosCI* const record = buffer.FillInputBuffer(0xA1B2C3D4, size, data);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(size, 0u);
  const auto bytes = buffer.Record();
  EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.end()),
            (std::vector<std::uint8_t>{0x02, 0x01, 0x04, 0x03,  // class, select
                                       0x11, 0,    0,    0,     // argument 1
                                       0xD4, 0xC3, 0xB2, 0xA1,  // the key, not argument 2
                                       0x33, 0x33, 0x33, 0,    0x44, 0x44, 0x44, 0x44,
                                       0,    0,    0,    0,    0,    0,    0,    0,
                                       0,    0,    0,    0,    0,    0,    0,    0,  // results
                                       0,    0,    0,    0,     // no argument is an offset
                                       44,   0,    0,    0}));  // length
}

TEST(BaseBuffer, PlacesTheKeyWhereTheRequestSays) {
  struct Case {
    std::uint32_t index;
    std::uint32_t key;
    std::vector<std::uint32_t> arguments;
  };
  const Case cases[] = {
      {0, 0x1234, {0x11, 0x2222, 0x333333, 0x44444444}},
      {1, 0x1234, {0x1234, 0x2222, 0x333333, 0x44444444}},
      {3, 0, {0x11, 0x2222, 0, 0x44444444}},
      {4, 0xFFFF, {0x11, 0x2222, 0x333333, 0xFFFF}},
      {5, 0x1234, {0x11, 0x2222, 0x333333, 0x44444444}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.index);
    OpenBuffer buffer(0, 0, 0);
    CSimpleTokenData data = FourArguments(c.index);
    std::uint32_t size = 0;
    const SMBiosCI* const record = buffer.FillInputBuffer(c.key, size, data);
    EXPECT_EQ((std::vector<std::uint32_t>{record->cbArg1, record->cbArg2, record->cbArg3,
                                          record->cbArg4}),
              c.arguments);
  }
}

TEST(BaseBuffer, CopiesResultsAndRefusesForeignRequests) {
  OpenBuffer buffer(0, 0, 0);
  CSimpleTokenData data;
  buffer.ParseOutputBuffer(data);  // before any record there is nothing to copy
  EXPECT_EQ(data.Res1, 0);
  std::uint32_t size = 0;
  SMBiosCI* const record = buffer.FillInputBuffer(0, size, data);
  record->cbRES1 = -6;
  record->cbRES2 = 2;
  record->cbRES3 = 3;
  record->cbRES4 = 0x80000004;
  buffer.ParseOutputBuffer(data);
  EXPECT_EQ(data.Res1, -6);
  EXPECT_EQ(data.Res2, 2u);
  EXPECT_EQ(data.Res3, 3u);
  EXPECT_EQ(data.Res4, 0x80000004u);

  struct Foreign : IBIOSData {
  } foreign;
  EXPECT_THROW(buffer.FillInputBuffer(0, size, foreign), std::bad_cast);
}

TEST(BaseBuffer, PreparesAnAreaForTheFirmware) {
  struct Case {
    std::size_t size;
    std::vector<std::uint8_t> bytes;
  };
  const Case cases[] = {
      {3, {0, 0, 0}},
      {4, {0, 0, 0, 0}},
      {7, {3, 0, 0, 0, 0, 0, 0}},
      {8, {4, 0, 0, 0, 'D', 'S', 'C', 'I'}},
      {13, {9, 0, 0, 0, 'D', 'S', 'C', 'I', 'D', 'S', 'C', 'I', 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.size);
    std::vector<std::uint8_t> area(c.size);
    OpenBuffer::InitExtendedBuffer(area);
    EXPECT_EQ(area, c.bytes);
  }
}

TEST(BaseBuffer, RefusesRecordsBeyondAnyTransferBuffer) {
  OpenBuffer buffer(0, 0, 0);
  EXPECT_EQ(buffer.NewRecord(std::uint64_t{16} * 1024 * 1024 + 1), nullptr);
  EXPECT_EQ(buffer.NewRecord(0x100000000u + 44), nullptr);
  ASSERT_NE(buffer.NewRecord(100), nullptr);
  buffer.m_pCIBuffer->cbLength = 0xFFFFFFFF;  // as a firmware might answer
  EXPECT_EQ(buffer.Record().size(), 100u);
}

TEST(BaseBuffer, PrintsTheTextOfTheCompletionCode) {
  struct Case {
    std::int32_t code;
    const char* text;
  };
  const Case cases[] = {
      {0, " The function completed successfully!\n"},
      {-1, " The function ended in error (possibly function-specific)!\n"},
      {-2, " The function is not supported by the system!\n"},
      {-3, " The function did not execute!\n"},
      {-4, ""},
      {-5, " The output buffer used by the function was not properly formatted!\n"},
      {-6, " The output buffer used by the function was not large enough!\n"},
      {-7, " Invalid security key!\n"},
      {-8, ""},
      {1, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.code);
    OpenBuffer buffer(0, 0, 0);
    buffer.NewRecord(44)->cbRES1 = c.code;
    ConsoleCapture console;
    buffer.DisplayReturnCode();
    EXPECT_EQ(console.Output(), c.text);
  }
}

TEST(BaseBuffer, PrintsTheResultWordsByteByByte) {
  OpenBuffer buffer(0, 0, 0);
  SMBiosCI* const record = buffer.NewRecord(44);
  record->cbRES1 = -1;
  record->cbRES2 = 0x0A0B0C0D;
  record->cbRES4 = 0xFF000000;
  ConsoleCapture console;
  buffer.DisplayOutputBuffer();
  EXPECT_EQ(console.Output(),
            "cbRES1 : -1\t The function ended in error (possibly function-specific)!\n"
            "\n"
            "cbRES2 : Byte 0 - d\t Byte 1 - c\t Byte 2 - b\t Byte 3 - a\n"
            "\n"
            "cbRES3 : Byte 0 - 0\t Byte 1 - 0\t Byte 2 - 0\t Byte 3 - 0\n"
            "\n"
            "cbRES4 : Byte 0 - 0\t Byte 1 - 0\t Byte 2 - 0\t Byte 3 - ff\n"
            "\n");
}

TEST(BaseBuffer, AsksForTheFourArguments) {
  OpenBuffer buffer(7, 8, 0);
  std::uint32_t size = 5;
  {
    ConsoleCapture console("10\nnonsense\n0xFf\n\n 0 \nDEADBEEF\n");
    const SMBiosCI* const record = buffer.PromptInputBuffer(0x55, size, true);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->cbArg1, 0x10u);
    EXPECT_EQ(record->cbArg2, 0xFFu);
    EXPECT_EQ(record->cbArg3, 0u);
    EXPECT_EQ(record->cbArg4, 0xDEADBEEFu);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(console.Output(), "Arg1 : 0xArg2 : 0xArg2 : 0xArg3 : 0xArg3 : 0xArg4 : 0x");
  }
  {
    ConsoleCapture console("1\n2\n");
    EXPECT_EQ(buffer.PromptInputBuffer(0, size, true), nullptr) << "the input ended";
  }
  {
    ConsoleCapture console;
    const SMBiosCI* const record = buffer.PromptInputBuffer(0, size, false);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->cbClass, 7u);
    EXPECT_EQ(record->cbArg1, 0u);
    EXPECT_EQ(console.Output(), "");
  }
}

}  // namespace
