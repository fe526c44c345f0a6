// Any bytes as the firmware's reply to each command that the library encodes.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <sstream>
#include <vector>

#include "buffers/hdd_pwd_buffer.h"
#include "facade/mira_intf.h"
#include "sim/machine.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  struct Command {
    std::uint16_t cls;
    std::uint16_t select;
  };
  static constexpr Command kCommands[] = {{0, 0}, {10, 11}, {10, 28}, {10, 13}, {10, 14}};
  std::cout.setstate(std::ios::failbit);  // diagnostics of types are not looked at
  if (size < 1) return 0;
  const Command command = kCommands[data[0] % std::size(kCommands)];
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
  mira.SetAttributeValue(attribute, "", PwdInfo::PWD_NONE, 1);
  CHDDPwd request;
  request.Password = "secret";
  mira.ExecuteDACI(command.cls, command.select, request, "", PwdInfo::PWD_NONE);
  PwdInfo info;
  mira.GetPwdInfo(info);
  mira.ValidatePwd("secret", PwdInfo::PWD_CLASS10);
  return 0;
}
