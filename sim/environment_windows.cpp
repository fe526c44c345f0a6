#include <windows.h>

#include <string>
#include <string_view>

#include "bytes/utf16.h"
#include "sim/environment.h"

namespace mira::sim {

// The system is asked: of what a host sets later, another runtime's environment does not know.
std::optional<std::string> EnvironmentText(const char* name) {
  const std::string narrow = name;
  const std::wstring wide(narrow.begin(), narrow.end());
  std::wstring text(256, L'\0');
  for (;;) {
    SetLastError(ERROR_SUCCESS);
    const DWORD size =
        GetEnvironmentVariableW(wide.c_str(), text.data(), static_cast<DWORD>(text.size()));
    if (size == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
    if (size < text.size()) return bytes::Utf8(std::wstring_view(text.data(), size));
    text.resize(size);
  }
}

}  // namespace mira::sim
