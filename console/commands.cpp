#include "console/commands.h"

namespace mira::console {

const std::vector<Noun>& Nouns() {
  static const std::vector<Noun> nouns = {
      {"tour", "Show the main job once: start-up, structures, calling interface, one call",
       AddTour},
      {"info", "Show what is available on this machine", AddInfo},
      {"smbios", "Show, save or decode the SMBIOS table", AddSmbios},
      {"tokens", "List the calling interface's tokens", AddTokens},
      {"call", "Make one calling-interface call", AddCall},
      {"attr", "List, show, change, save and restore BIOS attributes", AddAttr},
      {"password", "Show, verify or change the BIOS passwords", AddPassword},
      {"hdd", "List drives; verify, set or clear their passwords", AddHdd},
      {"tag", "Show or set the asset, service, ownership and extended tags", AddTag},
      {"id", "Show or set MAC address, ePPID, image server and thin client", AddId},
      {"battery", "Show or set how the batteries are charged", AddBattery},
      {"log", "Show the firmware's log, its messages, a tablet's scan codes", AddLog},
      {"thermal", "Show the thermal sensors", AddThermal},
      {"boot", "Show and change the boot order, decode load options", AddBoot},
      {"sim", "Show, restart or renew the simulated machine", AddSim},
      {"console", "Make calls interactively, with the commands' own prompts and displays",
       AddConsole},
  };
  return nouns;
}

}  // namespace mira::console
