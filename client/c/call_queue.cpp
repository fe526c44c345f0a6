#include "client/c/call_queue.h"

#include "client/error.h"

namespace mira::client::c {

Reply CallQueue::Run(const Work& work, const Ask& ask, const Cancellation& cancellation) {
  Call call{work, ask, cancellation};
  std::unique_lock lock(mutex_);
  waiting_.push_back(&call);
  changed_.notify_all();
  for (;;) {
    changed_.wait(lock, [&] {
      return call.has_ended || call.asks || (call.is_waiting && cancellation.IsAskedFor());
    });
    if (call.has_ended) break;
    if (call.asks) {
      Answer(call, lock);
    } else {
      std::erase(waiting_, &call);
      throw Cancelled();
    }
  }
  if (call.failure) std::rethrow_exception(call.failure);
  return std::move(call.reply);
}

void CallQueue::Answer(Call& call, std::unique_lock<std::mutex>& lock) {
  callback_thread_ = std::this_thread::get_id();
  lock.unlock();
  bool goes_on = false;
  try {
    goes_on = call.ask(call.done, call.total);
  } catch (...) {
    // A host's callback may not throw. Where it can be caught, it cancels.
  }
  lock.lock();
  callback_thread_.reset();
  call.goes_on = goes_on;
  call.asks = false;
  changed_.notify_all();
}

void CallQueue::Wake() {
  const std::scoped_lock lock(mutex_);
  changed_.notify_all();
}

bool CallQueue::IsInCallback() const {
  const std::scoped_lock lock(mutex_);
  return callback_thread_ == std::this_thread::get_id();
}

bool CallQueue::WhileStill(const std::function<void()>& work) {
  const std::scoped_lock lock(mutex_);
  if (current_ != nullptr && !current_->asks) return false;
  work();
  return true;
}

void CallQueue::Serve(Session& session) {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return is_stopped_ || !waiting_.empty(); });
    if (waiting_.empty()) return;
    Call& call = *waiting_.front();
    waiting_.pop_front();
    call.is_waiting = false;
    current_ = &call;
    lock.unlock();
    try {
      call.reply = call.work(session);
    } catch (...) {
      call.failure = std::current_exception();
    }
    lock.lock();
    current_ = nullptr;
    call.has_ended = true;
    changed_.notify_all();
  }
}

bool CallQueue::Continues(std::size_t done, std::size_t total) {
  std::unique_lock lock(mutex_);
  if (current_ == nullptr) return true;
  Call& call = *current_;
  if (call.cancellation.IsAskedFor()) return false;
  if (!call.ask) return true;
  call.done = done;
  call.total = total;
  call.asks = true;
  changed_.notify_all();
  changed_.wait(lock, [&call] { return !call.asks; });
  return call.goes_on && !call.cancellation.IsAskedFor();
}

void CallQueue::Stop() {
  const std::scoped_lock lock(mutex_);
  is_stopped_ = true;
  changed_.notify_all();
}

}  // namespace mira::client::c
