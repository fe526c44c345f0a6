#ifndef MIRA_SIM_APARTMENTS_H_
#define MIRA_SIM_APARTMENTS_H_

// COM's apartments in a simulated process. Every thread initialises COM for itself; the threads of
// the multithreaded apartment share it, and each other thread has an apartment of its own. What was
// made in an apartment is dead when the last initialisation of the apartment is undone.
//
//   Apartments apartments;
//   apartments.Enter(Apartments::Kind::kMultithreaded);   // S_OK
//   const ApartmentPtr home = apartments.Current();
//   apartments.Leave();
//   apartments.Reach(home);                               // CO_E_NOTINITIALIZED

#include <map>
#include <memory>

#include "platform/com.h"

namespace mira::sim {

inline constexpr HRESULT kNotInitialized =
    static_cast<HRESULT>(0x800401F0U);  // CO_E_NOTINITIALIZED

struct Apartment {
  bool has_ended = false;
  int references = 0;  // to objects that were made in it
};
using ApartmentPtr = std::shared_ptr<Apartment>;

class Apartments {
 public:
  enum class Kind { kMultithreaded, kSingleThreaded };

  // Initialises COM on the calling thread: S_OK, S_FALSE where it was initialised already, or
  // RPC_E_CHANGED_MODE where it is in the other kind of apartment.
  HRESULT Enter(Kind kind);
  // Undoes one initialisation; without one nothing happens. Gives the apartment that ended with it.
  ApartmentPtr Leave();
  bool HasEntered() const;
  // Where the calling thread is. A thread that has not initialised COM is in the multithreaded
  // apartment while there is one. Null: nowhere.
  ApartmentPtr Current() const;
  // What a call of an object that was made in `home` meets on its way: S_OK, or why it cannot be
  // called from the calling thread.
  HRESULT Reach(const ApartmentPtr& home) const;
  // Fixes the security of the process, which lasts until its last thread has left COM; false when
  // it was fixed already.
  bool FixSecurity();

 private:
  struct Thread {
    Kind kind;
    ApartmentPtr apartment;
    int initialisations = 0;
  };
  std::map<unsigned, Thread> threads_;  // those that are initialised
  ApartmentPtr shared_;                 // the multithreaded apartment, while it lives
  bool security_is_fixed_ = false;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_APARTMENTS_H_
