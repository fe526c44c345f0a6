#ifndef MIRA_PLDM_ACI_INFO2_BUFFER_H_
#define MIRA_PLDM_ACI_INFO2_BUFFER_H_

#include <cstdint>

#include "buffers/extended_buffer.h"
#include "pldm/aci_info2_record.h"

// Class 5: BIOS attributes. Select 3 reads the directory of the tables, 4 a table or a chunk of it,
// 5 the current value of an attribute, 6 writes one. The request is a CACIInfo2Record.
class CACIInfo2Buffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;
  // Null when the record has no descriptor for select 4, or no value for 5 and 6 (or none that fits
  // into a request).
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  // Asks nothing: builds the record of select 3, and none for the others.
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void ParseOutputBuffer(IBIOSData& data) override;
  // Shows the directory that select 3 has read.
  void DisplayOutputBuffer() override;

 private:
  enum Select : std::uint16_t { kReadHeader = 3, kReadTable = 4, kReadValue = 5, kWriteValue = 6 };

  SMBiosCI* NewTableRead(std::uint32_t size);
  SMBiosCI* NewValueRead(std::uint32_t size, const CACIInfo2Record& data);
  SMBiosCI* NewValueWrite(std::uint32_t size, const CACIInfo2Record& data,
                          std::uint32_t securityKey);
  // The block that heads the request of selects 5 and 6. `value_size` is stated in it.
  SMBiosCI* NewValueRecord(std::uint64_t length, std::uint16_t handle, std::uint32_t block_size,
                           std::size_t value_size);
  bool Seal(std::size_t block_size);

  void ParseTable(CACIInfo2Record& data);
  void AppendChunk(CACIInfo2Record& data);
  void ParseValue(CACIInfo2Record& data) const;
};

#endif  // MIRA_PLDM_ACI_INFO2_BUFFER_H_
