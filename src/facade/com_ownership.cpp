#include "facade/com_ownership.h"

#include <algorithm>
#include <thread>
#include <vector>

#include "transport/bfn_method.h"

namespace mira {
namespace {

struct Owner {
  const void* facade;
  std::thread::id thread;
  IWbemServices* services;  // held by the facade
};

// Never destroyed: a facade may end later than the library's own objects.
std::vector<Owner>& Owners() {
  static std::vector<Owner>& owners = *new std::vector<Owner>();
  return owners;
}

}  // namespace

void AddOwner(const void* facade, const CComPtr<IWbemServices>& services) {
  Owners().push_back({facade, std::this_thread::get_id(), services});
}

void PrepareToUninitialize(const void* facade, const CComPtr<IWbemServices>& services) noexcept {
  using transport::BfnMethod;
  std::vector<Owner>& owners = Owners();
  auto used_up = std::find_if(owners.begin(), owners.end(),
                              [facade](const Owner& owner) { return owner.facade == facade; });
  if (used_up == owners.end()) {
    used_up = std::find_if(owners.begin(), owners.end(), [](const Owner& owner) {
      return owner.thread == std::this_thread::get_id();
    });
  }
  if (services) BfnMethod::LetGo(services);
  if (used_up != owners.end()) {
    BfnMethod::LetGo(used_up->services);
    owners.erase(used_up);
  }
  if (!owners.empty()) BfnMethod::Reconnect(owners.front().services);
}

void ForgetOwners() noexcept { Owners().clear(); }

}  // namespace mira
