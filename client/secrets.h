#ifndef MIRA_CLIENT_SECRETS_H_
#define MIRA_CLIENT_SECRETS_H_

// Where an operation gets its passwords from. Each has a slot:
//
//   "password"  the one that allows the operation: a BIOS password, or a drive's own
//   "setup"     the setup (administrator) password, where a drive's alone does not do
//   "new"       the one to be set
//   "value"     the new value of an attribute that is a password
//   "secrets"   several, of a desired state: a JSON object of names and texts

#include <optional>
#include <string>

#include "bytes/secure.h"

namespace mira::client {

class SecretProvider {
 public:
  virtual ~SecretProvider() = default;
  // Whether one was given for the slot; asking costs nothing.
  virtual bool IsGiven(const std::string& slot) const = 0;
  // Whether somebody can be asked for one that was not given.
  virtual bool CanAsk() const = 0;
  // Whether secrets may stand in a file that a command is given for something else as well.
  virtual bool TakesThemInContent() const { return false; }
  // What was given, or else what the person who is asked types (one for "new" or "value" is typed
  // twice); nothing when there is neither. `purpose` says what it is for: "Setup password". Throws
  // Error when what was given cannot be read.
  virtual std::optional<bytes::SecureString> Get(const std::string& slot,
                                                 const std::string& purpose) = 0;
};

// Has none.
class NoSecrets : public SecretProvider {
 public:
  bool IsGiven(const std::string&) const override { return false; }
  bool CanAsk() const override { return false; }
  std::optional<bytes::SecureString> Get(const std::string&, const std::string&) override {
    return std::nullopt;
  }
};

}  // namespace mira::client

#endif  // MIRA_CLIENT_SECRETS_H_
