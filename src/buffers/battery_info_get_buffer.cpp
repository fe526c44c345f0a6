#include "buffers/battery_info_get_buffer.h"

#include <iostream>

#include "bytes/reader.h"

namespace {

bool HasConfig(std::uint8_t command) {
  return command == BATTERY_GET_ADVANCED || command == BATTERY_GET_ADVANCED_3 ||
         command == BATTERY_GET_PEAK_SHIFT;
}

std::uint8_t ByteOf(std::uint32_t word, unsigned index) {
  return static_cast<std::uint8_t>(word >> (8 * index));
}

// Days that the answer lacks are 0, as days without times are.
template <typename Config>
void ReadSchedule(mira::bytes::ByteSpan area, Config& config) {
  auto in = mira::bytes::Reader::Lenient(area);
  config.Version = in.U32();
  for (std::uint32_t& day : config.DaySchedule) day = in.U32();
}

template <typename Config>
void ShowDays(const Config& config) {
  for (std::size_t i = 0; i < config.DaySchedule.size(); ++i) {
    const char* const day = mira::battery::kDays[i];
    const std::uint32_t word = config.DaySchedule[i];
    std::cout << day << " : " << mira::battery::DayText(word) << std::endl
              << day << " (raw) : " << word << std::endl;
  }
}

void Show(const ADV_BATT_CONFIG& config) {
  std::cout << "Version : " << mira::battery::VersionText(config.Version) << std::endl
            << "Current Charging Mode : " << unsigned{config.ChargingMode} << std::endl
            << "Start Charging Limit : " << unsigned{config.StartChargingLimit} << "%" << std::endl
            << "Stop Charging Limit : " << unsigned{config.StopChargingLimit} << "%" << std::endl;
  ShowDays(config);
}

void Show(const PEAK_SHIFT_CONFIG& config) {
  std::cout << "Version : " << mira::battery::VersionText(config.Version) << std::endl
            << "Peak Shift setting is " << (config.Enabled ? "Enabled" : "Disabled") << std::endl
            << "Peak Shift Current Threshold : " << unsigned{config.CurrentThreshold} << "%"
            << std::endl
            << "Peak Shift Minimum Threshold : " << unsigned{config.MinimumThreshold} << std::endl
            << "Peak Shift Maximum Threshold : " << unsigned{config.MaximumThreshold} << std::endl;
  ShowDays(config);
}

}  // namespace

SMBiosCI* CBatteryInfoGetBuffer::FillInputBuffer(std::uint32_t, std::uint32_t& size,
                                                 IBIOSData& data) {
  const BATTERY_INFO& request = dynamic_cast<BATTERY_INFO&>(data);
  if (HasConfig(CommandOf(request))) {
    NewBatteryRecord(kArea + kConfigArea, request);
    AddConfigArea(2);
  } else {
    NewBatteryRecord(kData, request);
  }
  return Sized(size);
}

SMBiosCI* CBatteryInfoGetBuffer::PromptInputBuffer(std::uint32_t securityKey, std::uint32_t& size,
                                                   bool prompt) {
  BATTERY_INFO data;
  if (prompt && !Ask(data.Command, data.BatteryNumber)) return nullptr;
  return FillInputBuffer(securityKey, size, data);
}

void CBatteryInfoGetBuffer::ParseOutputBuffer(IBIOSData& data) {
  CBuffer::ParseOutputBuffer(data);
  if (m_wSelect != kRead || !m_pCIBuffer) return;
  switch (CommandOf(dynamic_cast<BATTERY_INFO&>(data))) {
    case BATTERY_GET_ADVANCED:
    case BATTERY_GET_ADVANCED_3:
      return Decode(dynamic_cast<ADV_BATT_CONFIG&>(data));
    case BATTERY_GET_PEAK_SHIFT:
      return Decode(dynamic_cast<PEAK_SHIFT_CONFIG&>(data));
    default:
      return;
  }
}

void CBatteryInfoGetBuffer::Decode(ADV_BATT_CONFIG& config) const {
  const std::uint32_t word = m_pCIBuffer->cbRES2;
  config.ChargingMode = ByteOf(word, 0);
  config.StartChargingLimit = ByteOf(word, 1);
  config.StopChargingLimit = ByteOf(word, 2);
  ReadSchedule(mira::bytes::Slice(Record(), kData), config);
}

void CBatteryInfoGetBuffer::Decode(PEAK_SHIFT_CONFIG& config) const {
  const std::uint32_t word = m_pCIBuffer->cbRES2;
  config.Enabled = ByteOf(word, 0) == 1;
  config.CurrentThreshold = ByteOf(word, 1);
  config.MinimumThreshold = ByteOf(word, 2);
  config.MaximumThreshold = ByteOf(word, 3);
  ReadSchedule(mira::bytes::Slice(Record(), kData), config);
}

void CBatteryInfoGetBuffer::DisplayOutputBuffer() {
  CBuffer::DisplayOutputBuffer();
  if (!m_pCIBuffer || m_wSelect != kRead || CompletionCode() != 0) return;
  // Command 3 shows nothing more, on purpose.
  const std::uint8_t command = ByteOf(m_pCIBuffer->cbArg1, 0);
  if (command == BATTERY_GET_ADVANCED) {
    ADV_BATT_CONFIG config;
    Decode(config);
    Show(config);
  } else if (command == BATTERY_GET_PEAK_SHIFT) {
    PEAK_SHIFT_CONFIG config;
    Decode(config);
    Show(config);
  }
}
