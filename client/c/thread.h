#ifndef MIRA_CLIENT_C_THREAD_H_
#define MIRA_CLIENT_C_THREAD_H_

// A thread that keeps the module with its code loaded until it has ended: a host that unloads the
// DLL too early ends without a thread that runs in memory that is gone.
//
//   Thread thread([] { Serve(); });
//   thread.Join();   // also done by the destructor

#include <functional>
#include <memory>

namespace mira::client::c {

class Thread {
 public:
  // `run` may not throw. Throws std::system_error when the system gives no thread.
  explicit Thread(std::function<void()> run);
  ~Thread();
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;
  // Waits until the thread has ended and let go of the module.
  void Join() noexcept;

 private:
  struct System;
  std::unique_ptr<System> system_;
};

}  // namespace mira::client::c

#endif  // MIRA_CLIENT_C_THREAD_H_
