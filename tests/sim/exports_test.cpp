// The two builds of the DLL offer a host the same; the simulator's has one function more.

#include <gtest/gtest.h>

#if defined(_WIN32)

#include <windows.h>

#include <set>
#include <string>

#include "tests/support/module_headers.h"

namespace {

using mira::test::ModuleHeaders;

// The folder that the test program lies in, and above it.
std::wstring Folder() {
  wchar_t program[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, program, MAX_PATH);
  const std::wstring path = program;
  return path.substr(0, path.rfind(L'\\') + 1);
}

TEST(SimulatedLibrary, ExportsWhatTheProductDoesAndItsControl) {
  const HMODULE simulator = GetModuleHandleW((Folder() + L"miraintf.dll").c_str());
  ASSERT_NE(simulator, nullptr) << "the program found another one";
  const std::wstring product_file = Folder() + L"..\\miraintf.dll";
  const HMODULE product =
      LoadLibraryExW(product_file.c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
  ASSERT_NE(product, nullptr);
  ASSERT_NE(product, simulator);
  std::set<std::string> expected = ModuleHeaders(product).Exports();
  EXPECT_FALSE(expected.contains("mira_sim_control"));
  EXPECT_GT(expected.size(), 100u);
  expected.insert("mira_sim_control");
  EXPECT_EQ(ModuleHeaders(simulator).Exports(), expected);
  FreeLibrary(product);
}

}  // namespace

#endif  // defined(_WIN32)
