#include "callif/one_call.h"

#include "buffers/buffer_factory.h"
#include "transport/operation_log.h"

namespace mira::callif {

bool IsAnnounced(const Target& target, Command command) {
  transport::OperationLog& log = transport::OperationLog::Get();
  log.BeginCall(command.cls, command.select);
  log.Reach(Step::kCommandClass);
  const bool announced = target.calling.IsCommandSupported(command.cls);
  if (!announced) log.FailCall();
  return announced;
}

OneCall::OneCall(const Target& target, Command command, std::uint32_t key, std::uint32_t& size,
                 IBIOSData& data)
    : buffer_(CreateBuffer(command.cls, command.select, target.buffer_size)) {
  transport::OperationLog& log = transport::OperationLog::Get();
  log.BeginCall(command.cls, command.select);
  log.Reach(Step::kRequest);
  SMBiosCI* const record = buffer_ ? buffer_->FillInputBuffer(key, size, data) : nullptr;
  if (record == nullptr) {
    log.FailCall();
    return;
  }
  sent_ = true;
  const bool carried = target.calling.Execute(*record, target.buffer_size, target.instance_key) ==
                       CCallingInterface::STATUS_SUCCESS;
  if (key != 0) target.calling.ForgetLastCall(target.buffer_size);
  completion_ = record->cbRES1;
  succeeded_ = carried && completion_ == 0;
}

}  // namespace mira::callif
