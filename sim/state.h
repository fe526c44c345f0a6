#ifndef MIRA_SIM_STATE_H_
#define MIRA_SIM_STATE_H_

// What the parts of a simulated machine share. COM objects hold it too, since a host may keep them
// longer than the machine.

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "bytes/reader.h"
#include "platform/com.h"
#include "sim/apartments.h"
#include "sim/faults.h"
#include "sim/firmware/firmware.h"
#include "sim/objections.h"
#include "sim/profile.h"

namespace mira::sim {

// What is alive of what the machine handed out.
struct Live {
  int references = 0;  // to COM objects, other than the objects' own
  int outlived = 0;    // of these, those that were there when COM ended in their apartment, in sum
  int strings = 0;     // BSTRs
  int arrays = 0;      // SAFEARRAYs
  int variants = 0;    // VARIANTs that were filled with one of these, or with an object
  int com_scopes = 0;  // CoInitializeEx that succeeded, less CoUninitialize; may fall below 0
};

// Keeps a machine's state: every call and every restart is done through it.
class Storage {
 public:
  virtual ~Storage() = default;
  virtual void Transact(const std::function<void()>& work) = 0;
  // What went by, for whoever keeps a journal.
  virtual void Note(const JournalEntry&) {}
  virtual void Note(const OperationEntry&) {}
};

struct State {
  explicit State(Profile p) : profile(std::move(p)), firmware(profile) {}

  Profile profile;
  Apartments apartments;
  Objections objections;
  // Sees the bytes of every array that is put into an object.
  std::function<void(bytes::ByteSpan)> on_put;
  Faults faults;
  Firmware firmware;
  Live live;
  // What is in the VARIANTs that were filled, one entry each.
  std::multiset<const void*> in_variants;
  DWORD last_error = 0;
  // Where the state is kept beyond the process, if it is.
  Storage* storage = nullptr;
  // Sees the bytes of every string and array just before the library releases them.
  std::function<void(bytes::ByteSpan)> on_release;

  // Does `work`, a call or a restart, as the storage wants it. Throws when it could not be kept.
  void Transact(const std::function<void()>& work) const {
    if (storage != nullptr) {
      storage->Transact(work);
    } else {
      work();
    }
  }
  // A call on the firmware; gives the HRESULT of one that fails on its way.
  std::optional<std::int32_t> Call(std::vector<std::uint8_t>& array) {
    const std::size_t before = firmware.Journal().size();
    const auto lost = firmware.Execute(array, faults);
    if (storage != nullptr && firmware.Journal().size() > before) {
      storage->Note(firmware.Journal().back());
    }
    return lost;
  }
  // Whether the machine is off. It may have been started again by another program.
  bool IsOff() const {
    if (!firmware.IsOff() || storage == nullptr) return firmware.IsOff();
    try {
      Transact([] {});
    } catch (const std::exception&) {
      return true;  // what cannot be looked at stays as it was
    }
    return firmware.IsOff();
  }
  // A VARIANT was filled with what `content` points to, or was cleared of it. One that the library
  // has filled itself does not count.
  void Filled(const void* content) {
    in_variants.insert(content);
    ++live.variants;
  }
  void Cleared(const void* content) {
    const auto found = in_variants.find(content);
    if (found == in_variants.end()) return;
    in_variants.erase(found);
    --live.variants;
  }
  void Release(bytes::ByteSpan bytes) const {
    if (on_release && !bytes.empty()) on_release(bytes);
  }
};

using StatePtr = std::shared_ptr<State>;

}  // namespace mira::sim

#endif  // MIRA_SIM_STATE_H_
