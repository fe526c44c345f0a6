#include "callif/dispatch.h"

#include <algorithm>
#include <iterator>

#include "bytes/reader.h"
#include "callif/password.h"

namespace mira::callif {
namespace {

constexpr std::uint16_t kUncheckedClass = 64;
constexpr std::uint32_t kNoKeyObtained = 0xFFFFFFFF;

// Variable-length reads: a first call without key asks how many bytes there are.
constexpr Command kProbed[] = {{3, 9},   {3, 11},  {11, 8},  {17, 5},
                               {17, 16}, {17, 18}, {17, 22}, {17, 24}};

// Legacy boot priorities: a first call fetches what the request needs.
constexpr Command kLegacyBoot[] = {{3, 3}, {3, 4}};
constexpr Command kLegacyBootInfo = {3, 2};

template <std::size_t N>
bool Holds(const Command (&commands)[N], Command command) {
  return std::find(std::begin(commands), std::end(commands), command) != std::end(commands);
}

}  // namespace

Outcome Dispatch(const Target& target, std::uint16_t cls, std::uint16_t select, IBIOSData& data,
                 const std::string& password, bool class10) {
  if (cls != kUncheckedClass && !target.calling.IsCommandSupported(cls)) {
    return Outcome::kNotSupported;
  }
  std::uint32_t key = 0;
  if (!password.empty()) {
    CPwdContext context(target.calling, target.buffer_size, target.instance_key);
    key = context.GetSecurityKey(password, class10);
    if (key == kNoKeyObtained) return Outcome::kNoKey;
  }

  const Command command{cls, select};
  std::uint32_t size = 0;
  if (Holds(kProbed, command)) {
    OneCall probe(target, command, 0, size, data);
    if (probe.Sent()) {
      bytes::Reader answer(probe.Buffer().Record(), transport::kFixedRecordSize);
      size = answer.U32();
    }
  }
  if (Holds(kLegacyBoot, command)) {
    OneCall info(target, kLegacyBootInfo, 0, size, data);
    if (info.Succeeded()) info.Buffer().ParseOutputBuffer(data);
  }

  OneCall call(target, command, key, size, data);
  if (!call.Sent()) return Outcome::kNotSupported;
  if (call.Succeeded() || cls == kUncheckedClass) {
    call.Buffer().ParseOutputBuffer(data);
    return Outcome::kDone;
  }
  // A failed call leaves the request's own fields alone: only the four result words move.
  call.Buffer().CBuffer::ParseOutputBuffer(data);
  return Outcome::kFailed;
}

}  // namespace mira::callif
