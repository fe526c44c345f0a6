#ifndef MIRA_CALLIF_ONE_CALL_H_
#define MIRA_CALLIF_ONE_CALL_H_

// One call of one command: its buffer, the record built from the request, and whether it was
// carried and answered 0.
//
//   OneCall call(target, {5, 3}, 0, size, request);
//   if (call.Succeeded()) call.Buffer().ParseOutputBuffer(request);

#include <cstdint>
#include <memory>

#include "buffers/buffer.h"
#include "callif/calling_interface.h"
#include "callif/commands.h"
#include "platform/com_ptr.h"

namespace mira::callif {

// Where calls go.
struct Target {
  CCallingInterface& calling;
  std::uint32_t buffer_size;     // of the firmware's transfer buffer, in bytes
  const CComBSTR& instance_key;  // of the WMI instance
};

// Whether the firmware announces the command's class. Throws std::out_of_range for a class bitmap
// that cannot be read.
bool IsAnnounced(const Target& target, Command command);

class OneCall {
 public:
  // Makes the call. `size` as in CBuffer::FillInputBuffer.
  OneCall(const Target& target, Command command, std::uint32_t key, std::uint32_t& size,
          IBIOSData& data);

  // False when the command has no buffer or the request gave no record: then nothing was called.
  bool Sent() const { return sent_; }
  bool Succeeded() const { return succeeded_; }
  // What the call ended with; 0 when nothing was called.
  std::int32_t CompletionCode() const { return completion_; }
  // Only of a call that was sent.
  CBuffer& Buffer() { return *buffer_; }

 private:
  std::unique_ptr<CBuffer> buffer_;
  bool sent_ = false;
  bool succeeded_ = false;
  std::int32_t completion_ = 0;
};

}  // namespace mira::callif

#endif  // MIRA_CALLIF_ONE_CALL_H_
