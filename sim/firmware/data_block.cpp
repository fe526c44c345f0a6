#include "sim/firmware/data_block.h"

#include <algorithm>
#include <string>
#include <utility>

namespace mira::sim {

std::uint32_t BlockName(std::string_view name) {
  return static_cast<std::uint32_t>(bytes::LittleEndian(bytes::AsBytes(name.substr(0, 4))));
}

DataBlockHandler::DataBlockHandler(std::uint16_t cls, std::uint16_t size_select,
                                   std::uint16_t data_select, std::vector<DataBlock> blocks,
                                   std::shared_ptr<Security> security)
    : cls_(cls),
      size_select_(size_select),
      data_select_(data_select),
      blocks_(std::move(blocks)),
      security_(std::move(security)) {
  std::erase_if(blocks_, [cls](const DataBlock& block) { return block.cls != cls; });
}

void DataBlockHandler::Keep(Fields& fields) {
  fields.Group("dataBlocks" + std::to_string(cls_), [&] {
    for (DataBlock& block : blocks_) {
      fields(block.name, block.bytes);
      fields.Require(block.bytes.size() <= block.capacity, "a block is too long");
    }
  });
}

void DataBlockHandler::Handle(Call& call) {
  if (call.Select() != size_select_ && call.Select() != data_select_) {
    return call.Complete(kNotSupported);
  }
  const auto block = std::find_if(blocks_.begin(), blocks_.end(), [&](const DataBlock& b) {
    return BlockName(b.name) == call.Arg(2);
  });
  if (block == blocks_.end()) return call.Complete(kError);
  if (call.Select() == size_select_) {
    call.SetResult(2, static_cast<std::uint32_t>(block->bytes.size()));
    call.SetResult(3, static_cast<std::uint32_t>(block->capacity));
  } else if (call.Arg(3) == 0) {
    call.AnswerData(block->bytes, 1);
  } else {
    Write(call, *block);
  }
}

void DataBlockHandler::Write(Call& call, DataBlock& block) {
  if (!security_->Accepts(call.Arg(4))) return call.Complete(kInvalidKey);
  bytes::Reader in(call.Record(), call.Arg(1));
  const bytes::ByteSpan bytes = in.Take(call.Arg(3));
  if (!in.Ok() || !call.IsOffset(1)) return call.Complete(kBadFormat);
  if (bytes.size() > block.capacity) return call.Complete(kError);
  block.bytes.assign(bytes.begin(), bytes.end());
}

}  // namespace mira::sim
