#ifndef MIRA_TESTS_SUPPORT_MODULE_HEADERS_H_
#define MIRA_TESTS_SUPPORT_MODULE_HEADERS_H_

#include <windows.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>

namespace mira::test {

// A loaded module's headers and directories.
class ModuleHeaders {
 public:
  explicit ModuleHeaders(HMODULE module) : base_(reinterpret_cast<const char*>(module)) {}

  std::set<std::string> Exports() const {
    std::set<std::string> names;
    const auto* const directory = Directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
    const auto* const table = At<DWORD>(directory->AddressOfNames);
    for (DWORD i = 0; i < directory->NumberOfNames; ++i) names.insert(At<char>(table[i]));
    return names;
  }

  std::set<std::string> ImportedModules() const {
    std::set<std::string> names;
    for (const auto* entry = Directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT);
         entry->Name != 0; ++entry) {
      std::string name = At<char>(entry->Name);
      std::transform(name.begin(), name.end(), name.begin(),
                     [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
      names.insert(name);
    }
    return names;
  }

 private:
  template <typename T>
  const T* At(DWORD offset) const {
    return reinterpret_cast<const T*>(base_ + offset);
  }
  template <typename T>
  const T* Directory(int index) const {
    const auto* const dos = At<IMAGE_DOS_HEADER>(0);
    const auto* const nt = At<IMAGE_NT_HEADERS>(static_cast<DWORD>(dos->e_lfanew));
    return At<T>(nt->OptionalHeader.DataDirectory[index].VirtualAddress);
  }
  const char* base_;
};

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_MODULE_HEADERS_H_
