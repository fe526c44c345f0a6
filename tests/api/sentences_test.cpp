// What goes wrong is said as it is.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/console_program.h"

namespace mira::console {
namespace {

using test::Document;
using test::Mira;
using test::ProgramResult;

TEST(Sentences, ShowControlCharactersOfFilesEscaped) {
  const std::string file = "escapes of the test.json";
  std::ofstream(file, std::ios::binary)
      << R"({"attributes": [{"name": "FanFloor", "value": "\u001b[2J\nforged"}]})";
  const ProgramResult result = Mira({"--sim", "attr", "import", file, "--yes"});
  std::filesystem::remove(file);
  EXPECT_NE(result.status, 0);
  EXPECT_EQ((result.out + result.err).find('\x1B'), std::string::npos);
  EXPECT_EQ(result.err.find("\nforged"), std::string::npos) << result.err;
}

TEST(Sentences, GiveNoResultsOfACallThatWasNotMade) {
  const std::vector<std::string> call = {
      "--sim=locked", "call", "1", "0", "--arg1", "0x70", "--key-arg", "3", "--password-stdin"};
  const ProgramResult text = Mira(call, "wrong\n");
  EXPECT_EQ(text.status, 5);
  EXPECT_EQ(text.out.find("cbRES1"), std::string::npos) << text.out;
  std::vector<std::string> json = call;
  json.emplace_back("--json");
  EXPECT_FALSE(Document(Mira(json, "wrong\n")).contains("results"));
}

TEST(Sentences, NameNoTypesOfTheProgram) {
  const ProgramResult result = Mira({"--sim", "call", "5", "3"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err.find("std::"), std::string::npos) << result.err;
}

// Tables that cannot be fetched are no tables that are not there.
TEST(Sentences, TellUnreadableAttributesFromMissingOnes) {
  const std::filesystem::path machines = "machines of the sentences";
  const auto mira = [&machines](std::vector<std::string> words) {
    words.insert(words.begin(), "--sim");
    return Mira(words, "", machines);
  };
  EXPECT_EQ(mira({"sim", "fault", "add", "5/3", "--completion=-1"}).status, 0);
  const ProgramResult refused = mira({"attr", "list"});
  EXPECT_EQ(refused.status, 11) << refused.err;
  EXPECT_NE(refused.err.find("could not be read"), std::string::npos) << refused.err;
  EXPECT_EQ(Mira({"--sim=no-attributes", "attr", "list"}).status, 4);
  std::filesystem::remove_all(machines);
}

// A profile's texts may be longer than the attribute that shows them.
TEST(Sentences, AreNotEndedByAProfilesLongText) {
  const std::string file = "long of the test.json";
  std::ofstream(file, std::ios::binary)
      << R"({"name": "long", "base": "laptop", "manufacturer": ")" << std::string(40, 'm') << "\"}";
  const ProgramResult result = Mira({"--sim=" + file, "attr", "get", "SystemManufacturer"});
  std::filesystem::remove(file);
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_NE(result.out.find(std::string(32, 'm')), std::string::npos) << result.out;
}

}  // namespace
}  // namespace mira::console
