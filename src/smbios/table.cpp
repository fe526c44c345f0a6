#include "smbios/table.h"

#include <algorithm>
#include <array>
#include <memory>

#include "platform/services.h"
#include "smbios/structure_blocks.h"
#include "smbios/structure_copy.h"
#include "smbios/structure_factory.h"

namespace mira::smbios {

TableWalk::Step TableWalk::Next() {
  constexpr std::size_t kHeaderSize = 4;
  if (ended_ || std::all_of(rest_.begin(), rest_.end(), [](auto byte) { return byte == 0; })) {
    return Step::kEnd;
  }
  if (rest_.size() < kHeaderSize) return Step::kMalformed;
  const std::size_t length = rest_[1];
  if (length < kHeaderSize || length > rest_.size()) return Step::kMalformed;

  // The string set ends at the first pair of NULs behind the formatted area. To find it, every
  // other byte is enough.
  std::size_t terminator = 0;
  for (std::size_t i = length + 1; terminator == 0; i += 2) {
    if (i >= rest_.size()) return Step::kMalformed;
    if (rest_[i] != 0) continue;
    if (rest_[i - 1] == 0) {
      terminator = i - 1;
    } else if (i + 1 < rest_.size() && rest_[i + 1] == 0) {
      terminator = i;
    }
  }
  structure_ = rest_.first(terminator + 1);
  rest_ = rest_.subspan(terminator + 2);
  ended_ = structure_[0] == kEndOfTable;
  return Step::kStructure;
}

std::vector<std::uint8_t> ReadFirmwareTable() {
  constexpr DWORD kRsmb = 0x52534D42;  // 'RSMB'
  // DSP0134 gives the table's length 32 bits; what real firmware serves stays far below this.
  constexpr UINT kMaxTableSize = 64 * 1024 * 1024;
  const auto& services = platform::Services();
  const UINT size = services.GetSystemFirmwareTable(kRsmb, 0, nullptr, 0);
  if (size < kFirmwareHeaderSize || size > kMaxTableSize) return {};
  std::vector<std::uint8_t> table(size);
  if (services.GetSystemFirmwareTable(kRsmb, 0, table.data(), size) != size) return {};
  return table;
}

bool FillRegistry(bytes::ByteSpan table, const ObjectMaker& make, Registry& registry) {
  // Appending at the tail that is known keeps the fill linear: the head would walk the whole chain
  // each time.
  std::array<CBIOSObject*, 256> tails{};
  StructureBlocks blocks;
  TableWalk walk(table);
  for (;;) {
    const TableWalk::Step step = walk.Next();
    if (step == TableWalk::Step::kEnd) return !registry.empty();
    if (step == TableWalk::Step::kMalformed) return false;
    std::unique_ptr<CBIOSObject, CBIOSObject::Deleter> object(MakeObject(walk.Structure(), blocks));
    if (!object) {
      object.reset(make(std::unique_ptr<unsigned char[]>(CopyStructure(walk.Structure()))));
    }
    if (!object) return false;
    CBIOSObject*& tail = tails[object->getType()];
    CBIOSObject* const added = object.get();
    if (tail == nullptr) {
      registry.emplace(added->getType(), added);
      (void)object.release();
    } else {
      tail->Append(object.release());
    }
    tail = added;
  }
}

StructureTable::~StructureTable() {
  for (const auto& entry : objects_) CBIOSObject::Deleter{}(entry.second);
}

bool StructureTable::Parse(bytes::ByteSpan firmware_table) {
  CComPtr<IWbemServices> none;
  return FillRegistry(
      bytes::Slice(firmware_table, kFirmwareHeaderSize),
      [&none](std::unique_ptr<unsigned char[]> raw) { return MakeObject(std::move(raw), none); },
      objects_);
}

}  // namespace mira::smbios
