// A host in its smallest form: start the library, dump the BIOS structure, make a call. It links
// the import library only. With the simulator's DLL beside it, it runs on the machine that the
// environment variable MIRA_SIM names.

#include <iostream>
#include <map>

#include "facade/mira_intf.h"

int main() {
  CMiraIntf mira(std::cerr);
  if (const Status status = mira.Init(false, false, false); status != STATUS_SUCCESS) {
    std::cerr << "Init failed with status " << status << '\n';
    return 1;
  }
  if (const CBIOSObject* const bios = mira.GetBIOSObject(0)) bios->Display(std::cout);

  std::map<std::uint16_t, CDAToken> tokens;
  mira.GetAllDATokens(tokens);
  if (tokens.empty()) return 0;
  std::uint16_t id = 0;
  std::uint16_t location = 0;
  std::uint16_t value = 0;
  tokens.begin()->second.TokenInfo(id, location, value);

  CSimpleTokenData request;
  request.Arg1 = location;
  const Status status = mira.ExecuteDACI(0, 0, request, "", PwdInfo::PWD_NONE);
  std::cout << "Token 0x" << std::hex << id << " has the value 0x" << request.Res2 << std::dec
            << " (status " << status << ", completion code " << request.Res1 << ")\n";
  return status == STATUS_SUCCESS ? 0 : 1;
}
