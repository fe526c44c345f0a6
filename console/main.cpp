#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "bytes/utf16.h"
#include "console/console.h"
#include "platform/com.h"

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>
#include <stdio.h>

namespace {

// The arguments as UTF-8, whatever the code page is.
std::vector<std::string> Arguments(int, char**) {
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) {
    arguments.push_back(mira::bytes::Utf8(std::wstring_view(wide[i])));
  }
  LocalFree(wide);
  return arguments;
}

}  // namespace
#else
namespace {

std::vector<std::string> Arguments(int argc, char** argv) { return {argv + 1, argv + argc}; }

}  // namespace
#endif

namespace {

// Simulated machines are kept where the system keeps a user's data, or where MIRA_SIM_STATE says;
// with that set to nothing, nowhere.
std::filesystem::path MachinesFolder() {
  if (const char* const chosen = std::getenv("MIRA_SIM_STATE")) return chosen;
#if defined(_WIN32)
  if (const wchar_t* const data = _wgetenv(L"LOCALAPPDATA")) {
    return std::filesystem::path(data) / "mira";
  }
#else
  if (const char* const state = std::getenv("XDG_STATE_HOME"); state != nullptr && *state != 0) {
    return std::filesystem::path(state) / "mira";
  }
  if (const char* const home = std::getenv("HOME"); home != nullptr && *home != 0) {
    return std::filesystem::path(home) / ".local" / "state" / "mira";
  }
#endif
  return {};
}

}  // namespace

int main(int argc, char** argv) {
  // A typed password leaves no copy in the stream.
  std::setvbuf(stdin, nullptr, _IONBF, 0);
#if defined(_WIN32)
  // Lines end alike on every system, and text is UTF-8.
  _setmode(_fileno(stdout), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
#endif
  return mira::console::RunConsole(Arguments(argc, argv), std::cin, std::cout, std::cerr,
                                   MachinesFolder());
}
