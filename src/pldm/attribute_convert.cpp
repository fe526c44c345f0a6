#include "pldm/attribute_convert.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <list>
#include <span>

#include "bytes/secure.h"
#include "bytes/utf16.h"
#include "pldm/table_parser.h"

namespace mira::pldm {
namespace {

std::wstring WideText(const Tables::WideIndex& index, std::uint16_t handle) {
  const auto found = index.find(handle);
  return found != index.end() ? bytes::Wide(found->second) : std::wstring();
}

std::string ChoiceName(const IntPLDMAttribute& attribute, std::size_t index, const Tables& tables) {
  return std::string(ChoiceText(&attribute, index, tables).value_or(std::string_view()));
}

std::list<std::string> ChoiceNames(const IntPLDMAttribute& attribute, const Indices& indices,
                                   const Tables& tables) {
  std::list<std::string> names;
  for (const std::uint8_t index : indices) names.push_back(ChoiceName(attribute, index, tables));
  return names;
}

// The place, among the choices of the attribute, of the string whose handle the attribute of that
// name has; their number when there is none.
std::uint8_t PlaceOf(const std::string& name, std::uint16_t attribute, const Tables& tables) {
  const IntPLDMAttribute* const found = tables.FindAttribute(attribute);
  const auto choices = found != nullptr ? Choices(*found) : std::span<const char16_t>();
  const auto handle = tables.HandleOf(name);
  const auto place = handle ? std::find(choices.begin(), choices.end(), *handle) : choices.end();
  return static_cast<std::uint8_t>(place - choices.begin());
}

bool Narrow(std::uint32_t from, std::uint8_t& to) {
  to = static_cast<std::uint8_t>(from);
  return from == to;
}

void Fill(const IntBIOSEnumeration& attribute, const IntBIOSEnumerationValue& value,
          const Tables& tables, PLDM::Enumeration& out) {
  out.PossibleValues.clear();
  out.SuffixedValues.clear();
  for (const std::uint16_t handle : attribute.possible_handles) {
    const BiosString name = tables.FindString(handle).value_or(BiosString{});
    out.PossibleValues.emplace_back(name.text);
    if (!name.suffix.empty()) out.SuffixedValues.emplace_back(name.text).append(name.suffix);
  }
  out.DefaultValues = ChoiceNames(attribute, attribute.default_indices, tables);
  out.DefaultIndices.clear();
  for (const std::uint8_t index : attribute.default_indices) {
    if (index < attribute.possible_handles.size()) out.DefaultIndices.push_back(index);
  }
  out.CurrentIndices.assign(value.indices.begin(), value.indices.end());
}

void Fill(const IntBIOSString& attribute, const IntBIOSStringValue& value, const Tables&,
          PLDM::String& out) {
  out.MinLength = attribute.min_length;
  out.MaxLength = attribute.max_length;
  out.Value = value.text;
}

void Fill(const IntBIOSPassword& attribute, const IntBIOSPasswordValue& value, const Tables&,
          PLDM::Password& out) {
  out.MinLength = attribute.min_length;
  out.MaxLength = attribute.max_length;
  bytes::Wipe(out.Value);
  out.Value = value.text;
}

void Fill(const IntBIOSInteger& attribute, const IntBIOSIntegerValue& value, const Tables&,
          PLDM::Integer& out) {
  out.LowerBound = attribute.lower_bound;
  out.UpperBound = attribute.upper_bound;
  out.ScalarIncrement = attribute.scalar_increment;
  out.Value = value.value;
}

void Fill(const IntBIOSBootConfigSetting& attribute, const IntBIOSBootConfigSettingValue& value,
          const Tables& tables, PLDM::BootConfigSetting& out) {
  out.BootConfigType = value.boot_config_type;
  out.FailThroughMode = value.fail_through_mode;
  out.MinSources = attribute.min_sources;
  out.MaxSources = attribute.max_sources;
  out.OrderedSources = ChoiceNames(attribute, value.ordered_indices, tables);
}

void Fill(const IntBIOSCollection& attribute, const IntBIOSCollectionValue& value,
          const Tables& tables, PLDM::Collection& out) {
  out.CollectionName = tables.Text(attribute.collection_name_handle);
  out.CollectionType = attribute.collection_type;
  out.Members.assign(value.members.begin(), value.members.end());
}

void Fill(const IntBIOSConfigSet& attribute, const IntBIOSConfigSetValue& value,
          const Tables& tables, PLDM::ConfigSet& out) {
  out.SelectedMember = ChoiceName(attribute, value.index, tables);
}

bool Take(const PLDM::Enumeration& in, const Tables&, IntBIOSEnumerationValue& value) {
  value.indices.assign(in.CurrentIndices.begin(), in.CurrentIndices.end());
  return true;
}
bool Take(const PLDM::String& in, const Tables&, IntBIOSStringValue& value) {
  value.text = in.Value;
  return true;
}
bool Take(const PLDM::Password& in, const Tables&, IntBIOSPasswordValue& value) {
  value.text = in.Value;
  return true;
}
bool Take(const PLDM::Integer& in, const Tables&, IntBIOSIntegerValue& value) {
  value.value = in.Value;
  return true;
}
bool Take(const PLDM::BootConfigSetting& in, const Tables& tables,
          IntBIOSBootConfigSettingValue& value) {
  for (const std::string& name : in.OrderedSources) {
    value.ordered_indices.push_back(PlaceOf(name, in.Handle, tables));
  }
  return Narrow(in.BootConfigType, value.boot_config_type) &&
         Narrow(in.FailThroughMode, value.fail_through_mode);
}
bool Take(const PLDM::Collection& in, const Tables&, IntBIOSCollectionValue& value) {
  value.members.assign(in.Members.begin(), in.Members.end());
  return true;
}
bool Take(const PLDM::ConfigSet& in, const Tables& tables, IntBIOSConfigSetValue& value) {
  value.index = PlaceOf(in.SelectedMember, in.Handle, tables);
  return true;
}

// How each type is converted; the rows stand in the order of the types' numbers.
struct Kind {
  bool (*is)(const PLDM::Attribute& attribute);
  bool (*fill)(const IntPLDMAttribute& attribute, const IntPLDMAttributeValue& value,
               const Tables& tables, PLDM::Attribute& out);
  bool (*take)(const PLDM::Attribute& in, const Tables& tables, IntPLDMAttributeValue& value);
};

template <typename Caller, typename A, typename V>
constexpr Kind MakeKind() {
  return {
      [](const PLDM::Attribute& attribute) {
        return dynamic_cast<const Caller*>(&attribute) != nullptr;
      },
      [](const IntPLDMAttribute& attribute, const IntPLDMAttributeValue& value,
         const Tables& tables, PLDM::Attribute& out) {
        const auto* const a = dynamic_cast<const A*>(&attribute);
        const auto* const v = dynamic_cast<const V*>(&value);
        auto* const o = dynamic_cast<Caller*>(&out);
        if (a == nullptr || v == nullptr || o == nullptr) return false;
        Fill(*a, *v, tables, *o);
        return true;
      },
      [](const PLDM::Attribute& in, const Tables& tables, IntPLDMAttributeValue& value) {
        return Take(dynamic_cast<const Caller&>(in), tables, dynamic_cast<V&>(value));
      },
  };
}

constexpr Kind kKinds[] = {
    MakeKind<PLDM::Enumeration, IntBIOSEnumeration, IntBIOSEnumerationValue>(),
    MakeKind<PLDM::String, IntBIOSString, IntBIOSStringValue>(),
    MakeKind<PLDM::Password, IntBIOSPassword, IntBIOSPasswordValue>(),
    MakeKind<PLDM::Integer, IntBIOSInteger, IntBIOSIntegerValue>(),
    MakeKind<PLDM::BootConfigSetting, IntBIOSBootConfigSetting, IntBIOSBootConfigSettingValue>(),
    MakeKind<PLDM::Collection, IntBIOSCollection, IntBIOSCollectionValue>(),
    MakeKind<PLDM::ConfigSet, IntBIOSConfigSet, IntBIOSConfigSetValue>(),
};
static_assert(std::size(kKinds) == PLDM::BIOSConfigSet + 1);

const Kind* FindKind(PLDM::ATTRIBUTE_TYPE type) {
  return PLDM::IsKnown(type) ? &kKinds[PLDM::WritableForm(type)] : nullptr;
}

}  // namespace

std::optional<std::string_view> ChoiceText(const IntPLDMAttribute* attribute, std::size_t index,
                                           const Tables& tables) {
  const auto choices = attribute != nullptr ? Choices(*attribute) : std::span<const char16_t>();
  const auto found = index < choices.size() ? tables.FindString(choices[index]) : std::nullopt;
  return found ? std::optional(found->text) : std::nullopt;
}

bool IsOfItsType(const PLDM::Attribute& attribute) {
  const Kind* const kind = FindKind(attribute.Type);
  return kind == nullptr || kind->is(attribute);
}

void FillNames(const IntPLDMAttribute& attribute, const Tables& tables, PLDM::Attribute& out) {
  const BiosString name = tables.FindString(attribute.name_handle).value_or(BiosString{});
  out.Name = name.text;
  out.Suffix = name.suffix;
  out.DisplayText = WideText(tables.display_strings, attribute.name_handle);
  out.HelpText = WideText(tables.help_strings, attribute.name_handle);
}

bool Fill(const IntPLDMAttribute& attribute, const IntPLDMAttributeValue& value,
          const Tables& tables, PLDM::Attribute& out) {
  const Kind* const kind = FindKind(out.Type);
  if (kind == nullptr || !kind->fill(attribute, value, tables, out)) return false;
  FillNames(attribute, tables, out);
  return true;
}

std::unique_ptr<IntPLDMAttributeValue> ToValue(const PLDM::Attribute& attribute,
                                               const Tables& tables) {
  const Kind* const kind = FindKind(attribute.Type);
  auto value = MakeValue(attribute.Type);
  if (kind == nullptr || !value || !kind->take(attribute, tables, *value)) return nullptr;
  value->handle = attribute.Handle;
  return value;
}

}  // namespace mira::pldm
