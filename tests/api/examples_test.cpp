// Every example of the help texts and of the documentation does what it says.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "console/outline.h"
#include "tests/support/command_line.h"
#include "tests/support/console_program.h"

namespace mira::console {
namespace {

using test::Mira;
using test::ProgramResult;

struct Example {
  std::string place;
  std::string line;
};

std::string Trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find_last_not_of(" \r") + 1 - begin);
}

// The command lines in a text: those that are indented and begin with the program.
void Collect(const std::string& place, std::istream& text, std::vector<Example>& examples) {
  for (std::string line; std::getline(text, line);) {
    if (!line.starts_with(' ')) continue;
    line = Trimmed(line);
    for (const std::string start : {"$ ", "./dev run -- "}) {
      if (line.starts_with(start))
        line = (start == "$ " ? "" : "mira ") + line.substr(start.size());
    }
    // What has brackets, or a word in capitals for a value, shows a form and is no example.
    const std::string plain = line.substr(0, line.find('#'));
    const bool is_form =
        plain.find("...") != std::string::npos || plain.find(" [") != std::string::npos ||
        plain.find(" FILE") != std::string::npos || plain.find(" NAME") != std::string::npos ||
        plain.find(" PATH") != std::string::npos || plain.find(" LIST") != std::string::npos;
    if (line.starts_with("mira ") && !is_form) examples.push_back({place, line});
  }
}

std::vector<Example> AllExamples() {
  std::vector<Example> examples;
  for (const OutlineCommand& command : Outline()) {
    std::istringstream footer(command.footer);
    const std::size_t before = examples.size();
    Collect(command.path + " --help", footer, examples);
    if (command.verbs.empty()) {
      EXPECT_GT(examples.size(), before) << command.path << " has no example";
    }
  }
  const std::filesystem::path root = MIRA_SOURCES;
  std::vector<std::filesystem::path> files = {root / "README.md", root / "CONTRIBUTING.md"};
  for (const auto& entry : std::filesystem::directory_iterator(root / "docs")) {
    if (entry.path().extension() == ".md") files.push_back(entry.path());
  }
  for (const auto& file : files) {
    std::ifstream text(file);
    EXPECT_TRUE(text.good()) << file;
    Collect(file.filename().string(), text, examples);
  }
  return examples;
}

// Where the examples find their files and variables, for a scope.
class Place {
 public:
  Place() : before_(std::filesystem::current_path()) {
    std::filesystem::create_directory(kFolder);
    std::filesystem::current_path(kFolder);
    Mira({"--sim", "smbios", "--save", "pc.rsmb"});
    Mira({"--sim", "attr", "export", "pc.json"});
    Mira({"--sim", "sim", "save", "before.state"});
    Mira({"--sim", "snapshot", "pc.snapshot"});
    Mira({"--sim=desktop", "snapshot", "other.snapshot"});
    Mira({"state", "from", "pc.snapshot", "wanted.state"});
    Write("battery.json", Mira({"--sim", "battery", "show", "--json"}).out);
    Write("option.hex", kOption);
    Write("Boot0001.bin", kOption);
    Write("kiosk.json", R"({"name": "kiosk", "base": "locked"})");
    Write("state.json", R"({"attributes": {"FanFloor": 30}, "tags": {"asset": "NF-004712"}})");
    Write("state-with-secrets.json",
          R"({"state": {"attributes": {"FanFloor": 30}}, "secrets": {"password": "setup1"}})");
    Write("owner.txt", "Secret1234\n");
    Write("old.txt", "setup1\n");
    Write("secret.txt", "drive1\n");
    Write("new.txt", "Fresh1\n");
    Set("SETUP_PW", "setup1");
    Set("SYSTEM_PW", "system1");
    Set("DRIVE_PW", "drive1");
    Set("NEW", "Fresh1");
  }
  ~Place() {
    std::filesystem::current_path(before_);
    std::error_code error;
    std::filesystem::remove_all(kFolder, error);
  }
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;

