#include "sim/firmware/skyport.h"

#include <vector>

#include "bytes/writer.h"
#include "sim/firmware/fields.h"

namespace mira::sim {

void SkyportHandler::Handle(Call& call) {
  constexpr std::uint16_t kCount = 4;
  constexpr std::uint16_t kFirst = 5;
  constexpr std::uint32_t kWrite = 1;
  if (call.Select() == kCount) return call.SetResult(2, static_cast<std::uint32_t>(words_.size()));
  if (call.Select() < kFirst || call.Select() >= kFirst + words_.size()) {
    return call.Complete(kNotSupported);
  }
  if (call.Arg(2) > kWrite) return call.Complete(kError);
  std::uint32_t& word = words_[call.Select() - kFirst];
  if (call.Arg(2) == kWrite) word = call.Arg(3);
  call.SetResult(2, word);
  if (!call.IsOffset(1)) return;
  std::vector<std::uint8_t> answer;
  bytes::Append(answer, word, sizeof(word));
  call.AnswerData(answer);
}

void SkyportHandler::Keep(Fields& fields) { fields.Late("skyport", words_, written_); }

}  // namespace mira::sim
