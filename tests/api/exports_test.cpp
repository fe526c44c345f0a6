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
#include "tests/support/module_headers.h"

namespace {

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
  const HMODULE loaded = GetModuleHandleA("miraintf.dll");
  ASSERT_NE(loaded, nullptr);
  const mira::test::ModuleHeaders module(loaded);
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
  for (const std::string& name :
       mira::test::ModuleHeaders(GetModuleHandleA("miraintf.dll")).ImportedModules()) {
    EXPECT_TRUE(system.contains(name)) << name;
  }
}

}  // namespace

#endif  // defined(_WIN32)
