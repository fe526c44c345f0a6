#include "buffers/battery_info_set_buffer.h"

#include "bytes/writer.h"

namespace {

std::uint32_t Word(std::uint8_t byte0, std::uint8_t byte1, std::uint8_t byte2,
                   std::uint8_t byte3 = 0) {
  return std::uint32_t{byte0} | std::uint32_t{byte1} << 8 | std::uint32_t{byte2} << 16 |
         std::uint32_t{byte3} << 24;
}

// False when the area is too short.
template <typename Config>
bool WriteSchedule(mira::bytes::MutableByteSpan area, const Config& config) {
  mira::bytes::Writer out(area);
  out.U32(config.Version);
  for (const std::uint32_t day : config.DaySchedule) out.U32(day);
  return out.Ok();
}

}  // namespace

SMBiosCI* CBatteryInfoSetBuffer::FillInputBuffer(std::uint32_t, std::uint32_t& size,
                                                 IBIOSData& data) {
  const BATTERY_INFO& request = dynamic_cast<BATTERY_INFO&>(data);
  NewBatteryRecord(kArea + kConfigArea, request);
  AddConfigArea(3);
  bool encoded = true;
  if (CommandOf(request) == BATTERY_SET_ADVANCED) {
    encoded = Encode(dynamic_cast<ADV_BATT_CONFIG&>(data));
  } else if (CommandOf(request) == BATTERY_SET_PEAK_SHIFT) {
    encoded = Encode(dynamic_cast<PEAK_SHIFT_CONFIG&>(data));
  }
  return encoded ? Sized(size) : nullptr;
}

bool CBatteryInfoSetBuffer::Encode(const ADV_BATT_CONFIG& config) {
  m_pCIBuffer->cbArg2 =
      Word(config.ChargingMode, config.StartChargingLimit, config.StopChargingLimit);
  return WriteSchedule(Record().subspan(kData), config);
}

bool CBatteryInfoSetBuffer::Encode(const PEAK_SHIFT_CONFIG& config) {
  m_pCIBuffer->cbArg2 = Word(config.Enabled ? 1 : 0, config.CurrentThreshold,
                             config.MinimumThreshold, config.MaximumThreshold);
  return WriteSchedule(Record().subspan(kData), config);
}

SMBiosCI* CBatteryInfoSetBuffer::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                                   bool prompt) {
  std::uint16_t command = 0;
  std::uint16_t battery = 0;
  if (prompt && !Ask(command, battery)) return nullptr;
  ADV_BATT_CONFIG advanced;
  PEAK_SHIFT_CONFIG peak_shift;
  const bool is_peak_shift = static_cast<std::uint8_t>(command) == BATTERY_SET_PEAK_SHIFT;
  BATTERY_INFO& data = is_peak_shift ? static_cast<BATTERY_INFO&>(peak_shift) : advanced;
  data.Command = command;
  data.BatteryNumber = battery;
  return FillInputBuffer(securityKey, size, data);
}
