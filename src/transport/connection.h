#ifndef MIRA_TRANSPORT_CONNECTION_H_
#define MIRA_TRANSPORT_CONNECTION_H_

// COM and WMI start-up, and the discovery of the WMI instance behind which the calling interface
// lies.

#include <cstdint>
#include <ostream>
#include <string>

#include "platform/com_ptr.h"

namespace mira::transport {

// The multithreaded apartment, without OLE1 DDE, speed before memory.
inline constexpr DWORD kApartment = 12;

// Initialises COM on the calling thread for a scope, as every call does for itself.
class ComScope {
 public:
  ComScope() : result_(platform::Services().CoInitializeEx(nullptr, kApartment)) {}
  ~ComScope() {
    if (SUCCEEDED(result_)) platform::Services().CoUninitialize();
  }
  ComScope(const ComScope&) = delete;
  ComScope& operator=(const ComScope&) = delete;

 private:
  HRESULT result_;
};

// How an attempt to connect went.
struct Attempt {
  HRESULT initialized = E_FAIL;  // of CoInitializeEx; S_OK: this thread's COM is ours
  CComPtr<IWbemServices> services;
  // It failed behind CoInitializeEx: the caller calls CoUninitialize once, whether or not this
  // thread's initialisation was ours.
  bool EndsCom() const {
    return !services && (SUCCEEDED(initialized) || initialized == RPC_E_CHANGED_MODE);
  }
};

// Initialises COM on the calling thread and connects to ROOT\WMI. On failure writes one line to
// `diag`. Throws ComError when a COM string cannot be made.
Attempt Connect(std::ostream& diag);

// What the data block of the WMI instance says.
struct Discovery {
  bool found = false;             // an instance carried the signature
  HRESULT result = S_OK;          // what the search ended with
  std::uint32_t buffer_size = 0;  // bytes of the firmware's transfer buffer
  bool buffer_fix = false;        // the firmware's buffer handling is announced as usable
  CComBSTR relative_path;         // of the instance
};

// Looks through the instances of WMI_Query for the one that carries the signature "TARN WMI".
// Throws ComError when a COM string cannot be made.
Discovery FindInstance(IWbemServices* services);

}  // namespace mira::transport

#endif  // MIRA_TRANSPORT_CONNECTION_H_
