#include "pldm/manager.h"

#include <iostream>
#include <string_view>

#include "bytes/secure.h"
#include "callif/password.h"
#include "pldm/attribute_convert.h"
#include "pldm/table_fetch.h"
#include "pldm/table_parser.h"

namespace mira::pldm {
namespace {

using callif::OneCall;

constexpr callif::Command kReadValue = {5, 5};
constexpr callif::Command kWriteValue = {5, 6};

bool SameType(PLDM::ATTRIBUTE_TYPE a, PLDM::ATTRIBUTE_TYPE b) {
  return PLDM::WritableForm(a) == PLDM::WritableForm(b);
}

// Appends the texts of the attribute's choices, each with `end` behind it, until one is missing.
AttributeResult AppendChoices(const IntPLDMAttribute* attribute, const Indices& indices,
                              const char* end, const Tables& tables, std::string& text) {
  for (const std::uint8_t index : indices) {
    const auto choice = ChoiceText(attribute, index, tables);
    if (!choice) return {AttributeResult::kFailed};
    text.append(*choice).append(end);
  }
  return {};
}

}  // namespace

Manager::Manager(const callif::Target& target, bool wants_display_strings, bool wants_help_strings)
    : target_(target),
      wants_display_strings_(wants_display_strings),
      wants_help_strings_(wants_help_strings) {}

Manager::~Manager() { bytes::Wipe(&key_, sizeof(key_)); }

bool Manager::Load() { return FetchTables(target_, key_, record_); }

const IntPLDMAttribute* Manager::Find(std::uint16_t handle) const {
  return record_ ? record_->Tables.FindAttribute(handle) : nullptr;
}

AttributeResult Manager::Find(std::uint16_t handle, const IntPLDMAttribute*& attribute) const {
  if (!record_) return {AttributeResult::kNotSupported};
  attribute = Find(handle);
  return {attribute != nullptr ? AttributeResult::kDone : AttributeResult::kNotFound};
}

void Manager::GetAttributeHandlesAndTypes(
    std::list<std::pair<std::uint16_t, PLDM::ATTRIBUTE_TYPE>>& out) const {
  if (!record_) return;
  out.clear();
  for (const IntPLDMAttribute* const attribute : record_->Tables.Attributes()) {
    out.emplace_back(attribute->handle, attribute->type);
  }
}

void Manager::GetAttributeNamesAndTypes(
    std::list<std::pair<std::string, PLDM::ATTRIBUTE_TYPE>>& out) const {
  if (!record_) return;
  out.clear();
  for (const IntPLDMAttribute* const attribute : record_->Tables.Attributes()) {
    out.emplace_back(record_->Tables.Text(attribute->name_handle), attribute->type);
  }
}

AttributeResult Manager::GetAttributeName(std::uint16_t handle, std::string& name) const {
  const IntPLDMAttribute* attribute = nullptr;
  const AttributeResult found = Find(handle, attribute);
  if (attribute != nullptr) name = record_->Tables.Text(attribute->name_handle);
  return found;
}

PLDM::ATTRIBUTE_TYPE Manager::GetAttributeType(std::uint16_t handle) const {
  const IntPLDMAttribute* const attribute = Find(handle);
  return attribute != nullptr ? attribute->type : PLDM::BIOSUnknownType;
}

AttributeResult Manager::Resolve(PLDM::Attribute& attr) {
  if (!record_) return {AttributeResult::kNotSupported};
  if (attr.Name.empty() && attr.Handle == 0) return {AttributeResult::kNotFound};
  auto value = MakeValue(attr.Type);
  if (value && !attr.Name.empty()) attr.Handle = record_->Tables.HandleOf(attr.Name).value_or(0);
  const IntPLDMAttribute* const attribute = attr.Handle != 0 ? Find(attr.Handle) : nullptr;
  if (value) {
    // What cannot be read leaves what was exchanged last as it is.
    const bool fits =
        attribute == nullptr || (IsOfItsType(attr) && SameType(attr.Type, attribute->type));
    if (!fits) return {AttributeResult::kFailed};
    value->handle = attr.Handle;
    record_->Exchange = std::move(value);
  }
  return {attribute != nullptr ? AttributeResult::kDone : AttributeResult::kNotFound};
}

bool Manager::FetchStrings(StringKind kind) {
  if (!record_) return true;
  const bool wanted = kind == kHelpStrings ? wants_help_strings_ : wants_display_strings_;
  const Tables::WideIndex& index =
      kind == kHelpStrings ? record_->Tables.help_strings : record_->Tables.display_strings;
  return !wanted || !index.empty() || FetchStringData(target_, key_, kind, record_);
}

AttributeResult Manager::Fill(PLDM::Attribute& attr, Source source) {
  if (!FetchStrings(kDisplayStrings) || !FetchStrings(kHelpStrings))
    return {AttributeResult::kCancelled};
  if (!record_) return {AttributeResult::kNotSupported};
  // Looked up behind the fetch, which replaces every table that the directory points it to.
  const IntPLDMAttributeValue* const value =
      source == kLive ? record_->Exchange.get() : record_->Tables.FindValue(attr.Handle);
  const IntPLDMAttribute& attribute = *Find(attr.Handle);
  if (!PLDM::IsKnown(attr.Type)) {
    FillNames(attribute, record_->Tables, attr);
    return {};
  }
  const bool filled = value != nullptr && pldm::Fill(attribute, *value, record_->Tables, attr);
  return {filled ? AttributeResult::kDone : AttributeResult::kFailed};
}

AttributeResult Manager::GetAttributeValue(PLDM::Attribute& attr) {
  if (const AttributeResult resolved = Resolve(attr); resolved.kind != AttributeResult::kDone)
    return resolved;
  std::uint32_t size = 0;
  OneCall call(target_, kReadValue, key_, size, *record_);
  if (!call.Sent()) return {AttributeResult::kFailed};
  if (!call.Succeeded()) return {AttributeResult::kCallFailed, call.CompletionCode()};
  call.Buffer().ParseOutputBuffer(*record_);
  if (!record_->ExchangeStatus) return {AttributeResult::kMalformed};
  return Fill(attr, kLive);
}

AttributeResult Manager::GetAttributeValueAtBoot(PLDM::Attribute& attr) {
  if (const AttributeResult resolved = Resolve(attr); resolved.kind != AttributeResult::kDone)
    return resolved;
  return Fill(attr, kAtBoot);
}

AttributeResult Manager::GetAttributeValueAtBoot(std::uint16_t handle, std::string& value) const {
  if (!record_) return {AttributeResult::kNotSupported};
  const Tables& tables = record_->Tables;
  const IntPLDMAttributeValue* const found = tables.FindValue(handle);
  if (found == nullptr) return {AttributeResult::kFailed};
  switch (PLDM::WritableForm(found->type)) {
    case PLDM::BIOSEnumeration:
      return AppendChoices(Find(handle),
                           dynamic_cast<const IntBIOSEnumerationValue&>(*found).indices, "", tables,
                           value);
    case PLDM::BIOSBootConfigSetting:
      return AppendChoices(
          Find(handle), dynamic_cast<const IntBIOSBootConfigSettingValue&>(*found).ordered_indices,
          ";", tables, value);
    case PLDM::BIOSString:
      value = dynamic_cast<const IntBIOSStringValue&>(*found).text;
      break;
    case PLDM::BIOSPassword:
      value = dynamic_cast<const IntBIOSPasswordValue&>(*found).text;
      break;
    case PLDM::BIOSInteger:
      value = std::to_string(dynamic_cast<const IntBIOSIntegerValue&>(*found).value);
      break;
    case PLDM::BIOSCollection:
      std::cout << "BIOS Collection Value types are not implemented, contact the developer!!"
                << std::endl;
      break;
    case PLDM::BIOSConfigSet:
      std::cout << "BIOS ConfigSet Value types are not implemented, contact the developer!!"
                << std::endl;
      break;
    default:
      break;
  }
  return {};
}

bool Manager::ObtainKey(const std::string& password, bool class10, std::uint32_t key) {
  if (!password.empty()) {
    CPwdContext context(target_.calling, target_.buffer_size, target_.instance_key);
    key_ = context.GetSecurityKey(password, class10);
    return key_ != CPwdContext::kNoKey;
  }
  if (key != CPwdContext::kNoKey) key_ = key;
  return true;
}

AttributeResult Manager::SetAttributeValue(PLDM::Attribute& attr, const std::string& password,
                                           bool class10, std::uint32_t key) {
  if (!record_) return {AttributeResult::kNotSupported};
  const bool writable = PLDM::IsKnown(attr.Type) && !PLDM::IsReadOnly(attr.Type);
  if (writable && !IsOfItsType(attr)) return {AttributeResult::kFailed};
  if (!ObtainKey(password, class10, key)) return {AttributeResult::kNoKey};
  if (writable) {
    if (!attr.Name.empty()) attr.Handle = record_->Tables.HandleOf(attr.Name).value_or(0);
    auto value = ToValue(attr, record_->Tables);
    if (!value) return {AttributeResult::kFailed};
    record_->Exchange = std::move(value);
  } else {
    DiagnoseType();
  }
  std::uint32_t size = 0;
  OneCall call(target_, kWriteValue, key_, size, *record_);
  if (!call.Sent()) return {AttributeResult::kFailed};
  call.Buffer().ParseOutputBuffer(*record_);
  if (!call.Succeeded()) return {AttributeResult::kCallFailed, call.CompletionCode()};
  if (!record_->ExchangeStatus) return {AttributeResult::kFailed};
  return {AttributeResult::kAnswered, *record_->ExchangeStatus};
}

AttributeResult Manager::GetAttributeDefault(std::uint16_t handle, std::string& value) const {
  const IntPLDMAttribute* attribute = nullptr;
  const AttributeResult found = Find(handle, attribute);
  if (attribute == nullptr) return found;
  value.clear();
  if (const auto* const enumeration = dynamic_cast<const IntBIOSEnumeration*>(attribute)) {
    const char* separator = "";
    for (const std::uint8_t index : enumeration->default_indices) {
      const auto& choices = enumeration->possible_handles;
      const BiosString choice =
          index < choices.size() ? record_->Tables.FindString(choices[index]).value_or(BiosString())
                                 : BiosString();
      value.append(separator).append(choice.text).append(choice.suffix);
      separator = ", ";
    }
  } else if (const auto* const string = dynamic_cast<const IntBIOSString*>(attribute)) {
    value = string->default_text;
  } else if (const auto* const password = dynamic_cast<const IntBIOSPassword*>(attribute)) {
    value = password->default_text;
  } else if (const auto* const integer = dynamic_cast<const IntBIOSInteger*>(attribute)) {
    value = std::to_string(integer->default_value);
  }
  return found;
}

AttributeResult Manager::GetPossibleValues(std::uint16_t handle,
                                           std::list<std::string>& names) const {
  const IntPLDMAttribute* attribute = nullptr;
  const AttributeResult found = Find(handle, attribute);
  if (attribute == nullptr) return found;
  names.clear();
  // Two values may differ in their suffixes alone. Sources and members are found by name.
  const bool has_suffixes = dynamic_cast<const IntBIOSEnumeration*>(attribute) != nullptr;
  for (const std::uint16_t choice : Choices(*attribute)) {
    const BiosString name = record_->Tables.FindString(choice).value_or(BiosString{});
    names.emplace_back(name.text);
    if (has_suffixes) names.back().append(name.suffix);
  }
  return found;
}

}  // namespace mira::pldm
