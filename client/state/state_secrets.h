#ifndef MIRA_CLIENT_STATE_STATE_SECRETS_H_
#define MIRA_CLIENT_STATE_STATE_SECRETS_H_

// The secrets of a desired state: those in the document, in the slot "secrets", and the usual ones.

#include <optional>
#include <string>

#include "client/secrets.h"
#include "client/state/secret_text.h"

namespace mira::client {

class StateSecrets : public SecretProvider {
 public:
  // `beside` are those that came with the state. Throws Error where one is given twice.
  StateSecrets(SecretProvider& usual, std::optional<SecretTexts> beside);

  bool IsGiven(const std::string& slot) const override;
  bool CanAsk() const override { return usual_.CanAsk(); }
  std::optional<bytes::SecureString> Get(const std::string& slot,
                                         const std::string& purpose) override;

 private:
  SecretProvider& usual_;
  SecretTexts texts_;
};

}  // namespace mira::client

#endif  // MIRA_CLIENT_STATE_STATE_SECRETS_H_
