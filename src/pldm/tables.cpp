#include "pldm/tables.h"

#include <algorithm>

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

std::span<const std::uint16_t> Choices(const IntPLDMAttribute& attribute) {
  if (const auto* const enumeration = dynamic_cast<const IntBIOSEnumeration*>(&attribute)) {
    return enumeration->possible_handles;
  }
  if (const auto* const boot = dynamic_cast<const IntBIOSBootConfigSetting*>(&attribute)) {
    return boot->possible_handles;
  }
  if (const auto* const config_set = dynamic_cast<const IntBIOSConfigSet*>(&attribute)) {
    return config_set->member_handles;
  }
  return {};
}

BiosString::BiosString(std::string_view whole)
    : whole_(whole), bracket_(std::min(whole.find('['), whole.size())) {}

void Tables::AddString(std::uint16_t handle, std::string_view whole) {
  strings_.insert_or_assign(handle, BiosString(whole));
}

void Tables::AddAttribute(std::unique_ptr<IntPLDMAttribute> attribute) {
  if (const BiosString* const name = FindString(attribute->name_handle)) {
    handles_.insert_or_assign(std::string(name->Text()), attribute->handle);
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

std::optional<std::uint16_t> Tables::HandleOf(std::string_view name) const {
  const auto found = handles_.find(name);
  return found != handles_.end() ? std::optional(found->second) : std::nullopt;
}

std::string_view Tables::Text(std::uint16_t handle) const {
  const BiosString* const found = FindString(handle);
  return found != nullptr ? found->Text() : std::string_view();
}

}  // namespace mira::pldm
