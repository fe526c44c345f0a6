#include "buffers/data_read_buffer.h"

#include <iostream>

SMBiosCI* CDataReadBuffer::FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                           IBIOSData& data) {
  if (!HasArea(size)) return CBuffer::FillInputBuffer(securityKey, size, data);
  NewRead(size, dynamic_cast<CSimpleTokenData&>(data), securityKey, 1);
  return Sized(size);
}

SMBiosCI* CDataReadBuffer::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                             bool prompt) {
  std::uint32_t none = 0;
  const SMBiosCI* const typed = CBuffer::PromptInputBuffer(securityKey, none, prompt);
  if (typed == nullptr) return nullptr;
  CSimpleTokenData data;
  data.Arg1 = typed->cbArg1;
  data.Arg2 = typed->cbArg2;
  data.Arg3 = typed->cbArg3;
  data.Arg4 = typed->cbArg4;
  return FillInputBuffer(securityKey, size, data);
}

void CDataReadBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  const auto received = ReceivedData();
  auto* const result = dynamic_cast<CReceivedData*>(&data);
  if (result != nullptr) result->Data.assign(received.begin(), received.end());
}

void CDataReadBuffer::DisplayOutputBuffer() {
  CBuffer::DisplayOutputBuffer();
  if (DataArea().empty() || CompletionCode() != 0) return;
  std::cout << "Data :" << std::hex;
  for (const std::uint8_t byte : ReceivedData()) std::cout << ' ' << unsigned{byte};
  std::cout << std::dec << std::endl;
}
