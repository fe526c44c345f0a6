#ifndef MIRA_SIM_FIRMWARE_BATTERIES_H_
#define MIRA_SIM_FIRMWARE_BATTERIES_H_

#include <utility>
#include <vector>

#include "sim/firmware/handler.h"
#include "sim/profile.h"

namespace mira::sim {

// Class 8: select 18 reads a battery's configuration, 19 writes it. Byte 0 of argument 1 is the
// command, byte 1 the battery's number.
class BatteryHandler : public CommandHandler {
 public:
  explicit BatteryHandler(std::vector<Battery> batteries) : batteries_(std::move(batteries)) {}
  void Handle(Call& call) override;
  void Keep(Fields& fields) override;

 private:
  static void Read(Call& call, const Battery& battery);
  static void Write(Call& call, Battery& battery);

  std::vector<Battery> batteries_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_BATTERIES_H_
