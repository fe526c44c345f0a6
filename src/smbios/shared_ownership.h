#ifndef MIRA_SMBIOS_SHARED_OWNERSHIP_H_
#define MIRA_SMBIOS_SHARED_OWNERSHIP_H_

// What structure objects own together with their copies: the structure's bytes, and the object that
// follows in the chain. Both cost no allocation until an object is copied, because tables hold
// tens of thousands of objects and hosts copy next to none. Counts are safe across threads.

#include <atomic>
#include <utility>

#include "platform/api.h"

class CBIOSObject;

namespace mira::smbios {

// Bytes made with new[].
class MIRA_API SharedBytes {
 public:
  explicit SharedBytes(unsigned char* bytes) : bytes_(bytes) {}
  // Throws std::bad_alloc.
  SharedBytes(const SharedBytes& other) : bytes_(other.bytes_), count_(other.Share()) {}
  SharedBytes& operator=(const SharedBytes& other);
  ~SharedBytes();
  unsigned char* get() const { return bytes_; }

 private:
  using Count = std::atomic<unsigned>;
  // One more owner.
  Count* Share() const;

  unsigned char* bytes_;
  mutable std::atomic<Count*> count_ = nullptr;  // without: one owner
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
