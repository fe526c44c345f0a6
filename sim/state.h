#ifndef MIRA_SIM_STATE_H_
#define MIRA_SIM_STATE_H_

// What the parts of a simulated machine share. COM objects hold it too, since a host may keep them
// longer than the machine.

#include <functional>
#include <memory>
#include <vector>

#include "bytes/reader.h"
#include "platform/com.h"
#include "sim/faults.h"
#include "sim/firmware/firmware.h"
#include "sim/profile.h"

namespace mira::sim {

// What is alive of what the machine handed out.
struct Live {
  int references = 0;  // to COM objects, other than the objects' own
  int strings = 0;     // BSTRs
  int arrays = 0;      // SAFEARRAYs
  int com_scopes = 0;  // CoInitializeEx that succeeded, less CoUninitialize; may fall below 0
};

struct State {
  explicit State(Profile p) : profile(std::move(p)), firmware(profile) {}

  Profile profile;
  Faults faults;
  Firmware firmware;
  Live live;
  DWORD last_error = 0;
  // Sees the bytes of every string and array just before the library releases them.
  std::function<void(bytes::ByteSpan)> on_release;

  void Release(bytes::ByteSpan bytes) const {
    if (on_release && !bytes.empty()) on_release(bytes);
  }
};

using StatePtr = std::shared_ptr<State>;

}  // namespace mira::sim

#endif  // MIRA_SIM_STATE_H_
