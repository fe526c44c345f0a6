#ifndef MIRA_SIM_FIRMWARE_PASSWORDS_H_
#define MIRA_SIM_FIRMWARE_PASSWORDS_H_

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "sim/firmware/handler.h"
#include "sim/firmware/passwords_pre_boot.h"
#include "sim/firmware/security.h"
#include "sim/profile.h"

namespace mira::sim {

// Classes 9, 10 and 12: password status (select 3), verification (4), change (5).
class PasswordHandler : public CommandHandler {
 public:
  explicit PasswordHandler(std::shared_ptr<Security> security) : security_(std::move(security)) {}
  void Handle(Call& call) override;
  void Keep(Fields& fields) override { security_->Keep(fields); }

 protected:
  Security& security() const { return *security_; }

 private:
  void Verify(Call& call, StoredPassword& password);
  void Change(Call& call, StoredPassword& password);

  std::shared_ptr<Security> security_;
};

// Class 10 also serves the drives: list (selects 11, 28), whether the setup password is needed
// (12), verification (13, 30), change (14, 31); and the pre-boot users.
class SystemPasswordHandler : public PasswordHandler {
 public:
  SystemPasswordHandler(std::shared_ptr<Security> security, const Profile& profile);
  void Handle(Call& call) override;
  void Reboot() override;
  void Keep(Fields& fields) override;

 private:
  struct StoredDrive {
    Drive drive;
    StoredPassword password;
  };
  void ListDrives(Call& call) const;
  void TellWhetherAdminIsNeeded(Call& call);
  void VerifyDrive(Call& call);
  void ChangeDrive(Call& call);
  // The drive of argument 1, when it can be worked with. Completes the call otherwise.
  StoredDrive* FindDrive(Call& call);
  // Whether the setup password in argument `admin` is right, or none is installed, and `current` is
  // the drive's password. Completes the call otherwise.
  bool IsAllowed(Call& call, unsigned admin, StoredDrive& drive, std::string_view current);

  std::vector<StoredDrive> drives_;
  PreBootUsers users_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_PASSWORDS_H_
