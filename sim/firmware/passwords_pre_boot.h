#ifndef MIRA_SIM_FIRMWARE_PASSWORDS_PRE_BOOT_H_
#define MIRA_SIM_FIRMWARE_PASSWORDS_PRE_BOOT_H_

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "sim/firmware/handler.h"
#include "sim/firmware/security.h"
#include "sim/profile.h"

namespace mira::sim {

// The users who may authenticate before the boot, class 10: configuration (select 7), add (8),
// delete (9), who has authenticated (15), that user's logon credential (16), existence (17),
// look-up (18). Users stay over restarts; the configuration key does not.
//
// A text and the same bytes in binary, filled up with zeros, are the same user ID or passphrase. A
// passphrase is the user's key.
class PreBootUsers {
 public:
  PreBootUsers(std::shared_ptr<Security> security, const PreBoot& profile);
  // False for a select that is none of these.
  bool Handle(Call& call);
  void Reboot();
  void Keep(Fields& fields);

 private:
  using UserId = std::array<std::uint8_t, 8>;
  using UserKey = std::array<std::uint8_t, 16>;
  struct User {
    UserId id;
    UserKey key;
    std::uint32_t permitted;
    std::uint32_t required;
    void Keep(Fields& fields);
  };

  void Configure(Call& call);
  void HandOutConfigurationKey(Call& call);
  void Add(Call& call);
  void Delete(Call& call);
  void TellAuthenticated(Call& call) const;
  void HandOutCredential(Call& call);
  void TellExistence(Call& call) const;
  void LookUp(Call& call) const;
  // Whether `key` is the configuration key. Completes the call otherwise.
  bool Opens(Call& call, std::uint32_t key) const;

  std::shared_ptr<Security> security_;
  PreBoot profile_;
  std::vector<User> users_;
  std::optional<User> authenticated_;
  // Bitmaps that credentials were fetched with, without the bits of methods that there are not.
  std::vector<std::uint32_t> fetched_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_PASSWORDS_PRE_BOOT_H_
