#ifndef MIRA_TESTS_SUPPORT_EXPECTED_RECORD_H_
#define MIRA_TESTS_SUPPORT_EXPECTED_RECORD_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "buffers/buffer.h"
#include "bytes/reader.h"
#include "tests/support/checked_cursors.h"

namespace mira::test {

// What a record is expected to hold: argument words, kinds, length, and the bytes behind the fixed
// part.
struct Expected {
  std::vector<std::uint32_t> args;
  std::uint32_t kinds;
  std::uint32_t length;
  std::string area;
};

inline void ExpectRecord(const CBuffer& buffer, const Expected& expected) {
  const auto bytes = buffer.Record();
  ASSERT_EQ(bytes.size(), expected.length);
  CheckedReader in(bytes, 4);
  EXPECT_EQ((std::vector<std::uint32_t>{in.U32(), in.U32(), in.U32(), in.U32()}), expected.args);
  in.Seek(36);
  EXPECT_EQ(in.U32(), expected.kinds);
  EXPECT_EQ(in.U32(), expected.length);
  EXPECT_EQ(bytes::AsText(in.Rest()), expected.area);
}

inline std::string Nul(const std::string& text) { return text + std::string(1, '\0'); }

// An area prepared for the firmware: its length word and as many signature words.
inline std::string Area(std::uint32_t length, int words) {
  std::string area(4, '\0');
  for (unsigned i = 0; i < 4; ++i) area[i] = static_cast<char>(length >> (8 * i));
  for (int i = 0; i < words; ++i) area += "DSCI";
  return area;
}

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_EXPECTED_RECORD_H_
