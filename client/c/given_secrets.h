#ifndef MIRA_CLIENT_C_GIVEN_SECRETS_H_
#define MIRA_CLIENT_C_GIVEN_SECRETS_H_

// The secrets that come with a request, in memory that wipes itself.

#include <map>
#include <optional>
#include <span>
#include <string>

#include "client/c/mira_client.h"
#include "client/command.h"
#include "client/secrets.h"

namespace mira::client::c {

class GivenSecrets : public SecretProvider {
 public:
  GivenSecrets() = default;
  // Copies them. Throws Error (kUsage) for a slot that is none of `slots`, or given twice, and for
  // sizes that no secret has.
  GivenSecrets(std::span<const mira_secret> secrets, std::span<const char* const> slots);

  bool IsGiven(const std::string& slot) const override { return secrets_.contains(slot); }
  bool CanAsk() const override { return false; }
  std::optional<bytes::SecureString> Get(const std::string& slot,
                                         const std::string& purpose) override;

 private:
  std::map<std::string, bytes::SecureString> secrets_;
};

}  // namespace mira::client::c

#endif  // MIRA_CLIENT_C_GIVEN_SECRETS_H_
