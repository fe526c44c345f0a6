#include "buffers/battery_info_buffer.h"

#include "buffers/console_io.h"

SMBiosCI* CBatteryInfoBuffer::NewBatteryRecord(std::uint32_t length, const BATTERY_INFO& data) {
  SMBiosCI* const record = NewRecord(length);
  record->cbArg1 = std::uint32_t{CommandOf(data)} | (std::uint32_t{data.BatteryNumber} & 0xFF) << 8;
  return record;
}

void CBatteryInfoBuffer::AddConfigArea(unsigned argument) {
  mira::transport::SetArgOffset(*m_pCIBuffer, argument, kArea);
  InitExtendedBuffer(DataArea());
}

bool CBatteryInfoBuffer::Ask(std::uint16_t& command, std::uint16_t& battery) {
  constexpr std::uint32_t kLargest = 0xFFFF;
  std::uint32_t typed_command = 0;
  std::uint32_t typed_battery = 0;
  if (!mira::console_io::AskNumber("Enter the Battery Command (cbArg1, byte 0) : ", typed_command,
                                   0, kLargest) ||
      !mira::console_io::AskNumber("Enter the Battery Number (see Table Type 22) : ", typed_battery,
                                   0, kLargest)) {
    return false;
  }
  command = static_cast<std::uint16_t>(typed_command);
  battery = static_cast<std::uint16_t>(typed_battery);
  return true;
}
