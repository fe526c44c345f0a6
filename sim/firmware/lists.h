#ifndef MIRA_SIM_FIRMWARE_LISTS_H_
#define MIRA_SIM_FIRMWARE_LISTS_H_

#include <vector>

#include "sim/firmware/handler.h"
#include "sim/profile.h"

namespace mira::sim {

// Class 17: lists of any length: battery life (select 5), messages (16), tablet scan codes (18),
// thermal sensors (22), log (24). Select 14 marks the message of number argument 1 as seen, which
// is written with the next restart. An area without enough room is told how much is needed. The
// layouts of all these lists are the simulated firmware's own.
class ListHandler : public CommandHandler {
 public:
  explicit ListHandler(const Profile& profile);
  void Handle(Call& call) override;
  void Keep(Fields& fields) override;

 private:
  void MarkAsSeen(Call& call);

  std::vector<Battery> batteries_;
  struct Message : FirmwareMessage {
    bool seen_is_written = seen;
  };

  std::vector<Message> messages_;
  std::vector<TabletButton> buttons_;
  std::vector<ThermalSensor> sensors_;
  std::vector<LogEntry> log_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_LISTS_H_
