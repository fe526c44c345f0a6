#ifndef MIRA_CLIENT_C_CALL_QUEUE_H_
#define MIRA_CLIENT_C_CALL_QUEUE_H_

// Where the threads of a host meet the one thread that works on the machine. A caller waits until
// its work is done, and answers meanwhile, on its own thread, whether it goes on.
//
//   queue.Serve(session);                                       // one thread, until Stop
//   Reply reply = queue.Run(work, progress, cancellation);      // any other

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "client/session.h"

namespace mira::client::c {

struct Reply {
  ExitStatus status = kDone;
  Json document = Json::object();
};

using Work = std::function<Reply(Session& session)>;
// How far the work is. False cancels it.
using Ask = std::function<bool(std::size_t done, std::size_t total)>;

// Whether somebody has cancelled since this was made. Whoever cancels adds one to the count.
class Cancellation {
 public:
  using Count = std::atomic<std::uint32_t>;
  explicit Cancellation(std::shared_ptr<const Count> count)
      : count_(std::move(count)), seen_(*count_) {}
  bool IsAskedFor() const { return *count_ != seen_; }

 private:
  std::shared_ptr<const Count> count_;
  std::uint32_t seen_;
};

class CallQueue {
 public:
  // Has the work done and gives its reply, or throws what it threw. Throws Cancelled when it was
  // cancelled before its turn.
  Reply Run(const Work& work, const Ask& ask, const Cancellation& cancellation);
  // Callers look again whether they were cancelled.
  void Wake();
  // Whether the calling thread is answering `ask`.
  bool IsInCallback() const;

  // Does `work` while nothing else can begin. False, without doing it, when a call is under way and
  // not in its callback.
  bool WhileStill(const std::function<void()>& work);

  // Does the work that is given, in its order, until it is stopped.
  void Serve(Session& session);
  // Whether the work that is being done goes on; for the serving thread.
  bool Continues(std::size_t done, std::size_t total);
  void Stop();

 private:
  struct Call {
    const Work& work;
    const Ask& ask;
    const Cancellation& cancellation;
    Reply reply = {};
    std::exception_ptr failure = nullptr;
    bool is_waiting = true;  // for its turn
    bool has_ended = false;
    bool asks = false;  // whether it goes on
    bool goes_on = true;
    std::size_t done = 0;
    std::size_t total = 0;
  };
  void Answer(Call& call, std::unique_lock<std::mutex>& lock);

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Call*> waiting_;
  Call* current_ = nullptr;
  std::optional<std::thread::id> callback_thread_;
  bool is_stopped_ = false;
};

}  // namespace mira::client::c

#endif  // MIRA_CLIENT_C_CALL_QUEUE_H_
