// A host that brings a simulated machine of its own along, linked into the program: here one whose
// firmware refuses the second call.

#include <iostream>

#include "buffers/tag_data.h"
#include "facade/mira_intf.h"
#include "sim/machine.h"

int main() {
  mira::sim::Profile profile;
  profile.asset_tag = "K-7";
  mira::sim::Machine machine(profile);
  machine.GetFaults().Add({.operation = "firmware 11/0", .nth = 2, .completion = -1});
  const mira::sim::Session session(machine);

  CMiraIntf mira(std::cerr);
  if (const Status status = mira.Init(false, false, false); status != STATUS_SUCCESS) return 1;
  int calls_that_succeeded = 0;
  for (int i = 0; i < 3; ++i) {
    CTagData tag;
    mira.ExecuteDACI(11, 0, tag, "", PwdInfo::PWD_NONE);
    if (tag.Res1 != 0) continue;
    ++calls_that_succeeded;
    std::cout << "The asset tag is " << tag.Tag << ".\n";
  }
  mira::sim::Write(std::cout, machine.Journal());
  return calls_that_succeeded == 2 ? 0 : 1;
}
