#ifndef MIRA_SIM_FIRMWARE_TOKENS_H_
#define MIRA_SIM_FIRMWARE_TOKENS_H_

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "sim/firmware/handler.h"
#include "sim/firmware/security.h"
#include "sim/profile.h"

namespace mira::sim {

// The locations that tokens name, each with its current and its pending value: a write takes effect
// with the next boot.
class TokenStore {
 public:
  explicit TokenStore(const std::vector<Token>& tokens);
  struct Value {
    std::uint32_t current;
    std::uint32_t pending;
    void Keep(Fields& fields) { fields("current", current)("pending", pending); }
  };
  // Null for a location that no token names.
  Value* Find(std::uint32_t location);
  void Reboot();
  void Keep(Fields& fields);

 private:
  std::map<std::uint32_t, Value> values_;
};

// Class 0: argument 1 is a location. Result 2 is the pending value for select 0, the one in force
// for selects 1 and 2 (mains and battery power alike).
class TokenReadHandler : public CommandHandler {
 public:
  explicit TokenReadHandler(std::shared_ptr<TokenStore> store) : store_(std::move(store)) {}
  void Handle(Call& call) override;
  void Reboot() override { store_->Reboot(); }
  void Keep(Fields& fields) override { store_->Keep(fields); }

 private:
  std::shared_ptr<TokenStore> store_;
};

// Class 1, selects 0 to 2: argument 1 is a location, argument 2 its new value, argument 3 the
// security key.
class TokenWriteHandler : public CommandHandler {
 public:
  TokenWriteHandler(std::shared_ptr<TokenStore> store, std::shared_ptr<Security> security)
      : store_(std::move(store)), security_(std::move(security)) {}
  void Handle(Call& call) override;

 private:
  std::shared_ptr<TokenStore> store_;
  std::shared_ptr<Security> security_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_TOKENS_H_
