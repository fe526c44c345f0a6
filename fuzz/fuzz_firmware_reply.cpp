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
#include "fuzz/support/rows.h"
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

// In the order of kReplyCommands.
constexpr std::unique_ptr<IBIOSData> (*kMakers[])() = {Make<CSimpleTokenData>,
                                                       MakeDrive,
                                                       MakeDrive,
                                                       MakeDrive,
                                                       MakeDrive,
                                                       Make<CTagData>,
                                                       Make<CMACAddr>,
                                                       Make<CTagData>,
                                                       Make<CTagData>,
                                                       Make<CEPPID>,
                                                       Make<CThinClientInfo>,
                                                       Make<ADV_BATT_CONFIG>,
                                                       MakePeakShift,
                                                       Make<CExtBatteryLife>,
                                                       Make<CFirmwareMessages>,
                                                       Make<CTabletScanCodes>,
                                                       Make<CThermalSensors>,
                                                       Make<CLogEntries>};
static_assert(std::size(kMakers) == std::size(mira::fuzz::kReplyCommands));

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::cout.setstate(std::ios::failbit);  // diagnostics of types are not looked at
  if (size < 1) return 0;
  const std::size_t row = data[0] % std::size(kMakers);
  const auto [cls, select] = mira::fuzz::kReplyCommands[row];
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
  const std::unique_ptr<IBIOSData> request = kMakers[row]();
  mira.ExecuteDACI(cls, select, *request, "", PwdInfo::PWD_NONE);
  PwdInfo info;
  mira.GetPwdInfo(info);
  mira.ValidatePwd("secret", PwdInfo::PWD_CLASS10);
  return 0;
}
