#ifndef MIRA_BUFFERS_BATTERY_INFO_SET_BUFFER_H_
#define MIRA_BUFFERS_BATTERY_INFO_SET_BUFFER_H_

#include <cstdint>

#include "buffers/battery_info_buffer.h"

// Class 8 select 19. The request is a record of the kind that the command writes
// (buffers/battery_data.h); for commands without a configuration, a BATTERY_INFO. The console form
// asks for command and battery alone and sends a configuration of zeros.
class CBatteryInfoSetBuffer : public CBatteryInfoBuffer {
 public:
  using CBatteryInfoBuffer::CBatteryInfoBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;

 private:
  bool Encode(const ADV_BATT_CONFIG& config);
  bool Encode(const PEAK_SHIFT_CONFIG& config);
};

#endif  // MIRA_BUFFERS_BATTERY_INFO_SET_BUFFER_H_
