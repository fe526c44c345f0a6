#include "client/c/engine.h"

#include <limits>
#include <utility>

#include "client/c/machine.h"
#include "client/c/thread.h"
#include "client/error.h"
#include "facade/process_state.h"

namespace mira::client::c {
namespace {

// What two machines are compared by: their options, whatever the order.
nlohmann::json Unordered(const Json& options) { return nlohmann::json::parse(options.dump()); }

}  // namespace

// The thread that works on a machine, from its opening to its end.
class Engine::Server {
 public:
  explicit Server(const Json& options) : options_(options), thread_([this] { Serve(); }) {
    std::unique_lock lock(mutex_);
    started_.wait(lock, [this] { return has_started_; });
    if (!failure_) return;
    lock.unlock();
    thread_.Join();
    std::rethrow_exception(failure_);
  }
  ~Server() {
    queue_.Stop();
    thread_.Join();
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  CallQueue& Queue() { return queue_; }
  const Json& Options() const { return options_; }
  bool IsSimulated() const { return is_simulated_; }
  void Check() const { machine_->Check(); }

 private:
  void Serve() noexcept {
    std::unique_ptr<Session> session;
    try {
      machine_ = OpenMachine(options_);
      session = std::make_unique<Session>(
          [this](const std::string&, std::size_t done, std::size_t total) {
            return queue_.Continues(done, total);
          });
      machine_->Introduce(*session);
      is_simulated_ = session->IsSimulated();
    } catch (...) {
      failure_ = std::current_exception();
    }
    {
      const std::scoped_lock lock(mutex_);
      has_started_ = true;
      started_.notify_all();
    }
    if (!failure_) queue_.Serve(*session);
    session.reset();
    ResetProcessState();
    machine_.reset();
  }

  Json options_;
  CallQueue queue_;
  std::unique_ptr<Machine> machine_;
  bool is_simulated_ = false;
  std::mutex mutex_;
  std::condition_variable started_;
  bool has_started_ = false;
  std::exception_ptr failure_;
  Thread thread_;  // uses all the others
};

Engine& Engine::Get() {
  static Engine& engine = *new Engine();
  return engine;
}

void Engine::CheckCallback() const {
  if (server_ == nullptr || !server_->Queue().IsInCallback()) return;
  throw Error(kBusy, "in-callback", "A progress callback may not call this function.");
}

Engine::Handle& Engine::Find(std::uint32_t handle) {
  const auto found = handles_.find(handle);
  if (found != handles_.end() && !found->second.is_closing) return found->second;
  throw Error(kUsage, "bad-handle", "The handle " + std::to_string(handle) + " is not open.",
              std::to_string(handle));
}

void Engine::Start(const Json& options, std::unique_lock<std::mutex>& lock) {
  is_changing_ = true;
  lock.unlock();
  std::unique_ptr<Server> server;
  std::exception_ptr failure;
  try {
    server = std::make_unique<Server>(options);
  } catch (...) {
    failure = std::current_exception();
  }
  lock.lock();
  is_changing_ = false;
  changed_.notify_all();
  if (failure) std::rethrow_exception(failure);
  server_ = std::move(server);
}

std::uint32_t Engine::Open(const Json& options) {
  std::unique_lock lock(mutex_);
  CheckCallback();
  changed_.wait(lock, [this] { return !is_changing_; });
  if (last_handle_ == std::numeric_limits<std::uint32_t>::max()) {
    throw Error(kUnexpected, "no-handles", "The process has used up all handles.");
  }
  // Made first: nothing fails between the machine's start and its first handle.
  std::map<std::uint32_t, Handle> made;
  made[0].cancels = std::make_shared<Cancellation::Count>(0);
  auto node = made.extract(0);
  if (server_ == nullptr) {
    Start(options, lock);
  } else if (Unordered(server_->Options()) != Unordered(options)) {
    throw Error(kBusy, "another-machine",
                "The process has another machine open; it has one at a time.");
  }
  node.key() = ++last_handle_;
  handles_.insert(std::move(node));
  return last_handle_;
}

void Engine::Close(std::uint32_t handle) {
  std::unique_lock lock(mutex_);
  CheckCallback();
  Handle& closed = Find(handle);
  closed.is_closing = true;
  ++*closed.cancels;
  server_->Queue().Wake();
  changed_.wait(lock, [&closed] { return closed.running == 0; });
  handles_.erase(handle);
  if (!handles_.empty()) return;
  is_changing_ = true;
  std::unique_ptr<Server> ended = std::move(server_);
  lock.unlock();
  ended.reset();
  lock.lock();
  is_changing_ = false;
  changed_.notify_all();
}

void Engine::Cancel(std::uint32_t handle) {
  const std::scoped_lock lock(mutex_);
  ++*Find(handle).cancels;
  server_->Queue().Wake();
}

void Engine::Check(std::uint32_t handle) {
  const std::scoped_lock lock(mutex_);
  CheckCallback();
  Find(handle);
}

Reply Engine::Run(std::uint32_t handle, const Work& work, const Ask& ask) {
  std::unique_lock lock(mutex_);
  CheckCallback();
  Handle& used = Find(handle);
  const Cancellation cancellation(used.cancels);
  Server& server = *server_;
  ++used.running;
  lock.unlock();
  const auto leave = [&] {
    lock.lock();
    --used.running;
    changed_.notify_all();
  };
  try {
    Reply reply = server.Queue().Run(
        [&](Session& session) {
          Reply done = work(session);
          server.Check();
          return done;
        },
        ask, cancellation);
    leave();
    return reply;
  } catch (...) {
    leave();
    throw;
  }
}

bool Engine::WhileStill(const std::function<void(bool is_open)>& work) {
  const std::scoped_lock lock(mutex_);
  if (is_changing_) return false;
  if (server_ != nullptr) return server_->Queue().WhileStill([&work] { work(true); });
  work(false);
  return true;
}

bool Engine::IsSimulated() {
  const std::scoped_lock lock(mutex_);
  return server_ != nullptr && server_->IsSimulated();
}

}  // namespace mira::client::c
