#include "client/state/attribute_wish.h"

namespace mira::client {
namespace {

Error NoSuchType(const AttributeEntry& entry, const std::string& what) {
  return Error(kInvalidValue, "invalid-value", entry.Title() + ": " + what, entry.Title());
}

bool TakesList(const AttributeEntry& entry) {
  switch (PLDM::WritableForm(entry.type)) {
    case PLDM::BIOSEnumeration:
    case PLDM::BIOSBootConfigSetting:
    case PLDM::BIOSCollection:
      return true;
    default:
      return false;
  }
}

}  // namespace

void CheckStateValue(const AttributeEntry& entry, const Json& value) {
  if (entry.IsPassword()) {
    throw Error(kInvalidValue, "password",
                entry.Title() + " is a password: a state names the secret that holds its value.",
                entry.Title());
  }
  if (PLDM::WritableForm(entry.type) == PLDM::BIOSInteger) {
    if (value.is_number() || value.is_string()) return;
    if (value.is_boolean()) {
      throw Error(kInvalidValue, "quote-it",
                  entry.Title() + ": '" + value.dump() +
                      "' is not a number. Quote it: YAML reads words like On and Yes as true or "
                      "false.",
                  entry.Title());
    }
    throw NoSuchType(entry, "'" + value.dump() + "' is not a number.");
  }
  if (!value.is_array()) return RequireText(value, entry.Title());
  if (!TakesList(entry)) throw NoSuchType(entry, "it takes one text, not a list.");
  for (const Json& part : value) RequireText(part, entry.Title());
}

Step PlanStateAttribute(const AttributeWriterPtr& writer, std::uint16_t handle, const Json& body) {
  const AttributeEntry* const entry = writer->All().FindHandle(handle);
  if (entry == nullptr) {
    throw Error(kNotFound, "attribute-not-found", "The attribute is no longer there.");
  }
  AttributeWish wish{.entry = entry, .value = body.at("value")};
  for (const ModeRow& row : kBootModes) {
    if (const auto mode = body.find(row.name); mode != body.end()) wish.modes[row.name] = *mode;
  }
  if (entry->IsReadOnly()) {
    // What is wrong with the value shall be said, too: it may be writable later.
    Setting setting = writer->All().ReadLive(*entry);
    Assign(writer->All(), setting, wish.value, Limits::kCheck);
  }
  Step step = PlanAttribute(writer, wish);
  // Firmware may have a form of its own for the value.
  step.is_exact = false;
  return step;
}

Step PlanStateSecret(const AttributeWriterPtr& writer, std::uint16_t handle,
                     const std::string& slot, SecretProvider& secrets) {
  const AttributeEntry* const entry = writer->All().FindHandle(handle);
  const std::string title = entry != nullptr ? entry->Title() : slot;
  const auto text = secrets.Get(slot, "New value of " + title);
  if (!text) {
    throw Error(kPassword, "value-needed", "The secret '" + slot + "' is needed.", title)
        .With("slot", slot);
  }
  AttributeWish wish{.entry = entry, .value = text->str()};
  try {
    Step step = PlanAttribute(writer, wish);
    Wipe(wish.value);
    return step;
  } catch (...) {
    Wipe(wish.value);
    throw;
  }
}

}  // namespace mira::client
