#include "smbios/structure_blocks.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace mira::smbios {
namespace {

constexpr std::size_t kBlock = 16 * 1024;
// A formatted area has at most 255 bytes, and no field is wider than 8.
constexpr std::size_t kReadable = 255 + 8;
// What a longer structure leaves unused at a block's end is worth less than its own allocation.
constexpr std::size_t kLongest = kBlock / 8;
// More owners than structures fit into a block: held while the block is filled, so that objects
// cost no atomic addition each.
constexpr unsigned kHeld = kBlock;

}  // namespace

unsigned char* StructureBlocks::Add(bytes::ByteSpan structure) {
  if (structure.size() >= kLongest) return nullptr;
  // One NUL behind the string set ends it.
  const std::size_t size = std::max(structure.size() + 1, kReadable);
  if (owners_ == nullptr || kBlock - used_ < size) {
    auto block = std::make_unique<unsigned char[]>(kBlock);
    auto* const owners = new SharedBytes::Owners{kHeld, block.get()};
    (void)block.release();
    Close();
    owners_ = owners;
  }
  unsigned char* const copy = owners_->block + used_;
  std::memcpy(copy, structure.data(), structure.size());
  used_ += size;
  return copy;
}

void StructureBlocks::Own(CBIOSObject& object) noexcept {
  ++objects_;
  object.m_pRawData.owners_ = owners_;
}

void StructureBlocks::Close() noexcept {
  if (owners_ != nullptr) owners_->Release(kHeld - objects_);
  owners_ = nullptr;
  used_ = 0;
  objects_ = 0;
}

}  // namespace mira::smbios