  static void Set(const char* name, const char* value) {
#ifdef _WIN32
    _putenv_s(name, value);
#else
    setenv(name, value, 1);
#endif
  }
  static std::string Content(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    EXPECT_TRUE(file.good()) << name;
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  static constexpr char kFolder[] = "examples of the test";
  static constexpr char kOption[] =
      "01000000 1000 4400690073006b000000 02010c00d041030a00000000 7fff0400";
  static void Write(const char* name, const std::string& content) {
    std::ofstream(name, std::ios::binary) << content;
  }
  std::filesystem::path before_;
};

// Examples on this PC run on the simulated one that has what they need.
std::string MachineFor(const std::vector<std::string>& words) {
  const std::set<std::string> all(words.begin(), words.end());
  const bool has_password = all.count("--password-file") + all.count("--password-env") > 0;
  return has_password || all.count("verify") > 0 ? "--sim=locked" : "--sim";
}

// What an example ends with, where that is not 0.
int StatusOf(const std::vector<std::string>& words) {
  const bool lacks_calls =
      std::find(words.begin(), words.end(), "--sim=no-calling-interface") != words.end();
  return lacks_calls ? 4 : 0;
}

// What a person would type: the secrets that no option gives, and the answers of the test console.
// The words get the options with which a program gives the secrets.
std::string TypedFor(std::vector<std::string>& words) {
  const auto has = [&words](const std::string& word) {
    return std::find(words.begin(), words.end(), word) != words.end();
  };
  const auto gives = [&words](const std::string& start) {
    return std::any_of(words.begin(), words.end(),
                       [&start](const auto& word) { return word.starts_with(start); });
  };
  std::string typed;
  const bool opens_drive = has("hdd") && (has("verify") || has("clear"));
  if ((has("verify") || has("--key-arg") || opens_drive) && !gives("--password-")) {
    words.emplace_back("--password-stdin");
    typed += has("hdd") ? "drive1\n" : "setup1\n";
  }
  if (opens_drive && !gives("--admin-password-")) {
    words.emplace_back("--admin-password-stdin");
    typed += "setup1\n";
  }
  if (has("--new-password-stdin")) typed += "drive1\n";
  if (has("--path")) typed += "7fff0400\n";
  if (!has("console")) return typed;
  if (has("10")) return typed + "0\n";                 // the status of the pre-boot users
  if (has("12")) return typed + "0\n4\n3\n2\n1\n0\n";  // an order of the first list
  return typed + "0\n0\n0x70\n0\n0\n0\n\n";            // one token's value, and the end
}

TEST(Examples, DoWhatTheySay) {
  const std::vector<Example> examples = AllExamples();
  EXPECT_GT(examples.size(), 90U);
  const Place place;
  std::set<std::string> seen;
  for (const Example& example : examples) {
    SCOPED_TRACE(example.place + ": " + example.line);
    if (!seen.insert(example.line).second) continue;
    test::CommandLine taken = test::TakeApart(example.line);
    std::vector<std::string>& words = taken.words;
    words.erase(words.begin());
    const auto has = [&words](const std::string& start) {
      return std::any_of(words.begin(), words.end(),
                         [&start](const auto& word) { return word.starts_with(start); });
    };
    if (has("--real")) continue;  // of the PC under it nothing is known
#ifdef _WIN32
    // The test console's prompts read the DLL's standard input, which is not the test's.
    if (has("console")) continue;
#endif
    if (!has("--sim")) words.insert(words.begin(), MachineFor(words));
    // Nobody is there to answer a question, or to type a password.
    if (!has("--yes") && !has("--what-if")) words.emplace_back("--yes");
    const std::string typed = TypedFor(words);
    Place::Set("OLD", has("10") ? "system1" : "setup1");
    const bool is_redirected = !taken.input_file.empty();
    const ProgramResult result =
        Mira(words, is_redirected ? Place::Content(taken.input_file) : typed);
    EXPECT_EQ(result.status, StatusOf(words)) << result.err << result.out;
  }
}

}  // namespace
}  // namespace mira::console
