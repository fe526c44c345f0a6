#ifndef MIRA_BUFFERS_BATTERY_INFO_BUFFER_H_
#define MIRA_BUFFERS_BATTERY_INFO_BUFFER_H_

#include <cstdint>

#include "buffers/battery_data.h"
#include "buffers/extended_buffer.h"

// What reading and writing a battery's configuration have in common.
class CBatteryInfoBuffer : public CExtendedBuffer {
 public:
  using CExtendedBuffer::CExtendedBuffer;

 protected:
  static constexpr std::uint32_t kConfigArea = 36;  // a length, then version and seven days

  // The command in the form in which the record carries it.
  static std::uint8_t CommandOf(const BATTERY_INFO& data) {
    return static_cast<std::uint8_t>(data.Command);
  }
  // A record whose first argument names command and battery.
  SMBiosCI* NewBatteryRecord(std::uint32_t length, const BATTERY_INFO& data);
  // Names the area by an argument and prepares it.
  void AddConfigArea(unsigned argument);
  // Asks for command and battery.
  static bool Ask(std::uint16_t& command, std::uint16_t& battery);
};

#endif  // MIRA_BUFFERS_BATTERY_INFO_BUFFER_H_
