#include "pldm/tables.h"

#include "bytes/secure.h"

namespace mira::pldm {
namespace {

// Tables come in ascending order of handles as a rule; then the place is known without a search.
template <typename Index, typename Object>
void Put(Index& index, Object object) {
  const std::uint16_t handle = object->handle;
  index.insert_or_assign(index.end(), handle, std::move(object));
}

template <typename Index>
auto Find(const Index& index, std::uint16_t handle) {
  const auto found = index.find(handle);
  return found != index.end() ? found->second.get() : nullptr;
}

}  // namespace

IntBIOSPassword::~IntBIOSPassword() { bytes::Wipe(default_text); }
IntBIOSPasswordValue::~IntBIOSPasswordValue() { bytes::Wipe(text); }

void Tables::AddString(std::uint16_t handle, std::string_view whole) {
  const std::size_t bracket = std::min(whole.find('['), whole.size());
  BiosString& entry = strings_[handle];
  entry.text = whole.substr(0, bracket);
  entry.suffix = whole.substr(bracket);
}

void Tables::AddAttribute(std::unique_ptr<IntPLDMAttribute> attribute) {
  if (const BiosString* const name = FindString(attribute->name_handle)) {
    handles_[name->text] = attribute->handle;
  }
  Put(attributes_, std::move(attribute));
}

void Tables::AddValue(std::unique_ptr<IntPLDMAttributeValue> value) {
  Put(values_, std::move(value));
}

const BiosString* Tables::FindString(std::uint16_t handle) const {
  const auto found = strings_.find(handle);
  return found != strings_.end() ? &found->second : nullptr;
}

const IntPLDMAttribute* Tables::FindAttribute(std::uint16_t handle) const {
  return Find(attributes_, handle);
}

const IntPLDMAttributeValue* Tables::FindValue(std::uint16_t handle) const {
  return Find(values_, handle);
}

std::uint16_t Tables::HandleOf(std::string_view name) const {
  const auto found = handles_.find(name);
  return found != handles_.end() ? found->second : 0;
}

std::string_view Tables::Text(std::uint16_t handle) const {
  const BiosString* const found = FindString(handle);
  return found != nullptr ? std::string_view(found->text) : std::string_view();
}

}  // namespace mira::pldm
