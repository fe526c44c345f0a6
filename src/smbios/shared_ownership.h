#ifndef MIRA_SMBIOS_SHARED_OWNERSHIP_H_
#define MIRA_SMBIOS_SHARED_OWNERSHIP_H_

// What structure objects own together with their copies: the structure's bytes, and the object that
// follows in the chain. Neither costs an allocation of its own until an object is copied, because
// tables hold tens of thousands of objects and hosts copy next to none. Counts are safe across
// threads.

#include <atomic>
#include <utility>

#include "platform/api.h"

class CBIOSObject;

namespace mira::smbios {

// Bytes made with new[], or a part of a block of such bytes.
class MIRA_API SharedBytes {
 public:
  explicit SharedBytes(unsigned char* bytes) : bytes_(bytes) {}
  // Throws std::bad_alloc.
  SharedBytes(const SharedBytes& other) : bytes_(other.bytes_), owners_(other.Share()) {}
  SharedBytes& operator=(const SharedBytes& other);
  ~SharedBytes();
  unsigned char* get() const { return bytes_; }

 private:
  friend class StructureBlocks;

  // Those who own parts of a block together.
  struct Owners {
    std::atomic<unsigned> count;
    unsigned char* block;
    // So many owners less; without any the block is gone, and this.
    void Release(unsigned owners) noexcept;
  };
  // One more owner.
  Owners* Share() const;

  unsigned char* bytes_;
  mutable std::atomic<Owners*> owners_ = nullptr;  // without: one owner, of bytes on their own
};

// The link to an object, which counts the links that lead to it.
class MIRA_API ChainLink {
 public:
  ChainLink() = default;
  explicit ChainLink(CBIOSObject* object);
  ChainLink(const ChainLink& other) : ChainLink(other.object_) {}
  ChainLink(ChainLink&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ChainLink& operator=(ChainLink other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ChainLink();

  CBIOSObject* get() const { return object_; }
  // Lets go of the object. Returns it when this was the last link, and the caller must delete it;
  // else null.
  CBIOSObject* Detach();

 private:
  CBIOSObject* object_ = nullptr;
};

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_SHARED_OWNERSHIP_H_
