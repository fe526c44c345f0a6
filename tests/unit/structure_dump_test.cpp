// One whole dump of every structure class, and what objects of all classes have in common: copies,
// chains, and dumps that memory or the stream does not suffice for.

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <new>
#include <set>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "callif/calling_interface.h"
#include "sim/smbios_builder.h"
#include "smbios/structure_copy.h"
#include "smbios/structure_factory.h"
#include "smbios/structures/processor_families.h"
#include "smbios/structures/structures.h"
#include "smbios/table.h"

#if defined(__SANITIZE_ADDRESS__)
// Of AddressSanitizer; its header does not come with every compiler.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(const volatile void*,
                                                                             std::size_t),
                                                         void (*free_hook)(const volatile void*));
#endif

namespace mira::smbios {
namespace {

using sim::Structure;
using Object = std::unique_ptr<CBIOSObject, CBIOSObject::Deleter>;

Object Make(const std::vector<std::uint8_t>& bytes) {
  CComPtr<IWbemServices> none;
  return Object(MakeObject(std::unique_ptr<unsigned char[]>(CopyStructure(bytes)), none));
}

std::string Dump(const CBIOSObject& object) {
  std::ostringstream out;
  object.Display(out);
  return out.str();
}

std::ifstream OpenData(const std::string& name) {
  std::ifstream file(std::string(MIRA_TEST_SOURCES) + "/data/" + name);
  EXPECT_TRUE(file.good()) << name;
  return file;
}

// "00 18 3A 12 01|first|second"
std::vector<std::uint8_t> ParseStructure(const std::string& text) {
  std::istringstream parts(text);
  std::string part;
  std::getline(parts, part, '|');
  std::istringstream pairs(part);
  std::vector<std::uint8_t> bytes;
  unsigned byte = 0;
  while (pairs >> std::hex >> byte) bytes.push_back(static_cast<std::uint8_t>(byte));
  const std::size_t formatted = bytes.size();
  while (std::getline(parts, part, '|')) {
    bytes.insert(bytes.end(), part.begin(), part.end());
    bytes.push_back(0);
  }
  if (bytes.size() == formatted) bytes.push_back(0);
  return bytes;
}

// A line of the expected dump.
std::string Expand(const std::string& line) {
  if (!line.starts_with("= ")) return line;
  const std::string rest = line.substr(2);
  if (std::isdigit(static_cast<unsigned char>(rest[0])) != 0) {
    return std::string(std::stoul(rest), '-');
  }
  return std::string(36, '-') + ' ' + rest + ' ' + std::string(36, '-');
}

TEST(StructureDump, OfEveryClass) {
  std::ifstream data = OpenData("structure_dumps.txt");
  std::set<std::string> classes;
  std::string line;
  std::string structure;
  std::string expected;
  const auto compare = [&] {
    if (structure.empty()) return;
    const Object object = Make(ParseStructure(structure));
    EXPECT_EQ(Dump(*object), expected) << structure;
    classes.insert(ClassName(object->getType()));
  };
  while (std::getline(data, line)) {
    if (line.starts_with('#')) continue;
    if (line.starts_with("> ")) {
      compare();
      structure = line.substr(2);
      expected.clear();
    } else {
      expected += Expand(line) + '\n';
    }
  }
  compare();
  EXPECT_EQ(classes.size(), 53u) << "52 classes and the plain one";
}

TEST(Processor, KnowsEveryFamilyOfTheTable) {
  std::ifstream data = OpenData("processor_families.txt");
  std::map<unsigned, std::string> names;
  std::string line;
  while (std::getline(data, line)) {
    const std::size_t blank = line.find(' ');
    if (!line.starts_with('#')) names.emplace(std::stoul(line), line.substr(blank + 1));
  }
  EXPECT_EQ(names.size(), 192u);
  for (unsigned family = 0; family < 0x10000; ++family) {
    const char* const name = ProcessorFamilyName(static_cast<std::uint16_t>(family));
    const auto expected = names.find(family);
    if (expected == names.end()) {
      EXPECT_EQ(name, nullptr) << family;
    } else {
      EXPECT_STREQ(name, expected->second.c_str()) << family;
    }
  }
}

// A chain of two objects of one class, the first assigned from the second.
template <typename Class, typename... Arguments>
std::unique_ptr<Class, CBIOSObject::Deleter> Overtake(const Structure& first,
                                                      const Structure& second,
                                                      Arguments&... arguments) {
  std::unique_ptr<Class, CBIOSObject::Deleter> head(
      new Class(CopyStructure(first.Build()), arguments...));
  head->Append(new Class(CopyStructure(second.Build()), arguments...));
  *head = *dynamic_cast<Class*>(head->getNextObj());
  return head;
}

TEST(Chain, LetsAnObjectTakeTheNextOnesPlace) {
  const auto same = [](const CBIOSObject& head, const Structure& second) {
    EXPECT_EQ(head.getNextObj(), nullptr);
    EXPECT_EQ(Dump(head), Dump(*Make(second.Build()))) << static_cast<int>(head.getType());
  };
  const Structure memory = Structure(17, 2).Word(0x1000).Word(0xFFFE).Word(72).Word(64).Word(512);
  same(*Overtake<CMemoryDevice>(Structure(17, 1), memory), memory);
  const Structure bios = Structure(0, 2).Str("Second").Str("2.0");
  same(*Overtake<CBIOSInfo>(Structure(0, 1).Str("First"), bios), bios);
  const Structure processor = Structure(4, 2).Str("U2").Byte(3).Byte(0xC6);
  same(*Overtake<CProcessorInformation>(Structure(4, 1).Str("U1"), processor), processor);
  const Structure flags = Structure(177, 2).Word(3).Word(4);
  const auto taken = Overtake<CBIOSFlags>(Structure(177, 1).Word(1).Word(2), flags);
  same(*taken, flags);
  EXPECT_EQ(taken->GetFlags(1), 4);
  const Structure plain = Structure(5, 2).Byte(1);
  same(*Overtake<CBIOSObject>(Structure(5, 1), plain), plain);

  const auto calling = [](std::uint16_t handle, std::uint16_t token) {
    return Structure(218, handle)
        .Word(0xB2)
        .Byte(1)
        .DWord(token)
        .Word(token)
        .Word(7)
        .Word(8)
        .Word(0xFFFF);
  };
  CComPtr<IWbemServices> none;
  const auto merged = Overtake<CCallingInterface>(calling(1, 0x10), calling(2, 0x20), none);
  same(*merged, calling(2, 0x20));
  EXPECT_EQ(merged->SupportedCommands(), 0x20u);
  EXPECT_EQ(merged->GetDAToken(0x10), nullptr);
  EXPECT_NE(merged->GetDAToken(0x20), nullptr);
}

TEST(Chain, GoesOnBehindAnObjectThatWasOvertaken) {
  const Object head = Make(Structure(21, 1).Byte(1).Build());
  for (const std::uint8_t handle : std::vector<std::uint8_t>{2, 3, 4}) {
    head->Append(Make(Structure(21, handle).Byte(2).Build()).release());
  }
  *head = *head->getNextObj()->getNextObj();
  EXPECT_EQ(head->getHandle(), 3);
  ASSERT_NE(head->getNextObj(), nullptr);
  EXPECT_EQ(head->getNextObj()->getHandle(), 4);
  *head = *head;
  EXPECT_EQ(head->getNextObj()->getHandle(), 4) << "assigned from itself";
}

// Takes any text, keeps how much it was, and fails as a host's stream may.
class CountingBuffer : public std::streambuf {
 public:
  std::size_t total = 0;
  std::size_t largest = 0;
  std::size_t fails_at = SIZE_MAX;

