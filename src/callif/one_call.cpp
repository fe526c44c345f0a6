#include "callif/one_call.h"

#include "buffers/buffer_factory.h"

namespace mira::callif {

OneCall::OneCall(const Target& target, Command command, std::uint32_t key, std::uint32_t& size,
                 IBIOSData& data)
    : buffer_(CreateBuffer(command.cls, command.select, target.buffer_size)) {
  SMBiosCI* const record = buffer_ ? buffer_->FillInputBuffer(key, size, data) : nullptr;
  if (record == nullptr) return;
  sent_ = true;
  const bool carried = target.calling.Execute(*record, target.buffer_size, target.instance_key) ==
                       CCallingInterface::STATUS_SUCCESS;
  completion_ = record->cbRES1;
  succeeded_ = carried && completion_ == 0;
}

}  // namespace mira::callif
