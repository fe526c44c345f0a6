#ifndef MIRA_FACADE_COM_OWNERSHIP_H_
#define MIRA_FACADE_COM_OWNERSHIP_H_

// Which facades are connected through a COM initialisation of their own. The type-0xDA objects
// outlive the facade whose connection they hold, and a connection is dead when the COM that it was
// made in has ended: so the objects let go of it before, and take another that lives on.
//
//   AddOwner(this, services);                     // CoInitializeEx gave S_OK
//   PrepareToUninitialize(this, services);        // before the CoUninitialize
//   Services().CoUninitialize();

#include "platform/com_ptr.h"

namespace mira {

// Notes that `facade` connected on the calling thread through an initialisation of its own. Throws
// std::bad_alloc.
void AddOwner(const void* facade, const CComPtr<IWbemServices>& services);

// To be called on the thread of a CoUninitialize, just before it, by the facade that gives up
// `services` (empty: it failed to connect). A facade without an initialisation of its own uses up
// the one of another facade on this thread.
void PrepareToUninitialize(const void* facade, const CComPtr<IWbemServices>& services) noexcept;

// Forgets who owns what: the process turns to another machine.
void ForgetOwners() noexcept;

}  // namespace mira

#endif  // MIRA_FACADE_COM_OWNERSHIP_H_
