#include "pldm/tables.h"

#include <algorithm>
#include <limits>

#include "bytes/secure.h"

namespace mira::pldm {
IntBIOSPassword::~IntBIOSPassword() { bytes::Wipe(default_text); }
IntBIOSPasswordValue::~IntBIOSPasswordValue() { bytes::Wipe(text); }

std::span<const char16_t> Choices(const IntPLDMAttribute& attribute) {
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

void Tables::AddString(std::uint16_t handle, std::string_view whole) {
  // Strings that were replaced still count; real tables stay far below this.
  constexpr std::size_t kMostCharacters = 64 * 1024 * 1024;
  constexpr std::size_t kLongestString = std::numeric_limits<std::uint16_t>::max();
  if (whole.size() > kLongestString || characters_.size() > kMostCharacters) return;
  strings_[handle] = {static_cast<std::uint32_t>(characters_.size()),
                      static_cast<std::uint16_t>(whole.size()),
                      static_cast<std::uint16_t>(std::min(whole.find('['), whole.size()))};
  characters_ += whole;
}

void Tables::AddAttribute(std::unique_ptr<IntPLDMAttribute> attribute) {
  if (const Place* const name = strings_.Find(attribute->name_handle)) {
    handles_.Put(characters_, {name->offset, name->bracket}, attribute->handle);
  }
  attributes_[attribute->handle] = std::move(attribute);
}

void Tables::AddValue(std::unique_ptr<IntPLDMAttributeValue> value) {
  values_[value->handle] = std::move(value);
}

std::optional<BiosString> Tables::FindString(std::uint16_t handle) const {
  const Place* const found = strings_.Find(handle);
  if (found == nullptr) return std::nullopt;
  const auto whole = std::string_view(characters_).substr(found->offset, found->length);
  return BiosString{whole.substr(0, found->bracket), whole.substr(found->bracket)};
}

const IntPLDMAttribute* Tables::FindAttribute(std::uint16_t handle) const {
  const auto* const found = attributes_.Find(handle);
  return found != nullptr ? found->get() : nullptr;
}

const IntPLDMAttributeValue* Tables::FindValue(std::uint16_t handle) const {
  const auto* const found = values_.Find(handle);
  return found != nullptr ? found->get() : nullptr;
}

std::optional<std::uint16_t> Tables::HandleOf(std::string_view name) const {
  return handles_.Find(characters_, name);
}

std::string_view Tables::Text(std::uint16_t handle) const {
  return FindString(handle).value_or(BiosString{}).text;
}

std::vector<const IntPLDMAttribute*> Tables::Attributes() const {
  std::vector<const IntPLDMAttribute*> all;
  attributes_.ForEach([&all](const auto& attribute) { all.push_back(attribute.get()); });
  return all;
}

}  // namespace mira::pldm
