#include "smbios/shared_ownership.h"

#include <memory>

#include "smbios/bios_object.h"

namespace mira::smbios {

SharedBytes::Owners* SharedBytes::Share() const {
  Owners* owners = owners_.load();
  if (owners == nullptr) {
    std::unique_ptr<Owners> fresh(new Owners{1, bytes_});
    if (owners_.compare_exchange_strong(owners, fresh.get())) owners = fresh.release();
  }
  ++owners->count;
  return owners;
}

SharedBytes& SharedBytes::operator=(const SharedBytes& other) {
  SharedBytes copy(other);
  std::swap(bytes_, copy.bytes_);
  copy.owners_ = owners_.exchange(copy.owners_);
  return *this;
}

SharedBytes::~SharedBytes() {
  if (Owners* const owners = owners_.load()) {
    owners->Release(1);
  } else {
    delete[] bytes_;
  }
}

void SharedBytes::Owners::Release(unsigned owners) noexcept {
  if ((count -= owners) > 0) return;
  delete[] block;
  delete this;
}

// An object to which no link leads, and the only link to an object, are in one thread's hands:
// tables of tens of thousands of them need no atomic addition for each.
ChainLink::ChainLink(CBIOSObject* object) : object_(object) {
  if (object_ == nullptr) return;
  std::atomic<unsigned>& links = object_->m_nLinks.count;
  if (links.load() == 0) {
    links.store(1, std::memory_order_relaxed);
  } else {
    ++links;
  }
}

ChainLink::~ChainLink() {
  if (CBIOSObject* const object = Detach()) CBIOSObject::Deleter{}(object);
}

CBIOSObject* ChainLink::Detach() {
  CBIOSObject* const object = std::exchange(object_, nullptr);
  if (object == nullptr) return nullptr;
  std::atomic<unsigned>& links = object->m_nLinks.count;
  if (links.load() == 1) {
    links.store(0, std::memory_order_relaxed);
    return object;
  }
  return --links == 0 ? object : nullptr;
}

}  // namespace mira::smbios
