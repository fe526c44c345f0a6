// The tables of real machines: each line that a structure shows, against another decoder.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "smbios/bios_object.h"
#include "smbios/table.h"
#include "tests/unit/structure_decoder.h"

namespace mira::smbios {
namespace {

TEST(RealStructures, ShowWhatAnotherDecoderReads) {
  const char* const data = std::getenv("MIRA_TEST_DATA");
  if (data == nullptr) GTEST_SKIP() << "MIRA_TEST_DATA names no tables";
  int tables = 0;
  for (const auto& entry : std::filesystem::directory_iterator(std::string(data) + "/smbios")) {
    if (entry.path().extension() != ".rsmb") continue;
    SCOPED_TRACE(entry.path().filename().string());
    ++tables;
    std::ifstream file(entry.path(), std::ios::binary);
    const std::vector<std::uint8_t> table{std::istreambuf_iterator<char>(file), {}};
    auto expected = test::DecodeTable(table);
    EXPECT_FALSE(expected.empty());

    StructureTable structures;
    structures.Parse(table);
    EXPECT_EQ(structures.Objects().size(), expected.size());
    for (const auto& [type, head] : structures.Objects()) {
      std::size_t i = 0;
      for (const CBIOSObject* object = head; object != nullptr; object = object->getNextObj()) {
        std::ostringstream shown;
        object->DisplayOwn(shown);
        ASSERT_LT(i, expected[type].size()) << "of type " << unsigned{type};
        EXPECT_EQ(shown.str(), expected[type][i++]);
      }
      EXPECT_EQ(i, expected[type].size()) << "of type " << unsigned{type};
    }
  }
  EXPECT_GT(tables, 0);
}

}  // namespace
}  // namespace mira::smbios
