// The program on machines that files describe.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/console_program.h"

namespace mira {
namespace {

using test::Document;
using test::Mira;
using test::ProgramResult;

TEST(ProfileFiles, AreMachinesForTheProgram) {
  const std::string file = "kiosk of the test.json";
  const auto mira = [&file](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "--sim=" + file);
    return Mira(arguments);
  };
  std::ofstream(file) << R"({"name": "kiosk", "base": "laptop", "biosVersion": "9.9.9"})";
  EXPECT_EQ(mira({"info"}).status, 0);
  EXPECT_NE(mira({"smbios", "--type", "0"}).out.find("9.9.9"), std::string::npos);
  EXPECT_EQ(Document(mira({"sim", "show", "--json"}))["profile"], "kiosk");

  std::ofstream(file) << "{\n\"bufferSize\": -1}";
  const ProgramResult bad = mira({"info"});
  EXPECT_EQ(bad.status, 6);
  EXPECT_NE(bad.err.find("at '/bufferSize' (line 2)"), std::string::npos) << bad.err;
  std::remove(file.c_str());
  EXPECT_EQ(mira({"info"}).status, 6);
}

TEST(BuiltInMachines, AnswerEveryRead) {
  for (const char* const profile : {"desktop", "workstation", "old-firmware", "hostile"}) {
    for (const std::vector<std::string>& command : {std::vector<std::string>{"info"},
                                                    {"smbios"},
                                                    {"tokens"},
                                                    {"boot", "show"},
                                                    {"tag", "show"},
                                                    {"log"},
                                                    {"attr", "list"}}) {
      SCOPED_TRACE(std::string(profile) + " " + command.front());
      std::vector<std::string> arguments = command;
      arguments.insert(arguments.begin(), "--sim=" + std::string(profile));
      const ProgramResult result = Mira(arguments);
      // What a machine lacks is said (4), what it tells wrongly is shown as far as it goes.
      if (std::string(profile) == "hostile") continue;
      EXPECT_TRUE(result.status == 0 || result.status == 4) << result.status << result.err;
    }
  }
}

}  // namespace
}  // namespace mira
