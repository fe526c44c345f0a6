#include "client/state/state_secrets.h"

#include <utility>

#include "client/error.h"

namespace mira::client {
namespace {

constexpr char kPassword9[] = "password";
constexpr char kSecrets[] = "secrets";

Error GivenTwice(const std::string& slot) {
  return Error(kUsage, "secret-twice", "The secret '" + slot + "' is given twice.", slot);
}

}  // namespace

StateSecrets::StateSecrets(SecretProvider& usual, std::optional<SecretTexts> beside)
    : usual_(usual) {
  if (beside) texts_ = std::move(*beside);
  if (usual_.IsGiven(kSecrets)) {
    if (auto text = usual_.Get(kSecrets, "Secrets")) {
      for (auto& [slot, secret] : TakeSecrets(text->str())) {
        if (!texts_.try_emplace(slot, std::move(secret)).second) throw GivenTwice(slot);
      }
    }
  }
  if (texts_.contains(kPassword9) && usual_.IsGiven(kPassword9)) throw GivenTwice(kPassword9);
}

bool StateSecrets::IsGiven(const std::string& slot) const {
  return texts_.contains(slot) || (slot == kPassword9 && usual_.IsGiven(slot));
}

std::optional<bytes::SecureString> StateSecrets::Get(const std::string& slot,
                                                     const std::string& purpose) {
  if (const auto found = texts_.find(slot); found != texts_.end()) return found->second;
  if (slot == kPassword9) return usual_.Get(slot, purpose);
  // Whoever is asked types it like any new value.
  return usual_.CanAsk() ? usual_.Get("value", purpose) : std::nullopt;
}

}  // namespace mira::client
