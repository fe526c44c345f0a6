// What the DLL offers and what it needs, read from its own headers.

#include <gtest/gtest.h>

#if defined(_WIN32)

#include <cxxabi.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "platform/com.h"

namespace {

// The loaded module's headers and directories.
class Module {
 public:
  explicit Module(const char* name)
      : base_(reinterpret_cast<const char*>(GetModuleHandleA(name))) {}
  bool Loaded() const { return base_ != nullptr; }

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

std::string Demangle(const std::string& name) {
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> text(
      abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), std::free);
  if (status != 0) return name;
  // The one number in the names that depends on the pointer's size.
  std::string demangled = text.get();
  for (const std::string_view extent : {"4294967295u", "18446744073709551615ull"}) {
    for (std::size_t at = 0; (at = demangled.find(extent, at)) != std::string::npos;) {
      demangled.replace(at, extent.size(), "std::dynamic_extent");
    }
  }
  return demangled;
}

// Of a class, the virtual table, the type information and the inline copies that the compiler makes
// belong to it.
TEST(Dll, ExportsExactlyTheIntendedSymbols) {
  const Module module("miraintf.dll");
  ASSERT_TRUE(module.Loaded());
  std::set<std::string> exported;
  for (const std::string& name : module.Exports()) exported.insert(Demangle(name));

  if (std::getenv("MIRA_WRITE_EXPORTS") != nullptr) {
    std::ofstream list(MIRA_EXPORTS_FILE, std::ios::binary);
    list << "# The symbols that miraintf.dll exports, one a line. Made by tools/exports.sh.\n";
    for (const std::string& name : exported) list << name << '\n';
    GTEST_SKIP() << "the list was written, not checked";
  }
  std::set<std::string> intended;
  std::ifstream list(MIRA_EXPORTS_FILE);
  ASSERT_TRUE(list.good()) << MIRA_EXPORTS_FILE;
  for (std::string line; std::getline(list, line);) {
    if (line.ends_with('\r')) line.pop_back();
    if (!line.empty() && line[0] != '#') intended.insert(line);
  }
  for (const std::string& name : exported)
    EXPECT_TRUE(intended.contains(name)) << "unintended: " << name;
  for (const std::string& name : intended)
    EXPECT_TRUE(exported.contains(name)) << "missing: " << name;
}

TEST(Dll, NeedsOnlyTheSystemsModules) {
  const std::set<std::string> system = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll",
                                        "oleaut32.dll"};
  for (const std::string& name : Module("miraintf.dll").ImportedModules()) {
    EXPECT_TRUE(system.contains(name)) << name;
  }
}

}  // namespace

#endif  // defined(_WIN32)
