#include "sim/apartments.h"

#include <algorithm>
#include <atomic>

namespace mira::sim {
namespace {

constexpr HRESULT kWrongThread = static_cast<HRESULT>(0x8001010EU);
constexpr HRESULT kDisconnected = static_cast<HRESULT>(0x80010108U);

// A number that no other thread of the process gets, also after this one has ended.
unsigned ThisThread() {
  static std::atomic<unsigned> last{0};
  thread_local const unsigned number = ++last;
  return number;
}

}  // namespace

HRESULT Apartments::Enter(Kind kind) {
  const auto [found, is_new] = threads_.try_emplace(ThisThread(), Thread{kind, nullptr});
  Thread& thread = found->second;
  if (thread.kind != kind) return RPC_E_CHANGED_MODE;
  ++thread.initialisations;
  if (!is_new) return S_FALSE;
  if (kind == Kind::kSingleThreaded) {
    thread.apartment = std::make_shared<Apartment>();
  } else {
    if (!shared_) shared_ = std::make_shared<Apartment>();
    thread.apartment = shared_;
  }
  return S_OK;
}

ApartmentPtr Apartments::Leave() {
  const auto found = threads_.find(ThisThread());
  if (found == threads_.end() || --found->second.initialisations > 0) return nullptr;
  const ApartmentPtr left = found->second.apartment;
  threads_.erase(found);
  if (threads_.empty()) security_is_fixed_ = false;
  if (std::any_of(threads_.begin(), threads_.end(),
                  [&left](const auto& thread) { return thread.second.apartment == left; })) {
    return nullptr;
  }
  if (left == shared_) shared_.reset();
  left->has_ended = true;
  return left;
}

bool Apartments::HasEntered() const { return threads_.count(ThisThread()) != 0; }

ApartmentPtr Apartments::Current() const {
  const auto found = threads_.find(ThisThread());
  return found != threads_.end() ? found->second.apartment : shared_;
}

HRESULT Apartments::Reach(const ApartmentPtr& home) const {
  const ApartmentPtr here = Current();
  if (!here) return kNotInitialized;
  if (!home || home->has_ended) return kDisconnected;
  return here == home ? S_OK : kWrongThread;
}

bool Apartments::FixSecurity() {
  const bool was_open = !security_is_fixed_;
  security_is_fixed_ = true;
  return was_open;
}

}  // namespace mira::sim
