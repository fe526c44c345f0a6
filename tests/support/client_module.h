#ifndef MIRA_TESTS_SUPPORT_CLIENT_MODULE_H_
#define MIRA_TESTS_SUPPORT_CLIENT_MODULE_H_

// The DLL of the C interface, loaded at run time, for Windows alone.

#include <windows.h>

#include <stdexcept>
#include <string>

#include "tests/support/client_library.h"

namespace mira::test {

class ClientModule {
 public:
  // The simulator's build, or the product's.
  enum class Build { kSimulator, kProduct };
  explicit ClientModule(Build build = Build::kSimulator)
      : module_(LoadLibraryW(Path(build).c_str())) {
    if (module_ == nullptr) throw std::runtime_error("miraclient.dll cannot be loaded");
    functions_ = {
        Find<decltype(&mira_abi)>("mira_abi"),
        Find<decltype(&mira_version)>("mira_version"),
        Find<decltype(&mira_status_name)>("mira_status_name"),
        Find<decltype(&mira_open)>("mira_open"),
        Find<decltype(&mira_close)>("mira_close"),
        Find<decltype(&mira_request)>("mira_request"),
        Find<decltype(&mira_call)>("mira_call"),
        Find<decltype(&mira_cancel)>("mira_cancel"),
        Find<decltype(&mira_free)>("mira_free"),
        build == Build::kSimulator ? Find<mira_sim_control_function>("mira_sim_control") : nullptr};
  }
  ~ClientModule() { FreeLibrary(module_); }
  ClientModule(const ClientModule&) = delete;
  ClientModule& operator=(const ClientModule&) = delete;

  const ClientLibrary& Functions() const { return functions_; }
  HMODULE Module() const { return module_; }

  // Beside the program, or in its folder "sim".
  static std::wstring Path(Build build) {
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    const std::wstring path = program;
    return path.substr(0, path.rfind(L'\\') + 1) +
           (build == Build::kSimulator ? L"sim\\miraclient.dll" : L"miraclient.dll");
  }

 private:
  template <typename Function>
  Function Find(const char* name) const {
    const FARPROC found = GetProcAddress(module_, name);
    if (found == nullptr) throw std::runtime_error(std::string("miraclient.dll lacks ") + name);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
  }

  HMODULE module_;
  ClientLibrary functions_{};
};

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_CLIENT_MODULE_H_
