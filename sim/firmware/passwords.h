#ifndef MIRA_SIM_FIRMWARE_PASSWORDS_H_
#define MIRA_SIM_FIRMWARE_PASSWORDS_H_

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "sim/firmware/handler.h"
#include "sim/firmware/security.h"

namespace mira::sim {

// Classes 9, 10 and 12: password status (select 3), verification (4), change (5).
class PasswordHandler : public CommandHandler {
 public:
  explicit PasswordHandler(std::shared_ptr<Security> security) : security_(std::move(security)) {}
  void Handle(Call& call) override;

 protected:
  Security& security() const { return *security_; }

 private:
  void Verify(Call& call, StoredPassword& password);
  void Change(Call& call, StoredPassword& password);

  std::shared_ptr<Security> security_;
};

// Class 10 also serves the drives: list (selects 11, 28), whether the setup password is needed
// (12), verification (13, 30), change (14, 31).
class SystemPasswordHandler : public PasswordHandler {
 public:
  SystemPasswordHandler(std::shared_ptr<Security> security, std::vector<Drive> drives)
      : PasswordHandler(std::move(security)), drives_(std::move(drives)) {}
  void Handle(Call& call) override;
  void Reboot() override { security().Reboot(); }

 private:
  void ListDrives(Call& call) const;
  void VerifyDrive(Call& call);
  void ChangeDrive(Call& call);
  // The drive of argument 1, when it is there and the setup password in argument `admin`, if any,
  // is right. Completes the call otherwise.
  Drive* FindDrive(Call& call, unsigned admin);

  std::vector<Drive> drives_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_PASSWORDS_H_
