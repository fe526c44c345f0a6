#ifndef MIRA_BUFFERS_PROMPT_INPUT_H_
#define MIRA_BUFFERS_PROMPT_INPUT_H_

// Why CBuffer::PromptInputBuffer built no record: an answer was missing, or no record can hold the
// answers.
//
//   std::unique_ptr<CBuffer> buffer(CreateBuffer(9, 5, mira.GetACPIBufSize()));
//   std::uint32_t size = 0;
//   if (!buffer->PromptInputBuffer(0, size, true) && mira::buffers::InputEnded()) ...

#include "platform/api.h"

namespace mira::buffers {

// Whether the last prompt of this process was left without an answer because standard input had
// ended. An answer whose line end is missing counts as an answer.
MIRA_API bool InputEnded() noexcept;

}  // namespace mira::buffers

#endif  // MIRA_BUFFERS_PROMPT_INPUT_H_
