#ifndef MIRA_CLIENT_C_ENGINE_H_
#define MIRA_CLIENT_C_ENGINE_H_

// The process's machine and the handles that share it. All firmware calls are made by a thread of
// its own, which is in COM's multithreaded apartment, since the library is started there.
//
//   std::uint32_t handle = Engine::Get().Open({{"simulated", "laptop"}});
//   Reply reply = Engine::Get().Run(handle, work, nullptr);
//   Engine::Get().Close(handle);

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include "client/c/call_queue.h"
#include "client/json.h"

namespace mira::client::c {

class Engine {
 public:
  // The process's. It has no end: a host may leave with a handle open.
  static Engine& Get();

  // A new handle. Throws Error, kBusy when another machine is open.
  std::uint32_t Open(const Json& options);
  // Cancels the handle's work and waits for its end. The last handle's end is the machine's.
  void Close(std::uint32_t handle);
  void Cancel(std::uint32_t handle);
  // Throws Error unless the handle is open and the calling thread is not in a callback.
  void Check(std::uint32_t handle);
  // Has the work done on the machine. Throws Error.
  Reply Run(std::uint32_t handle, const Work& work, const Ask& ask);
  // Whether a simulated machine is open.
  bool IsSimulated();
  // Does `work`, which is told whether a machine is open, while the machine's thread stands still.
  // False, without doing it, when that thread is at work.
  bool WhileStill(const std::function<void(bool is_open)>& work);

 private:
  class Server;
  struct Handle {
    std::shared_ptr<Cancellation::Count> cancels;
    int running = 0;
    bool is_closing = false;
  };

  Engine() = default;
  void CheckCallback() const;
  Handle& Find(std::uint32_t handle);
  void Start(const Json& options, std::unique_lock<std::mutex>& lock);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::map<std::uint32_t, Handle> handles_;
  std::uint32_t last_handle_ = 0;
  std::unique_ptr<Server> server_;
  bool is_changing_ = false;  // the server starts or ends
};

}  // namespace mira::client::c

#endif  // MIRA_CLIENT_C_ENGINE_H_
