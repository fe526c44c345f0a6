#include "console/interrupt.h"

#include <atomic>
#include <csignal>

namespace mira::console {
namespace {

std::atomic<bool> g_interrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void NoteInterrupt(int signal) {
  g_interrupted = true;
  std::signal(signal, SIG_DFL);
}

}  // namespace

void FinishOnInterrupt() {
  g_interrupted = false;
  for (const int signal : {SIGINT, SIGTERM}) {
    // One that is ignored, as under nohup, stays so.
    if (std::signal(signal, NoteInterrupt) == SIG_IGN) std::signal(signal, SIG_IGN);
  }
}

bool IsInterrupted() { return g_interrupted; }

}  // namespace mira::console
