// What crosses the boundary of the DLL, seen by a host. It ends with the first letter's answer on
// its standard output:
//
//   runtime_host exception   "caught ComError" or "caught": the library's one exception arrived
//   runtime_host output      "one" standard output stream, or "two": the library has its own

#include <cstdio>
#include <cstring>
#include <iostream>
#include <sstream>

#include "facade/mira_intf.h"
#include "platform/services.h"
#include "sim/machine.h"
#include "transport/com_error.h"

namespace {

BSTR WINAPI NoString(const OLECHAR*, UINT) { return nullptr; }

int Exception() {
  mira::platform::ServiceTable services = mira::platform::Services();
  services.SysAllocStringLen = NoString;
  mira::platform::SetServices(&services);
  std::ostringstream diagnostics;
  CMiraIntf mira(diagnostics);
  try {
    mira.Init(false, false, false);
  } catch (const mira::transport::ComError& error) {
    std::printf("caught ComError 0x%08lx\n", static_cast<unsigned long>(error.Error()));
    return 0;
  } catch (...) {
    std::puts("caught");
    return 0;
  }
  std::puts("nothing was thrown");
  return 1;
}

// The library says on standard output that a type does not exist.
int Output() {
  std::ostringstream diagnostics;
  CMiraIntf mira(diagnostics);
  if (mira.Init(true, false, false) != STATUS_SUCCESS) return 1;
  std::ostringstream text;
  std::streambuf* const console = std::cout.rdbuf(text.rdbuf());
  PLDM::Attribute attribute(PLDM::BIOSUnknownType);
  attribute.Handle = 1;
  mira.GetAttributeValue(attribute);
  std::cout.rdbuf(console);
  std::puts(text.str().empty() ? "two" : "one");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  mira::sim::Machine simulated;
  const mira::sim::Session session(simulated);
  const char* const what = argc > 1 ? argv[1] : "";
  const int status = std::strcmp(what, "exception") == 0 ? Exception() : Output();
  std::fflush(stdout);
  return status;
}