 protected:
  std::streamsize xsputn(const char*, std::streamsize size) override {
    total += static_cast<std::size_t>(size);
    largest = std::max(largest, static_cast<std::size_t>(size));
    if (total > fails_at) throw std::bad_alloc();
    return size;
  }
  int overflow(int c) override {
    ++total;
    return c;
  }
};

// 125 devices that all name one string.
Object ManyNames(std::size_t string_size) {
  constexpr std::uint8_t kLength = 4 + 2 * 125;
  std::vector<std::uint8_t> bytes = {10, kLength, 1, 0};
  for (int i = 0; i < 125; ++i) bytes.insert(bytes.end(), {5, 1});
  bytes.insert(bytes.end(), string_size, 'x');
  bytes.push_back(0);
  return Make(bytes);
}

TEST(StructureDump, NeedsLittleMemoryForAnyLength) {
  constexpr std::size_t kString = 4 * 1024 * 1024;
  const Object object = ManyNames(kString);
  CountingBuffer buffer;
  std::ostream out(&buffer);
  object->Display(out);
  EXPECT_TRUE(out.good());
  EXPECT_GT(buffer.total, 125 * kString);
  EXPECT_EQ(buffer.largest, kString) << "the string itself, straight from the structure";
}

TEST(StructureDump, ThrowsNothingIntoItsHost) {
  std::vector<Object> objects;
  objects.push_back(ManyNames(5000));
  objects.push_back(Make(Structure(5, 1).Byte(1).Build()));
  objects.push_back(Make(Structure(218, 1).Word(0xB2).Byte(1).DWord(1).Build()));
  for (const Object& object : objects) {
    for (const bool own : {false, true}) {
      for (const auto mask : {std::ios::goodbit, std::ios::badbit}) {
        CountingBuffer buffer;
        buffer.fails_at = 10;
        std::ostream out(&buffer);
        out.exceptions(mask);
        EXPECT_NO_THROW(own ? object->DisplayOwn(out) : object->Display(out));
        EXPECT_TRUE(out.bad()) << static_cast<int>(object->getType());
      }
    }
  }
}

TEST(Structures, TellWhichAttributesLieBeyondTheirLength) {
  const auto flags = [](const Structure& structure) {
    std::string text;
    for (const bool beyond : Make(structure.Build())->AttributesBeyond()) {
      text += beyond ? 'x' : '.';
    }
    return text;
  };
  const auto memory = [](std::uint16_t size) {
    return Structure(17, 1).Word(0).Word(0).Word(64).Word(64).Word(size).Byte(9).Byte(0).Str("A");
  };
  EXPECT_EQ(flags(Structure(21, 1).Byte(7).Byte(4).Byte(2)), "...");
  EXPECT_EQ(flags(Structure(21, 1).Byte(7)), ".xx");
  EXPECT_EQ(flags(Structure(177, 1).Word(1).Byte(2)), ".xxx") << "half a word is no word";
  EXPECT_EQ(flags(memory(1).Str("B").Byte(26)), "......xxxxx.x");
  EXPECT_EQ(flags(memory(0x7FFF).Str("B").Byte(26)), "..x...xxxxx.x") << "the extended size";
  EXPECT_EQ(flags(Structure(1, 1).Str("M").Str("P").Str("V").Str("S")), "....xxxx");
  EXPECT_EQ(flags(Structure(178, 1).Word(1).Word(2)), "..");
  EXPECT_EQ(flags(Structure(218, 1).Word(1).Byte(2)), "..x");
  EXPECT_EQ(flags(Structure(5, 1)), "");
  EXPECT_EQ(flags(Structure(4, 1).Bytes(std::vector<std::uint8_t>(35))), ".............xx....")
      << "ends within the characteristics; the family has no name";
}

#if defined(__SANITIZE_ADDRESS__)
int g_allocations = 0;
void CountAllocation(const volatile void*, std::size_t) { ++g_allocations; }
void IgnoreFree(const volatile void*) {}

TEST(StructureTable, AllocatesHardlyMoreThanItsObjects) {
  constexpr int kStructures = 1000;
  sim::SmbiosTable table(3, 2);
  for (int i = 0; i < kStructures; ++i) {
    table.Add(Structure(21, static_cast<std::uint16_t>(i)).Byte(7).Byte(4).Byte(2));
  }
  const std::vector<std::uint8_t> bytes = table.Finish();
  ASSERT_GT(__sanitizer_install_malloc_and_free_hooks(CountAllocation, IgnoreFree), 0);
  StructureTable structures;
  const int before = g_allocations;
  ASSERT_TRUE(structures.Parse(bytes));
  EXPECT_LT(g_allocations - before, kStructures + kStructures / 10);
}
#endif

}  // namespace
}  // namespace mira::smbios
