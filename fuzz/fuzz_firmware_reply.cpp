// Any bytes as the firmware's reply to each command that the library encodes.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <vector>

#include "buffers/aux_mac_buffer.h"
#include "buffers/battery_data.h"
#include "buffers/eppid_buffer.h"
#include "buffers/hdd_pwd_buffer.h"
#include "buffers/received_data.h"
#include "buffers/tag_data.h"
#include "facade/mira_intf.h"
#include "sim/machine.h"

namespace {

template <typename Request>
std::unique_ptr<IBIOSData> Make() {
  return std::make_unique<Request>();
}

std::unique_ptr<IBIOSData> MakeDrive() {
  auto request = std::make_unique<CHDDPwd>();
  request->Password = "secret";
  return request;
}

std::unique_ptr<IBIOSData> MakePeakShift() {
  auto request = std::make_unique<PEAK_SHIFT_CONFIG>();
  request->Command = BATTERY_GET_PEAK_SHIFT;
  return request;
}

struct Command {
  std::uint16_t cls;
  std::uint16_t select;
  std::unique_ptr<IBIOSData> (*make)();
};
constexpr Command kCommands[] = {
    {0, 0, Make<CSimpleTokenData>},
    {10, 11, MakeDrive},
    {10, 28, MakeDrive},
    {10, 13, MakeDrive},
    {10, 14, MakeDrive},
    {11, 0, Make<CTagData>},
    {11, 6, Make<CMACAddr>},
    {11, 8, Make<CTagData>},
    {20, 0, Make<CTagData>},
    {21, 1, Make<CEPPID>},
    {26, 1, Make<CThinClientInfo>},
    {8, 18, Make<ADV_BATT_CONFIG>},
    {8, 18, MakePeakShift},
    {17, 5, Make<CExtBatteryLife>},
    {17, 16, Make<CFirmwareMessages>},
    {17, 18, Make<CTabletScanCodes>},
    {17, 22, Make<CThermalSensors>},
    {17, 24, Make<CLogEntries>},
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::cout.setstate(std::ios::failbit);  // diagnostics of types are not looked at
  if (size < 1) return 0;
  const Command& command = kCommands[data[0] % std::size(kCommands)];
  const std::vector<std::uint8_t> bytes(data + 1, data + size);

  mira::sim::Machine machine;
  machine.GetFaults().Add({.operation = "firmware", .nth = 0, .corrupt = [&](auto& reply) {
                             reply.assign(bytes.begin(), bytes.end());
                             reply.resize(std::max<std::size_t>(reply.size(), 4096));
                           }});
  const mira::sim::Session session(machine);
  std::ostringstream diagnostics;
  CMiraIntf mira(diagnostics);
  mira.Init(true, true, true);
  PLDM::Enumeration attribute;
  attribute.Handle = 1;
  mira.GetAttributeValue(attribute);
  mira.GetAttributeValueAtBoot(attribute);
  mira.SetAttributeValue(attribute, "", PwdInfo::PWD_NONE, 1);
  const std::unique_ptr<IBIOSData> request = command.make();
  mira.ExecuteDACI(command.cls, command.select, *request, "", PwdInfo::PWD_NONE);
  PwdInfo info;
  mira.GetPwdInfo(info);
  mira.ValidatePwd("secret", PwdInfo::PWD_CLASS10);
  return 0;
}
