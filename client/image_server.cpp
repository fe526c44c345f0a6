#include "client/image_server.h"

#include <cstdint>
#include <memory>

#include "buffers/buffer_factory.h"
#include "bytes/reader.h"
#include "bytes/writer.h"
#include "client/call.h"
#include "client/text_checks.h"

namespace mira::client {
namespace {

// Only the console form of the request has room for the text: instead of answering its prompt, this
// reads and writes the record.
class ImageServerCall {
 public:
  ImageServerCall(Session& session, std::uint16_t select)
      : session_(session),
        mira_(session.Ready()),
        command_{kClass, select},
        buffer_(CreateBuffer(kClass, select, mira_.GetACPIBufSize())) {
    std::uint32_t size = 0;
    record_ = buffer_ ? buffer_->PromptInputBuffer(0, size, false) : nullptr;
  }

  void SetText(const std::string& text) {
    bytes::Writer out(buffer_->Record(), kText);
    out.Text(text);
    if (!out.Ok()) RequireLength(text, 0, kImageServer);
  }
  std::string Text() const {
    bytes::Reader in(buffer_->Record(), kText);
    return std::string(in.FixedText(in.Left()));
  }

  void Send() {
    CCallingInterface* const calling = FindCallingInterface(mira_);
    if (record_ == nullptr || !IsAnnounced(mira_, kClass)) {
      throw ErrorOf(STATUS_NOT_SUPPORTED, kImageServer);
    }
    if (calling->Execute(*record_, mira_.GetACPIBufSize(), mira_.GetACPIInstanceName()) !=
        CCallingInterface::STATUS_SUCCESS) {
      throw CallError(session_, command_, STATUS_FAILURE, record_->cbRES1,
                      {.target = kImageServer});
    }
  }

 private:
  static constexpr std::uint16_t kClass = 11;
  static constexpr std::size_t kText = 48;  // offset in the record

  Session& session_;
  CMiraIntf& mira_;
  callif::Command command_;
  std::unique_ptr<CBuffer> buffer_;
  SMBiosCI* record_;
};

}  // namespace

std::string ReadImageServer(Session& session) {
  ImageServerCall call(session, 4);
  call.Send();
  return call.Text();
}

void WriteImageServer(Session& session, const std::string& text) {
  ImageServerCall call(session, 5);
  call.SetText(text);
  call.Send();
}

}  // namespace mira::client
