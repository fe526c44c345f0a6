#include "callif/dispatch.h"

#include "buffers/buffer_factory.h"
#include "bytes/reader.h"
#include "callif/password.h"
#include "transport/operation_log.h"

namespace mira::callif {
namespace {

constexpr Command kLegacyBootInfo = {3, 2};

}  // namespace

DispatchResult Dispatch(const Target& target, std::uint16_t cls, std::uint16_t select,
                        IBIOSData& data, const std::string& password, bool class10) {
  if (cls != kUncheckedClass && !IsAnnounced(target, {cls, select})) {
    return DispatchResult::kNotSupported;
  }
  std::uint32_t key = 0;
  if (!password.empty()) {
    CPwdContext context(target.calling, target.buffer_size, target.instance_key);
    key = context.GetSecurityKey(password, class10);
    if (key == CPwdContext::kNoKey) {
      transport::OperationLog::Get().FailWithCall(Step::kSecurityKey);
      return DispatchResult::kNoKey;
    }
  }

  const Command command{cls, select};
  std::uint32_t size = 0;
  const auto preparation = TraitsOf(cls, select).preparation;
  if (preparation == CommandTraits::kProbe) {
    OneCall probe(target, command, 0, size, data);
    if (probe.Sent()) {
      // A record without a data area needs no room.
      size = bytes::Reader::Lenient(probe.Buffer().Record(), transport::kFixedRecordSize).U32();
    }
  }
  if (preparation == CommandTraits::kLegacyBootInfo) {
    OneCall info(target, kLegacyBootInfo, 0, size, data);
    if (info.Succeeded()) info.Buffer().ParseOutputBuffer(data);
  }

  OneCall call(target, command, key, size, data);
  if (!call.Sent()) return DispatchResult::kNotSupported;
  if (call.Succeeded() || cls == kUncheckedClass) {
    call.Buffer().ParseOutputBuffer(data);
    return DispatchResult::kDone;
  }
  // A failed call leaves the request's own fields alone: only the four result words move.
  call.Buffer().CBuffer::ParseOutputBuffer(data);
  return DispatchResult::kFailed;
}

}  // namespace mira::callif
