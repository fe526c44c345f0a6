#ifndef MIRA_SIM_FIRMWARE_BOOT_H_
#define MIRA_SIM_FIRMWARE_BOOT_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "sim/boot_lists.h"
#include "sim/firmware/fields.h"
#include "sim/firmware/handler.h"
#include "sim/firmware/security.h"
#include "sim/profile.h"

namespace mira::sim {

// Class 3: what the machine boots from. A change is stored at once, read back by the commands below
// and followed by the machine from its next start on. Argument 3 is the security key of a change.
//
// Selects 7, 8, 10 and 13 are the simulated firmware's own.
//
//   0  tell the list that the next start uses (result 2) and the one in use (result 3)
//   1  choose the list of argument 1
//   2  tell the legacy tables' sizes: the most devices (result 2), bytes of an entry (result 3),
//      devices present (result 4)
//   3  read the legacy tables: IPL priority, device table, BCV priority in the areas of arguments
//      1 to 3
//   5  write the legacy priorities: IPL from the offset in argument 1, BCV from the one in 2
//   7  for the next start only, boot option `argument 2` of list `argument 1`
//   8  tell what was so chosen: list (result 2) and option (result 3)
//   9  read the lists: count, their numbers, their names
//  10  tell what is tried first of list `argument 1` by the order in force (result 2), and how many
//      options the list has (result 3)
//  11  read list `argument 1`: count, order, options, in the area of argument 2
//  12  write the order of list `argument 1`: the option numbers from the offset in argument 2 on
//  13  give list `argument 1` the order back that it was delivered with
class BootHandler : public CommandHandler {
 public:
  BootHandler(std::shared_ptr<Security> security, const Profile& profile);
  void Handle(Call& call) override;
  void Reboot() override;
  void Keep(Fields& fields) override;

 private:
  struct List {
    BootList stored;
    std::vector<std::uint16_t> delivered;
    std::vector<std::uint16_t> in_force;
  };
  struct NextStart {
    std::uint8_t list;
    std::uint16_t option;
    void Keep(Fields& fields) { fields("list", list)("option", option); }
  };
  struct Command;

  void TellChosenList(Call& call);
  void ChooseList(Call& call);
  void TellLegacySizes(Call& call);
  void ReadLegacy(Call& call);
  void WriteLegacy(Call& call);
  void ChooseNextStart(Call& call);
  void TellNextStart(Call& call);
  void ReadLists(Call& call);
  void TellFirst(Call& call);
  void ReadOptions(Call& call);
  void WriteOrder(Call& call);
  void RestoreOrder(Call& call);
  // The list of argument 1. Completes the call when there is none.
  List* FindList(Call& call);

  std::shared_ptr<Security> security_;
  std::vector<List> lists_;
  LegacyBoot legacy_;
  std::uint8_t chosen_;
  std::uint8_t in_use_;
  std::optional<NextStart> next_start_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_BOOT_H_
