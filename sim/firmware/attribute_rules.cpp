// How attributes depend on each other, and what the firmware makes of what is written to them.

#include <algorithm>
#include <stdexcept>

#include "bytes/text.h"
#include "sim/firmware/attributes.h"

namespace mira::sim {
namespace {

constexpr std::uint8_t kReadOnlyBit = 0x80;

[[noreturn]] void RefuseRule(const SetupAttribute& setup, const std::string& what) {
  throw std::invalid_argument("Setup attribute " + setup.name + " " + what);
}

}  // namespace

void AttributeHandler::CheckRules() {
  for (const Stored& attribute : attributes_) {
    const SetupAttribute& setup = attribute.setup;
    for (const auto& [written, kept] : setup.norm.values) {
      Encode(attribute, written);
      Encode(attribute, kept);
    }
    for (const std::string& other : setup.resets) {
      if (HandleOf(other) == 0) RefuseRule(setup, "resets an attribute that there is not");
    }
    if (setup.unless.attribute.empty()) continue;
    has_locks_ = true;
    const Stored* const key = Find(HandleOf(setup.unless.attribute));
    if (key == nullptr) RefuseRule(setup, "depends on an attribute that there is not");
    Encode(*key, setup.unless.value);
  }
}

bool AttributeHandler::IsReadOnly(const Stored& attribute) const {
  const AttributeLock& unless = attribute.setup.unless;
  if (unless.attribute.empty()) return attribute.setup.read_only;
  const Stored* const key = Find(HandleOf(unless.attribute));
  return key == nullptr ||
         Decode(*key, unless.after_restart ? key->at_start : key->value) != unless.value;
}

std::uint8_t AttributeHandler::TypeOf(const Stored& attribute) const {
  const auto type = static_cast<std::uint8_t>(attribute.setup.kind);
  return IsReadOnly(attribute) ? type | kReadOnlyBit : type;
}

AttributeHandler::Value AttributeHandler::Normal(const Stored& attribute,
                                                 bytes::ByteSpan value) const {
  const AttributeNorm& norm = attribute.setup.norm;
  if (norm == AttributeNorm()) return {value.begin(), value.end()};
  std::string text = Decode(attribute, {value.begin(), value.end()});
  if (const auto other = norm.values.find(text); other != norm.values.end()) text = other->second;
  if (attribute.setup.kind == AttributeKind::kString) {
    if (norm.letters == KeptLetters::kUpper) text = bytes::Upper(text);
    if (norm.letters == KeptLetters::kLower) text = bytes::Lower(text);
  }
  if (attribute.setup.kind == AttributeKind::kInteger && norm.step != 0) {
    const std::uint64_t number = bytes::ParseDigits(text, 10).value_or(0);
    text = std::to_string(std::max(attribute.setup.lower, number - number % norm.step));
  }
  try {
    return Encode(attribute, text);
  } catch (const std::logic_error&) {
    // What it would become breaks a limit.
    return {value.begin(), value.end()};
  }
}

void AttributeHandler::Store(Stored& attribute, bytes::ByteSpan value) {
  Value kept = Normal(attribute, value);
  if (kept != attribute.value) {
    for (Stored& other : attributes_) {
      const auto& resets = attribute.setup.resets;
      const bool is_reset =
          std::find(resets.begin(), resets.end(), other.setup.name) != resets.end();
      if (is_reset) other.value = Encode(other, other.setup.default_value);
    }
  }
  if (!attribute.setup.value_after_restart) {
    attribute.value = std::move(kept);
  } else if (kept == attribute.value) {
    attribute.awaited.clear();
  } else {
    attribute.awaited = std::move(kept);
  }
  if (!has_locks_) return;
  // What depends on it may have become writable, or read-only.
  BuildAttributeTable();
  BuildValueTable();
}

}  // namespace mira::sim
