#ifndef MIRA_BUFFERS_UEFI_BOOT_BUFFER_H_
#define MIRA_BUFFERS_UEFI_BOOT_BUFFER_H_

#include <cstdint>
#include <optional>

#include "buffers/extended_buffer.h"
#include "buffers/uefi_boot_data.h"

// Boot order, class 3: select 9 reads the boot lists, 11 the load options and boot order of one
// list, 12 writes its boot order.
class CUEFIBootBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void ParseOutputBuffer(IBIOSData& data) override;
  void DisplayOutputBuffer() override;

 private:
  SMBiosCI* BuildWrite(std::uint32_t room, std::uint32_t securityKey, const CUEFILOList& request);
  void ReadLists(CUEFIBootList& result) const;
  void ReadOptions(CUEFILOList& result) const;
  void DisplayLists() const;
  void DisplayOptions() const;

  // Whether the list holds UEFI load options, where that was said with the request or the answer.
  std::optional<bool> m_oIsUEFI;
};

#endif  // MIRA_BUFFERS_UEFI_BOOT_BUFFER_H_
