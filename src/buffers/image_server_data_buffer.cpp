#include "buffers/image_server_data_buffer.h"

#include <iostream>
#include <limits>
#include <string>

#include "buffers/console_io.h"
#include "bytes/reader.h"
#include "bytes/writer.h"

namespace {

constexpr std::uint16_t kRead = 4;
constexpr std::uint16_t kWrite = 5;
constexpr std::uint32_t kAreaSize = 516;
constexpr std::size_t kLongestText = 511;  // with its NUL, it fills the area's data

}  // namespace

SMBiosCI* CImageServerDataBuffer::PromptInputBuffer(std::uint32_t, std::uint32_t& size,
                                                    bool prompt) {
  SMBiosCI* const record = NewRecord(kArea + kAreaSize);
  mira::transport::SetArgOffset(*record, 1, kArea);
  InitExtendedBuffer(DataArea());
  if (prompt && m_wSelect == kWrite) {
    std::string text;
    if (!mira::console_io::AskText("Enter the Image Sever Data : ", text,
                                   std::numeric_limits<std::size_t>::max())) {
      return nullptr;
    }
    mira::bytes::Writer out(Record(), kData);
    out.Text(text.substr(0, kLongestText));
    if (!out.Ok()) return nullptr;
  }
  return Sized(size);
}

void CImageServerDataBuffer::DisplayOutputBuffer() {
  if (!m_pCIBuffer || m_wSelect != kRead || CompletionCode() != 0) return;
  mira::bytes::Reader in(Record(), kData);
  std::cout << "Image Server Data : " << in.FixedText(in.Left()) << std::endl;
}
