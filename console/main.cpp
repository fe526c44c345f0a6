#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "console/command.h"
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
    arguments.push_back(mira::console::ToUtf8(std::wstring_view(wide[i])));
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

int main(int argc, char** argv) {
  // A typed password leaves no copy in the stream.
  std::setvbuf(stdin, nullptr, _IONBF, 0);
#if defined(_WIN32)
  // Lines end alike on every system, and text is UTF-8.
  _setmode(_fileno(stdout), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
#endif
  return mira::console::RunConsole(Arguments(argc, argv), std::cin, std::cout, std::cerr);
}
