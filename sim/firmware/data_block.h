#ifndef MIRA_SIM_FIRMWARE_DATA_BLOCK_H_
#define MIRA_SIM_FIRMWARE_DATA_BLOCK_H_

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "sim/boot_lists.h"
#include "sim/firmware/handler.h"
#include "sim/firmware/security.h"

namespace mira::sim {

// Blocks of data that a class keeps under names of four characters, in argument 2, the first one in
// the lowest byte. One select tells a block's size (result 2) and how many bytes it may have
// (result 3). The other moves it: argument 1 is the offset of the bytes, argument 3 how many of
// them to write; with 0 there the block is read. Argument 4 is the security key of a write.
class DataBlockHandler : public CommandHandler {
 public:
  // Takes those of the blocks that are of class `cls`.
  DataBlockHandler(std::uint16_t cls, std::uint16_t size_select, std::uint16_t data_select,
                   std::vector<DataBlock> blocks, std::shared_ptr<Security> security);
  void Handle(Call& call) override;
  void Keep(Fields& fields) override;

 private:
  void Write(Call& call, DataBlock& block);

  std::uint16_t cls_;
  std::uint16_t size_select_;
  std::uint16_t data_select_;
  std::vector<DataBlock> blocks_;
  std::shared_ptr<Security> security_;
};

// The name as argument 2 has it.
std::uint32_t BlockName(std::string_view name);

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_DATA_BLOCK_H_
