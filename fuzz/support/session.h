#ifndef MIRA_FUZZ_SUPPORT_SESSION_H_
#define MIRA_FUZZ_SUPPORT_SESSION_H_

// One command of the client layer, run on the machine that is in force.

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

#include "client/command.h"

namespace mira::fuzz {

// Gives the same password for everything.
class OnePassword : public client::SecretProvider {
 public:
  explicit OnePassword(std::string password) : password_(std::move(password)) {}
  bool IsGiven(const std::string&) const override { return !password_.empty(); }
  bool CanAsk() const override { return false; }
  std::optional<bytes::SecureString> Get(const std::string&, const std::string&) override {
    if (password_.empty()) return std::nullopt;
    return bytes::SecureString(password_);
  }

 private:
  std::string password_;
};

// Ends the program where the command gives a document that cannot be written, or an unknown status.
inline void RunCommand(const char* name, client::Json arguments, const std::string& password = "") {
  client::Session session;
  OnePassword secrets(password);
  client::Request request(session, secrets);
  const client::Result result =
      client::Run(*client::FindCommand(name), std::move(arguments), request);
  if (std::string(client::StatusName(result.status)) == "unknown") std::abort();
  client::ToText(result.document);
}

}  // namespace mira::fuzz

#endif  // MIRA_FUZZ_SUPPORT_SESSION_H_
