#include "buffers/aux_mac_buffer.h"

#include <algorithm>
#include <string_view>

#include "bytes/reader.h"
#include "bytes/writer.h"

namespace {

constexpr std::uint16_t kRead = 6;

}  // namespace

CMACAddr::~CMACAddr() = default;

SMBiosCI* CAuxMACBuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                         IBIOSData& data) {
  const CMACAddr& request = dynamic_cast<CMACAddr&>(data);
  constexpr std::uint32_t kTextSize = std::tuple_size_v<decltype(request.MAC)> + 1;
  SMBiosCI* const record = NewRecord(std::uint64_t{size} + kData + kTextSize, request, securityKey);
  if (record == nullptr) return nullptr;
  mira::transport::SetArgOffset(*record, 1, kArea);
  if (m_wSelect == kRead) {
    InitExtendedBuffer(DataArea());
  } else {
    mira::bytes::Writer out(Record(), kArea);
    out.U32(kTextSize);
    out.Text(std::string_view(request.MAC.data(), request.MAC.size()));
    if (!out.Ok()) return nullptr;
  }
  return Sized(size);
}

void CAuxMACBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  if (m_wSelect != kRead) return;
  CMACAddr& result = dynamic_cast<CMACAddr&>(data);
  const auto text = mira::bytes::Slice(Record(), kData, result.MAC.size());
  std::copy(text.begin(), text.end(), result.MAC.begin());
}
