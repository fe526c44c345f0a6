#ifndef MIRA_CONSOLE_SECRETS_H_
#define MIRA_CONSOLE_SECRETS_H_

// The program's passwords: from standard input, a file or the environment, or typed without echo.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/secrets.h"
#include "console/secret_input.h"

namespace mira::console {

// Where the secret of one slot comes from.
struct SecretSlot {
  std::string name;
  std::shared_ptr<SecretSource> source;
};
using SecretSlots = std::vector<SecretSlot>;

// Adds the options of a slot to a command.
SecretSlot AddSecretSlot(CLI::App& app, const std::string& slot);

class ConsoleSecrets : public client::SecretProvider {
 public:
  // Of several secrets on standard input, the first slot has the first line, whether it is asked
  // for or not.
  ConsoleSecrets(Context& context, const SecretSlots& slots);

  bool IsGiven(const std::string& slot) const override;
  bool CanAsk() const override;
  bool TakesThemInContent() const override { return true; }
  std::optional<bytes::SecureString> Get(const std::string& slot,
                                         const std::string& purpose) override;

 private:
  struct Slot {
    SecretSlot options;
    std::optional<bytes::SecureString> text;  // once it was read
  };
  const Slot* Find(const std::string& slot) const;
  bytes::SecureString Ask(const std::string& slot, const std::string& purpose) const;
  void ReadStandardInput(const std::string& wanted, const std::string& purpose);

  Context& context_;
  std::vector<Slot> slots_;
};

}  // namespace mira::console

#endif  // MIRA_CONSOLE_SECRETS_H_
