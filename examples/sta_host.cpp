// A host with windows: its thread is in a single-threaded apartment. A facade takes one
// initialisation of COM away when it ends, so the host gives it one beside its own. The exit status
// is 0 when the library's start did what it should: 77 says that this PC has no calling interface.

#include <iostream>

#include "facade/mira_intf.h"
#include "platform/services.h"

namespace {

constexpr DWORD kApartmentThreaded = 2;  // COINIT_APARTMENTTHREADED
constexpr int kNotOnThisPc = 77;

#if defined(_WIN32)
HRESULT Initialize() { return ::CoInitializeEx(nullptr, kApartmentThreaded); }
void Uninitialize() { ::CoUninitialize(); }
#else
HRESULT Initialize() {
  return mira::platform::Services().CoInitializeEx(nullptr, kApartmentThreaded);
}
void Uninitialize() { mira::platform::Services().CoUninitialize(); }
#endif

Status UseLibrary() {
  CMiraIntf mira(std::cerr);
  if (const Status status = mira.Init(true, false, false); status != STATUS_SUCCESS) return status;
  CSimpleTokenData request;
  request.Arg1 = 0x70;
  const Status status = mira.ExecuteDACI(0, 0, request, "", PwdInfo::PWD_NONE);
  std::cout << "The setting at 0x70 is " << request.Res2 << ", and there are "
            << (mira.IsPLDMSupported() ? "" : "no ") << "BIOS attributes.\n";
  return status;
}

}  // namespace

int main() {
  if (FAILED(Initialize()) || FAILED(Initialize())) return 1;
  const Status status = UseLibrary();
  // The host's own initialisation is still there: another one says that it is not the first.
  const bool has_com = Initialize() == S_FALSE;
  Uninitialize();
  Uninitialize();
  std::cout << "The library ended with status " << status << ", and the host "
            << (has_com ? "has" : "has not") << " its apartment.\n";
  if (!has_com) return 1;
  return status == STATUS_SUCCESS ? 0 : kNotOnThisPc;
}
