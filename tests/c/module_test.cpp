// The DLL as a module: what it offers and needs, and how it is loaded and unloaded.

#include <gtest/gtest.h>

#if defined(_WIN32)

#include <algorithm>
#include <set>
#include <sstream>
#include <string>

#include "tests/support/client_module.h"
#include "tests/support/module_headers.h"

namespace mira::test {
namespace {

using Build = ClientModule::Build;

class EachBuild : public testing::TestWithParam<Build> {};

TEST_P(EachBuild, ExportsTheFunctionsAndNothingElse) {
  const ClientModule module(GetParam());
  std::set<std::string> expected = {"mira_abi",     "mira_call",        "mira_cancel",
                                    "mira_close",   "mira_free",        "mira_open",
                                    "mira_request", "mira_status_name", "mira_version"};
  if (GetParam() == Build::kSimulator) expected.insert("mira_sim_control");
  EXPECT_EQ(ModuleHeaders(module.Module()).Exports(), expected);
}

TEST_P(EachBuild, NeedsTheSystemsModulesAlone) {
  const ClientModule module(GetParam());
  const std::set<std::string> system = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll",
                                        "oleaut32.dll", "shell32.dll",  "user32.dll"};
  for (const std::string& name : ModuleHeaders(module.Module()).ImportedModules()) {
    EXPECT_TRUE(system.contains(name)) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(Module, EachBuild, testing::Values(Build::kSimulator, Build::kProduct),
                         [](const auto& tested) {
                           return tested.param == Build::kSimulator ? "Simulator" : "Product";
                         });

TEST(Module, OfTheProductOpensThisPcAlone) {
  const ClientModule product(Build::kProduct);
  mira_handle handle = 0;
  const std::string simulated = "{\"simulated\": \"laptop\"}";
  EXPECT_EQ(product.Functions().open(simulated.data(), static_cast<std::uint32_t>(simulated.size()),
                                     &handle, nullptr, nullptr),
            MIRA_NOT_SUPPORTED);
  ASSERT_EQ(product.Functions().open(nullptr, 0, &handle, nullptr, nullptr), MIRA_DONE);
  // What needs no machine works on any; a machine without this firmware says what it lacks.
  const std::string encode = "{\"command\": \"boot.encode\", \"path\": \"PciRoot(0x0)\"}";
  EXPECT_EQ(
      product.Functions().request(handle, encode.data(), static_cast<std::uint32_t>(encode.size()),
                                  nullptr, 0, nullptr, nullptr, nullptr, nullptr),
      MIRA_DONE);
  const std::string tags = "{\"command\": \"tag.show\"}";
  EXPECT_NE(
      product.Functions().request(handle, tags.data(), static_cast<std::uint32_t>(tags.size()),
                                  nullptr, 0, nullptr, nullptr, nullptr, nullptr),
      MIRA_DONE);
  EXPECT_EQ(product.Functions().close(handle), MIRA_DONE);
}

// A host of the same compiler may have loaded the shared runtime before, which 32-bit mingw's
// start-up code registers exception handlers with: the DLL still finds its own.
TEST(Module, CatchesItsExceptionsBesideASharedRuntime) {
  std::istringstream paths(MIRA_SHARED_RUNTIME);
  HMODULE runtime = nullptr;
  for (std::string path; std::getline(paths, path, '|');) runtime = LoadLibraryA(path.c_str());
  if (runtime == nullptr) GTEST_SKIP() << "the compiler has no shared runtime";
  const ClientModule product(Build::kProduct);
  mira_handle handle = 0;
  EXPECT_EQ(product.Functions().open("[", 1, &handle, nullptr, nullptr), MIRA_USAGE);
}

// Each time it is loaded it is a new one. A host that unloads it too early, with a machine open,
// goes on unharmed.
TEST(Module, IsUnloadedAndLoadedAgain) {
  const std::wstring path = ClientModule::Path(Build::kProduct);
  for (int i = 0; i < 3; ++i) {
    mira_handle handle = 0;
    {
      const ClientModule module(Build::kProduct);
      ASSERT_EQ(module.Functions().open(nullptr, 0, &handle, nullptr, nullptr), MIRA_DONE);
      EXPECT_EQ(handle, 1u);
      ASSERT_EQ(module.Functions().close(handle), MIRA_DONE);
    }
    EXPECT_EQ(GetModuleHandleW(path.c_str()), nullptr);
  }
  {
    const ClientModule module(Build::kProduct);
    mira_handle handle = 0;
    ASSERT_EQ(module.Functions().open(nullptr, 0, &handle, nullptr, nullptr), MIRA_DONE);
  }
  EXPECT_NE(GetModuleHandleW(path.c_str()), nullptr) << "its thread keeps it";
}

}  // namespace
}  // namespace mira::test

#endif
