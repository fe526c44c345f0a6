#ifndef MIRA_BUFFERS_BATTERY_INFO_GET_BUFFER_H_
#define MIRA_BUFFERS_BATTERY_INFO_GET_BUFFER_H_

#include <cstdint>

#include "buffers/battery_data.h"
#include "buffers/extended_buffer.h"

// What reading and writing a battery's configuration have in common.
class CBatteryInfoBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;

 protected:
  static constexpr std::uint32_t kConfigArea = 36;  // a length, then version and seven days

  // A record whose first argument names command and battery.
  SMBiosCI* NewBatteryRecord(std::uint32_t length, const BATTERY_INFO& data);
  // Names the area by an argument and prepares it.
  void AddConfigArea(unsigned argument);
  // Asks for command and battery.
  static bool Ask(BATTERY_INFO& data);
  static bool Ask(std::uint16_t& command, std::uint16_t& battery);
};

// Class 8 select 18. The request is a record of the kind that the command asks for
// (buffers/battery_data.h).
class CBatteryInfoGetBuffer : public CBatteryInfoBuffer {
 public:
  using CBatteryInfoBuffer::CBatteryInfoBuffer;
  SMBiosCI* FillInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                            IBIOSData& data) override;
  SMBiosCI* PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size, bool prompt) override;
  void ParseOutputBuffer(IBIOSData& data) override;
  void DisplayOutputBuffer() override;

 private:
  void Decode(ADV_BATT_CONFIG& config) const;
  void Decode(PEAK_SHIFT_CONFIG& config) const;
  template <typename Config>
  void ReadSchedule(Config& config) const;
};

#endif  // MIRA_BUFFERS_BATTERY_INFO_GET_BUFFER_H_
