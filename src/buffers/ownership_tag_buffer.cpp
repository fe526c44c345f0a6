#include "buffers/ownership_tag_buffer.h"

#include <string>
#include <string_view>

#include "bytes/reader.h"
#include "bytes/writer.h"

namespace {

constexpr std::uint16_t kRead = 0;
constexpr std::uint16_t kWrite = 1;
constexpr std::uint32_t kAreaSize = 85;
constexpr std::size_t kLongestTag = 80;

}  // namespace

SMBiosCI* COwnershipTagBuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                               IBIOSData& data) {
  const CTagData& request = dynamic_cast<CTagData&>(data);
  SMBiosCI* const record = NewKeyedRecord(kArea + kAreaSize, request, securityKey, 2);
  mira::transport::SetArgOffset(*record, 1, kArea);
  if (m_wSelect == kRead) {
    InitExtendedBuffer(DataArea());
  } else if (m_wSelect == kWrite) {
    // The text begins at the area's start, without a length, padded with blanks up to the last
    // byte, which ends it.
    std::string text = request.Tag.substr(0, kLongestTag);
    text.resize(kAreaSize - 1, ' ');
    mira::bytes::Writer out(Record(), kArea);
    out.Text(text);
    if (!out.Ok()) return nullptr;
  }
  return Sized(size);
}

void COwnershipTagBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  if (m_wSelect != kRead) return;
  std::string_view text = mira::bytes::AsText(ReceivedData());
  text = text.substr(0, text.find('\0'));
  text = text.substr(0, text.find_last_not_of(' ') + 1);
  dynamic_cast<CTagData&>(data).Tag += text;
}
