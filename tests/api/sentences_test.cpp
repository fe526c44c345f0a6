// What goes wrong is said as it is.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "sim/machine.h"
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

TEST(Sentences, NameNothingOfTheProgramsOwn) {
  const ProgramResult result = Mira({"--sim", "call", "5", "3"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err.find("std::"), std::string::npos) << result.err;

  // A class bitmap that cannot be used.
  sim::Profile profile;
  profile.supported_classes = 0x80000001;
  sim::Machine machine(profile);
  const sim::Session session(machine);
  for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
           {"call", "0", "0", "--yes"}, {"tag", "show"}, {"boot", "list"}}) {
    const ProgramResult failed = Mira(words);
    EXPECT_EQ(failed.status, 9);
    EXPECT_NE(failed.err.find("announces its command classes in a way that cannot be used"),
              std::string::npos)
        << failed.err;
    EXPECT_EQ(failed.err.find("stoi"), std::string::npos) << failed.err;
  }
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

// A machine whose faults are kept while the sentences about them are asked for.
class FaultyMachine : public testing::Test {
 protected:
  ~FaultyMachine() override { std::filesystem::remove_all(machines_); }
  ProgramResult Run(std::vector<std::string> words, const std::string& input = "") const {
    words.insert(words.begin(), "--sim");
    return Mira(words, input, machines_);
  }
  void Fail(const std::string& call, const std::string& how) const {
    EXPECT_EQ(Run({"sim", "fault", "add", call, how}).status, 0);
  }

  const std::filesystem::path machines_ = "machines with faults";
};

// Nothing is unknown about a read that brought no answer; of a write it is.
TEST_F(FaultyMachine, LosesAnswersOfReadsAndWrites) {
  Fail("11/0", "--truncate=20");
  const ProgramResult read = Run({"tag", "show", "asset"});
  EXPECT_EQ(read.status, 9);
  EXPECT_NE(read.err.find("was sent and brought no answer."), std::string::npos) << read.err;
  Run({"sim", "fault", "clear"});
  Fail("1/0", "--truncate=20");
  const ProgramResult call = Run({"call", "1", "0", "--arg1", "0x70", "--yes"});
  EXPECT_EQ(call.status, 9);
  EXPECT_NE(call.err.find("whether it was carried out is unknown"), std::string::npos) << call.err;
}

// Without the length that the first answer gives, there is no room for the second: what counts is
// that the first was lost.
TEST_F(FaultyMachine, CutsTheLengthOffAnAnswer) {
  for (const char* const cut : {"--truncate=40", "--truncate=44"}) {
    Fail("3/11", cut);
    const ProgramResult result = Run({"boot", "show", "1"});
    EXPECT_EQ(result.status, 9);
    EXPECT_NE(result.err.find("brought no answer"), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("-6"), std::string::npos) << result.err;
    Run({"sim", "fault", "clear"});
  }
}

// A disk that is full when the answer is printed: whoever reads the sentence knows what was done.
TEST_F(FaultyMachine, SaysWhatWasDoneWhenTheOutputIsLost) {
  struct Case {
    std::vector<std::string> words;
    const char* said;
  };
  const Case cases[] = {
      {{"tag", "show"}, "could not be written: what was asked for is not there."},
      {{"tag", "set", "asset", "A", "--what-if"}, "what was asked for is not there."},
      {{"tag", "set", "asset", "A", "--yes"}, "could not be written, but the change was made."},
      {{"tag", "set", "asset", "B", "--yes", "--json"}, ", but the change was made."},
      {{"tag", "set", "asset", "B", "--yes", "--json"}, "what was asked for is not there."},
      {{"attr", "set", "FanFloor=20", "SiteCode=X", "--yes", "--force", "--json"},
       ", but a part of the change was made."},
      {{"call", "11", "0", "--yes"}, ", but the call was made."},
  };
  for (const Case& c : cases) {
    std::vector<std::string> words = c.words;
    words.insert(words.begin(), "--sim");
    std::istringstream in;
    std::ostream full(nullptr);
    std::ostringstream err;
    const int status = RunConsole(words, in, full, err, machines_);
    EXPECT_NE(status, 0);
    EXPECT_NE(err.str().find(c.said), std::string::npos) << err.str();
  }
}

TEST(Sentences, NameTheMachinesWhereNoneIsCalledSo) {
  struct Case {
    std::vector<std::string> words;
    const char* said;
  };
  const Case cases[] = {
      {{"--sim=nosuch"}, "The machines are: laptop, "},
      {{"--sim=nosuch", "info"}, "The machines are: laptop, "},
      {{"--sim=nosuch", "help"}, "The machines are: laptop, "},
      {{"--sim", "laptop"}, "Did you mean '--sim=laptop'?"},
      {{"sim", "laptop"}, "Did you mean '--sim=laptop'?"},
      {{"info", "--sim", "laptop"}, "Did you mean '--sim=laptop'?"},
  };
  for (const Case& c : cases) {
    const ProgramResult result = Mira(c.words);
    EXPECT_EQ(result.status, 2) << testing::PrintToString(c.words);
    EXPECT_NE(result.err.find(c.said), std::string::npos) << result.err;
  }
}

TEST(Sentences, EndBeforeTheHint) {
  const std::filesystem::path machines = "unreadable machines";
  std::filesystem::create_directories(machines);
  std::ofstream(machines / "laptop.machine") << "{";
  const ProgramResult result = Mira({"--sim", "info"}, "", machines);
  std::filesystem::remove_all(machines);
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.err.find(". 'mira --sim sim reset' starts"), std::string::npos) << result.err;
  EXPECT_EQ(result.err.find(".."), std::string::npos) << result.err;
}

TEST(Sentences, RefusePasswordsInUtf16) {
  const std::string files[] = {std::string("\xFF\xFEs\0e\0\n\0", 8), std::string("s\0e\0\n\0", 6),
                               std::string("\xFE\xFF\0s\0e\0\n", 8), std::string("\0s\0e\0\n", 6)};
  for (const std::string& content : files) {
    const test::TemporaryFile file(content);
    const ProgramResult result = Mira(
        {"--sim=locked", "password", "verify", "--class", "9", "--password-file", file.path()});
    EXPECT_EQ(result.status, 5);
    EXPECT_NE(result.err.find("save the password as ASCII or UTF-8"), std::string::npos)
        << result.err;
  }
}

// The test console, too. In a DLL prompts read that module's own standard input.
#ifndef _WIN32
TEST(Sentences, NameALockOut) {
  sim::Machine machine(*sim::FindProfile("locked"));
  const sim::Session session(machine);
  const std::vector<std::string> verify = {"console", "9", "4"};
  for (int i = 0; i < 3; ++i) Mira(verify, "wrong\n32\n");
  const ProgramResult locked = Mira(verify, "wrong\n32\n");
  EXPECT_NE(locked.out.find("verifies none until the machine restarts"), std::string::npos)
      << locked.out;
  const ProgramResult key =
      Mira({"console", "3", "12", "--key-arg", "3", "--password-stdin"}, "setup1\n");
  EXPECT_EQ(key.status, 5);
  EXPECT_NE(key.err.find("verifies none until the machine restarts"), std::string::npos) << key.err;
}
#endif

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
