#ifndef MIRA_TESTS_SUPPORT_CHECKED_CURSORS_H_
#define MIRA_TESTS_SUPPORT_CHECKED_CURSORS_H_

// Cursors for tests, which fail the test where something does not fit.
//
//   CheckedWriter(buffer.Record(), 48).Text("images.example");

#include <gtest/gtest.h>

#include "bytes/reader.h"
#include "bytes/writer.h"

namespace mira::test {

template <typename Cursor>
class Checked : public Cursor {
 public:
  using Cursor::Cursor;
  ~Checked() { EXPECT_TRUE(this->Ok()); }
};

using CheckedReader = Checked<bytes::Reader>;
using CheckedWriter = Checked<bytes::Writer>;

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_CHECKED_CURSORS_H_
