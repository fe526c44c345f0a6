// The bytes of a table's structures lie side by side, in blocks that objects and their copies
// share: no class may read its neighbour's, and none may outlive the block.

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/com_ptr.h"
#include "sim/smbios_builder.h"
#include "smbios/structure_copy.h"
#include "smbios/structure_factory.h"
#include "smbios/structures/structures.h"
#include "smbios/table.h"

namespace mira::smbios {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Object = std::unique_ptr<CBIOSObject, CBIOSObject::Deleter>;
using Memory = std::unique_ptr<CMemoryDevice, CBIOSObject::Deleter>;

std::string Dump(const CBIOSObject& object) {
  std::ostringstream out;
  object.DisplayOwn(out);
  return out.str();
}

// The formatted area counts up from `fill`.
Bytes Raw(unsigned type, std::size_t length, unsigned fill, std::string_view set) {
  Bytes bytes = {static_cast<std::uint8_t>(type), static_cast<std::uint8_t>(length), 1, 0};
  while (bytes.size() < length) bytes.push_back(static_cast<std::uint8_t>(fill++));
  bytes.insert(bytes.end(), set.begin(), set.end());
  return bytes;
}

// With the firmware's header in front.
Bytes Table(const std::vector<Bytes>& structures) {
  Bytes table(kFirmwareHeaderSize);
  for (const Bytes& structure : structures) {
    table.insert(table.end(), structure.begin(), structure.end());
    table.push_back(0);
  }
  return table;
}

TEST(StructureBlocks, KeepNeighboursApart) {
  using namespace std::string_view_literals;
  CComPtr<IWbemServices> none;
  // No byte of a neighbour is zero but the NULs of its set.
  const Bytes neighbour = Raw(255, 255, 0x30, "next\0strings\0"sv);
  for (unsigned type = 0; type < 255; ++type) {
    if (ClassName(static_cast<unsigned char>(type)) == std::string_view("CBIOSObject")) continue;
    for (const unsigned length : {4u, 5u, 9u, 17u, 34u, 64u, 255u}) {
      for (const std::string_view set : {"\0"sv, "first\0second\0"sv, "\0second\0"sv}) {
        for (const unsigned fill : {1u, 0xF0u}) {
          const Bytes structure = Raw(type, length, fill, set);
          StructureTable table;
          ASSERT_TRUE(table.Parse(Table({neighbour, structure, neighbour})));
          const Object alone(
              MakeObject(std::unique_ptr<unsigned char[]>(CopyStructure(structure)), none));
          const CBIOSObject& shared = *table.Objects().at(static_cast<unsigned char>(type));
          ASSERT_EQ(Dump(shared), Dump(*alone)) << type << " of length " << length;
          ASSERT_EQ(shared.OwnAttributes(), alone->OwnAttributes()) << type << ' ' << length;
          ASSERT_EQ(shared.AttributesBeyond(), alone->AttributesBeyond()) << type << ' ' << length;
        }
      }
    }
  }
}

Bytes MemoryTable(unsigned count) {
  sim::SmbiosTable table(3, 2);
  for (unsigned i = 0; i < count; ++i) {
    table.Add(sim::Structure(17, static_cast<std::uint16_t>(i))
                  .Word(1)
                  .Word(2)
                  .Word(64)
                  .Word(64)
                  .Word(8192)
                  .Byte(13)
                  .Byte(0)
                  .Str("DIMM " + std::to_string(i))
                  .Str("BANK"));
  }
  return table.Finish();
}

const CMemoryDevice& At(const StructureTable& table, unsigned index) {
  const CBIOSObject* object = table.Objects().at(17);
  while (index-- > 0) object = object->getNextObj();
  return dynamic_cast<const CMemoryDevice&>(*object);
}

bool Shows(const CBIOSObject& object, const std::string& text) {
  return Dump(object).find(text + "\n") != std::string::npos;
}

TEST(StructureBlocks, LiveAsLongAsAnyOfTheirObjects) {
  constexpr unsigned kCount = 1000;  // many blocks
  auto table = std::make_unique<StructureTable>();
  ASSERT_TRUE(table->Parse(MemoryTable(kCount)));
  const Memory first(new CMemoryDevice(At(*table, 0)));
  const Memory middle(new CMemoryDevice(At(*table, kCount / 2)));
  const Memory last(new CMemoryDevice(At(*table, kCount - 1)));
  table.reset();
  EXPECT_TRUE(Shows(*first, "DIMM 0"));
  EXPECT_TRUE(Shows(*middle, "DIMM 500"));
  EXPECT_TRUE(Shows(*last, "DIMM 999"));
  // A copy still holds the chain behind it, and gives it up when it takes another's place.
  const CBIOSObject* behind = middle->getNextObj();
  ASSERT_NE(behind, nullptr);
  EXPECT_TRUE(Shows(*behind, "DIMM 501"));
  *first = *last;
  *middle = *first;
  EXPECT_TRUE(Shows(*middle, "DIMM 999"));
  EXPECT_EQ(middle->getNextObj(), nullptr);
}

TEST(StructureBlocks, MixWithBytesOfTheirOwn) {
  StructureTable table;
  ASSERT_TRUE(table.Parse(MemoryTable(3)));
  const sim::Structure structure =
      sim::Structure(17, 9).Word(1).Word(2).Word(64).Word(64).Word(1).Byte(1).Byte(0).Str("OWN");
  Memory own(new CMemoryDevice(CopyStructure(structure.Build())));
  const Memory copy(new CMemoryDevice(*own));
  const Memory shared(new CMemoryDevice(At(table, 1)));
  *own = *shared;
  *shared = *copy;
  EXPECT_TRUE(Shows(*own, "DIMM 1"));
  EXPECT_TRUE(Shows(*shared, "OWN"));
  EXPECT_TRUE(Shows(*copy, "OWN"));
  // An object whose bytes are another class's reads them as its own, and no farther.
  CBIOSObject& as_base = *own;
  const Object tiny(new CBIOSObject(CopyStructure(Bytes{21, 4, 1, 0, 0})));
  as_base = *tiny;
  EXPECT_FALSE(Dump(*own).empty());
}

// A structure that is longer than a block's share, between short ones.
TEST(StructureBlocks, LeaveLongStructuresToThemselves) {
  const std::string text(60000, 'x');
  sim::SmbiosTable builder(3, 2);
  for (std::uint16_t i = 0; i < 3; ++i) {
    sim::Structure structure(11, i);
    structure.Byte(2);
    structure.ExtraString(i == 1 ? text : "short");
    structure.ExtraString("end");
    builder.Add(structure);
  }
  StructureTable table;
  ASSERT_TRUE(table.Parse(builder.Finish()));
  AttributeMap attributes;
  table.Objects().at(11)->GetAttributes(attributes);
  ASSERT_EQ(attributes.size(), 3u);
  EXPECT_EQ(attributes.at(0).front().second, "short");
  EXPECT_EQ(attributes.at(1).front().second, text);
  EXPECT_EQ(attributes.at(1).back().second, "end");
  EXPECT_EQ(attributes.at(2).back().second, "end");
}

TEST(StructureBlocks, AreGivenUpByManyThreads) {
  StructureTable table;
  ASSERT_TRUE(table.Parse(MemoryTable(200)));
  std::vector<Memory> copies;
  for (unsigned i = 0; i < 4; ++i) copies.push_back(Memory(new CMemoryDevice(At(table, i))));
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < 4; ++i) {
    threads.emplace_back([&copies, i] {
      for (int round = 0; round < 200; ++round) {
        const Memory copy(new CMemoryDevice(*copies[i]));
        EXPECT_EQ(copy->getHandle(), i);
      }
      copies[i].reset();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(Shows(At(table, 3), "DIMM 3"));
}

}  // namespace
}  // namespace mira::smbios
