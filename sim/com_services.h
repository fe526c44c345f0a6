#ifndef MIRA_SIM_COM_SERVICES_H_
#define MIRA_SIM_COM_SERVICES_H_

// The COM services of the machine in force.

#include "sim/state.h"

namespace mira::sim {

// The services are plain functions, so the machine in force is a variable.
StatePtr& InForce();

HRESULT WINAPI InitializeEx(LPVOID reserved, DWORD flags);
HRESULT WINAPI InitializeSecurity(PSECURITY_DESCRIPTOR descriptor, LONG service_count,
                                  SOLE_AUTHENTICATION_SERVICE* services, void* reserved1,
                                  DWORD authn_level, DWORD imp_level, void* auth_list,
                                  DWORD capabilities, void* reserved3);
HRESULT WINAPI CreateInstance(REFCLSID clsid, IUnknown* outer, DWORD context, REFIID iid,
                              LPVOID* object);
HRESULT WINAPI SetProxyBlanket(IUnknown* proxy, DWORD authn_service, DWORD authz_service,
                               OLECHAR* principal, DWORD authn_level, DWORD imp_level,
                               RPC_AUTH_IDENTITY_HANDLE identity, DWORD capabilities);
void WINAPI Uninitialize();

}  // namespace mira::sim

#endif  // MIRA_SIM_COM_SERVICES_H_
