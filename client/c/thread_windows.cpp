#include <windows.h>

#include <system_error>
#include <utility>

#include "client/c/thread.h"

namespace mira::client::c {
namespace {

struct Start {
  std::function<void()> run;
  HMODULE module = nullptr;
};

std::system_error SystemError(const char* what) {
  return {static_cast<int>(GetLastError()), std::system_category(), what};
}

DWORD WINAPI Run(void* parameter) {
  HMODULE module = nullptr;
  {
    const std::unique_ptr<Start> start(static_cast<Start*>(parameter));
    module = start->module;
    start->run();
  }
  FreeLibraryAndExitThread(module, 0);
}

}  // namespace

struct Thread::System {
  HANDLE thread = nullptr;
};

Thread::Thread(std::function<void()> run) : system_(std::make_unique<System>()) {
  auto start = std::make_unique<Start>();
  start->run = std::move(run);
  // The module is found by an address in it.
  static const char kHere = 0;
  if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                          reinterpret_cast<const wchar_t*>(&kHere), &start->module)) {
    throw SystemError("the module cannot be kept loaded");
  }
  const HMODULE module = start->module;
  system_->thread = CreateThread(nullptr, 0, Run, start.get(), 0, nullptr);
  if (system_->thread == nullptr) {
    const std::system_error error = SystemError("no thread can be started");
    FreeLibrary(module);
    throw error;
  }
  // The thread releases it.
  static_cast<void>(start.release());
}

Thread::~Thread() { Join(); }

void Thread::Join() noexcept {
  if (system_->thread == nullptr) return;
  WaitForSingleObject(system_->thread, INFINITE);
  CloseHandle(system_->thread);
  system_->thread = nullptr;
}

}  // namespace mira::client::c
