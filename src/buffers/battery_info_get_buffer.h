#ifndef MIRA_BUFFERS_BATTERY_INFO_GET_BUFFER_H_
#define MIRA_BUFFERS_BATTERY_INFO_GET_BUFFER_H_

#include <cstdint>

#include "buffers/battery_info_buffer.h"

// Class 8 select 18. The request is a record of the kind that the command asks for
// (buffers/battery_data.h); for commands without a configuration, a BATTERY_INFO.
class CBatteryInfoGetBuffer : public CBatteryInfoBuffer {
 public:
  using CBatteryInfoBuffer::CBatteryInfoBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void ParseOutputBuffer(IBIOSData& data) override;
  void DisplayOutputBuffer() override;

 private:
  static constexpr std::uint16_t kRead = 18;

  void Decode(ADV_BATT_CONFIG& config) const;
  void Decode(PEAK_SHIFT_CONFIG& config) const;
};

#endif  // MIRA_BUFFERS_BATTERY_INFO_GET_BUFFER_H_
