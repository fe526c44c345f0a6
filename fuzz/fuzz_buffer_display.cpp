// Any bytes as the answer that a command's buffer shows: the first two choose the command.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "buffers/buffer_factory.h"
#include "bytes/reader.h"
#include "fuzz/support/discard.h"
#include "fuzz/support/prompted_commands.h"

namespace {

constexpr std::uint32_t kTransferSize = 4096;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const mira::fuzz::SilentStreams silent;
  static const auto kCommands = mira::fuzz::PromptedCommands(kTransferSize);
  auto in = mira::bytes::Reader::Lenient({data, size});
  const auto [cls, select] = kCommands[in.U16() % kCommands.size()];
  const std::unique_ptr<CBuffer> buffer(CreateBuffer(cls, select, kTransferSize));
  std::uint32_t record_size = kTransferSize - 256;
  if (buffer->PromptInputBuffer(0, record_size, false) == nullptr) return 0;
  const auto record = buffer->Record();
  const auto answer = in.Rest();
  std::copy_n(answer.begin(), std::min(answer.size(), record.size()), record.begin());
  buffer->DisplayReturnCode();
  buffer->DisplayOutputBuffer();
  return 0;
}
