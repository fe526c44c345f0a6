#include <thread>
#include <utility>

#include "client/c/thread.h"

namespace mira::client::c {

struct Thread::System {
  std::thread thread;
};

Thread::Thread(std::function<void()> run)
    : system_(std::make_unique<System>(System{std::thread(std::move(run))})) {}

Thread::~Thread() { Join(); }

void Thread::Join() noexcept {
  if (system_->thread.joinable()) system_->thread.join();
}

}  // namespace mira::client::c
