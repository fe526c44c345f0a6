#ifndef MIRA_SIM_FIRMWARE_SKYPORT_H_
#define MIRA_SIM_FIRMWARE_SKYPORT_H_

#include <array>
#include <cstdint>

#include "sim/firmware/handler.h"

namespace mira::sim {

// Class 7 keeps a word for each of the selects 5 to 9: argument 2 is 0 to read it, 1 to put
// argument 3 in its place. The word that is then there is result 2, and where the call has an area,
// its first four bytes. Select 4 tells the number of words. The words are written with the next
// restart; a loss of power before it takes them away. All of this is the simulated firmware's own.
class SkyportHandler : public CommandHandler {
 public:
  void Handle(Call& call) override;
  void Keep(Fields& fields) override;

 private:
  std::array<std::uint32_t, 5> words_{};
  std::array<std::uint32_t, 5> written_{};
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_SKYPORT_H_
