#include "smbios/shared_ownership.h"

#include <memory>

#include "smbios/bios_object.h"

namespace mira::smbios {

SharedBytes::Count* SharedBytes::Share() const {
  Count* count = count_.load();
  if (count == nullptr) {
    auto fresh = std::make_unique<Count>(1);
    if (count_.compare_exchange_strong(count, fresh.get())) count = fresh.release();
  }
  ++*count;
  return count;
}

SharedBytes& SharedBytes::operator=(const SharedBytes& other) {
  SharedBytes copy(other);
  std::swap(bytes_, copy.bytes_);
  copy.count_ = count_.exchange(copy.count_);
  return *this;
}

SharedBytes::~SharedBytes() {
  Count* const count = count_.load();
  if (count != nullptr) {
    if (--*count > 0) return;
    delete count;
  }
  delete[] bytes_;
}

ChainLink::ChainLink(CBIOSObject* object) : object_(object) {
  if (object_ != nullptr) ++object_->m_nLinks.count;
}

ChainLink::~ChainLink() {
  if (CBIOSObject* const object = Detach()) CBIOSObject::Deleter{}(object);
}

CBIOSObject* ChainLink::Detach() {
  CBIOSObject* const object = std::exchange(object_, nullptr);
  return object != nullptr && --object->m_nLinks.count == 0 ? object : nullptr;
}

}  // namespace mira::smbios
