#include "console/secrets.h"

#include <algorithm>
#include <iterator>

namespace mira::console {
namespace {

struct SlotOption {
  const char* slot;
  const char* option;
  const char* purpose;  // what is asked for where nobody says it better
  SecretForm form = SecretForm::kLine;
};
constexpr SlotOption kSlotOptions[] = {
    {"password", "password", "Current password"},
    {"setup", "admin-password", "Setup (administrator) password"},
    {"new", "new-password", "New password"},
    {"value", "value", "New value"},
    {"secrets", "secrets", "Secrets", SecretForm::kDocument},
};

const SlotOption* FindSlotOption(const std::string& slot) {
  const auto* const found =
      std::find_if(std::begin(kSlotOptions), std::end(kSlotOptions),
                   [&slot](const SlotOption& row) { return row.slot == slot; });
  return found != std::end(kSlotOptions) ? found : nullptr;
}

std::string UsualPurpose(const std::string& slot) {
  const SlotOption* const found = FindSlotOption(slot);
  return found != nullptr ? found->purpose : slot;
}

}  // namespace

SecretSlot AddSecretSlot(CLI::App& app, const std::string& slot) {
  const SlotOption* const found = FindSlotOption(slot);
  if (found == nullptr) return {slot, AddSecretOptions(app, slot)};
  return {slot, AddSecretOptions(app, found->option, found->form)};
}

ConsoleSecrets::ConsoleSecrets(Context& context, const SecretSlots& slots) : context_(context) {
  for (const SecretSlot& slot : slots) slots_.push_back({slot, std::nullopt});
}

const ConsoleSecrets::Slot* ConsoleSecrets::Find(const std::string& slot) const {
  const auto found = std::find_if(slots_.begin(), slots_.end(),
                                  [&slot](const Slot& s) { return s.options.name == slot; });
  return found != slots_.end() ? &*found : nullptr;
}

bool ConsoleSecrets::IsGiven(const std::string& slot) const {
  const Slot* const found = Find(slot);
  return found != nullptr && found->options.source->Given();
}

bool ConsoleSecrets::CanAsk() const { return context_.IsInteractive(); }

bytes::SecureString ConsoleSecrets::Ask(const std::string& slot, const std::string& purpose) const {
  context_.ClearProgress();
  const SecretSource nowhere;
  bytes::SecureString text = ReadSecret(context_, nowhere, purpose + " : ");
  const bool is_new = slot == "new" || slot == "value";
  if (is_new && ReadSecret(context_, nowhere, purpose + " again : ").str() != text.str()) {
    throw client::Error(kInvalidValue, "not-repeated", "The two texts differ.");
  }
  return text;
}

void ConsoleSecrets::ReadStandardInput(const std::string& wanted, const std::string& purpose) {
  for (Slot& slot : slots_) {
    if (!slot.options.source->from_stdin || slot.text) continue;
    const bool is_wanted = slot.options.name == wanted;
    slot.text = ReadSecret(context_, *slot.options.source,
                           (is_wanted ? purpose : UsualPurpose(slot.options.name)) + " : ");
  }
}

std::optional<bytes::SecureString> ConsoleSecrets::Get(const std::string& slot,
                                                       const std::string& purpose) {
  if (!IsGiven(slot)) {
    if (CanAsk()) return Ask(slot, purpose);
    return std::nullopt;
  }
  auto found = std::find_if(slots_.begin(), slots_.end(),
                            [&slot](const Slot& s) { return s.options.name == slot; });
  if (!found->text) {
    if (found->options.source->from_stdin) {
      ReadStandardInput(slot, purpose);
    } else {
      found->text = ReadSecret(context_, *found->options.source, "");
    }
  }
  return found->text;
}

}  // namespace mira::console
