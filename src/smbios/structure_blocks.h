#ifndef MIRA_SMBIOS_STRUCTURE_BLOCKS_H_
#define MIRA_SMBIOS_STRUCTURE_BLOCKS_H_

// Where the copies of a table's structures lie: many in one block of memory, so that a structure
// costs one allocation, that of its object, and lies beside its neighbours. A block lives until the
// last object of its structures, copies included, is gone.
//
//   StructureBlocks blocks;
//   if (unsigned char* const raw = blocks.Add(structure)) {
//     CBIOSObject* const object = new CMemoryDevice(raw);
//     blocks.Own(*object);
//   }

#include "bytes/reader.h"
#include "smbios/bios_object.h"

namespace mira::smbios {

class StructureBlocks {
 public:
  StructureBlocks() = default;
  ~StructureBlocks() { Close(); }
  StructureBlocks(const StructureBlocks&) = delete;
  StructureBlocks& operator=(const StructureBlocks&) = delete;

  // A copy of `structure` and zero bytes behind it, enough for whatever a class reads in its
  // formatted area; null when the structure is too long to share a block. The block owns it until
  // Own(). Throws std::bad_alloc.
  unsigned char* Add(bytes::ByteSpan structure);
  // Gives the object, which was made of the bytes that Add() returned last, its share of them.
  // Nothing may throw in between but the object's own allocation.
  void Own(CBIOSObject& object) noexcept;

 private:
  // Gives up what the block still holds for objects to come.
  void Close() noexcept;

  SharedBytes::Owners* owners_ = nullptr;  // of the block that is being filled
  std::size_t used_ = 0;
  unsigned objects_ = 0;
};

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_STRUCTURE_BLOCKS_H_
