// What shells offer when Tab is pressed, and the manual page.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "console/commands.h"
#include "console/outline.h"
#include "tests/support/console_program.h"

namespace mira::console {
namespace {

using test::Document;
using test::Mira;
using test::TemporaryFile;

#ifndef _WIN32

std::vector<std::string> RunLines(const std::string& command) {
  std::vector<std::string> lines;
  std::FILE* const pipe = popen(command.c_str(), "r");
  std::string text;
  for (int c = 0; pipe != nullptr && (c = std::fgetc(pipe)) != EOF;) {
    if (c == '\n') {
      lines.push_back(text);
      text.clear();
    } else {
      text += static_cast<char>(c);
    }
  }
  EXPECT_EQ(pclose(pipe), 0);
  return lines;
}

// bash itself: sources the script and calls the function as readline does.
struct Bash {
  explicit Bash(const std::vector<std::string>& more = {})
      : script([&more] {
          std::vector<std::string> arguments = {"completion", "bash"};
          arguments.insert(arguments.end(), more.begin(), more.end());
          return Mira(arguments).out;
        }()) {}

  // What is offered behind a line, whose last word is being typed; `calls` gets the calls of the
  // program that were made to find it.
  std::vector<std::string> Offers(const std::string& line, std::string* calls = nullptr) {
    const TemporaryFile log;
    const TemporaryFile runner(
        "source " + script.path() + "\nmira() { printf '%s\\n' \"$*\" >>" + log.path() +
        "; MIRA_SIM_STATE= " MIRA_PROGRAM
        " \"$@\"; }\n"
        "line=$1\nIFS=$'\\n' read -r -d '' -a COMP_WORDS < <(\n"
        "  printf '%s' \"$line\" | sed 's/=/\\n=\\n/g; s/ /\\n/g' | sed '/^$/d')\n"
        "case $line in *\" \") COMP_WORDS+=(\"\") ;; esac\n"
        "COMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_mira mira\n"
        "for offer in \"${COMPREPLY[@]}\"; do printf '%s\\n' \"$offer\"; done\n");
    auto offers = RunLines("bash --norc " + runner.path() + " '" + line + "'");
    if (calls != nullptr) *calls = log.Content();
    return offers;
  }

  TemporaryFile script;
};

TEST(BashCompletion, OffersWhatTheParserKnows) {
  Bash bash;
  struct Case {
    const char* line;
    std::vector<std::string> offers;
  };
  const Case cases[] = {
      {"mira inv", {"inventory"}},
      {"mira boot l", {"list", "legacy"}},
      {"mira boot legacy ", {"show", "set"}},
      {"mira --json id th", {"thin-client"}},
      {"mira boot order --fo", {"--force"}},
      {"mira boot order 0 --wh", {"--what-if"}},
      {"mira smbios --type 17 --at", {"--attributes"}},
      {"mira boot show --kind ", {"uefi", "legacy"}},
      {"mira boot show --kind=u", {"uefi"}},
      {"mira tag show own", {"ownership"}},
      {"mira tag show asset own", {}},
      {"mira --sim=no-c", {"no-calling-interface"}},
      {"mira --val", {"--value"}},
      {"mira --value x ten", {}},
      {"mira nonsense --",
       {"--sim", "--real", "--json", "--value", "--quiet", "--yes", "--what-if"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    std::string calls;
    auto offers = bash.Offers(c.line, &calls);
    if (std::string(c.line) == "mira nonsense --") {
      for (const std::string& offer : c.offers) {
        EXPECT_NE(std::find(offers.begin(), offers.end(), offer), offers.end()) << offer;
      }
    } else {
      EXPECT_EQ(offers, c.offers);
    }
    EXPECT_EQ(calls, "") << "no program is needed for what the script holds";
  }
}

TEST(BashCompletion, AsksSimulatedMachinesOnly) {
  Bash bash;
  std::string calls;
  for (const char* const line :
       {"mira attr get F", "mira --real attr get F", "mira attr set F", "mira boot show ",
        "mira attr reset FanFloor F", "mira boot order L"}) {
    SCOPED_TRACE(line);
    EXPECT_EQ(bash.Offers(line, &calls), std::vector<std::string>());
    EXPECT_EQ(calls, "") << "a real machine was called";
  }
  EXPECT_EQ(bash.Offers("mira --sim attr reset WakeOnLan FanFl", &calls),
            std::vector<std::string>{"FanFloor"});
  EXPECT_EQ(calls, "--sim completion names attr.list\n");
  EXPECT_EQ(bash.Offers("mira --sim=locked boot show Le", &calls),
            std::vector<std::string>{"Legacy\\ Boot"});
  EXPECT_EQ(calls, "--sim=locked completion names boot.list\n");
  for (const char* const list : {"attr.list", "boot.list"}) {
    const auto refused = Mira({"completion", "names", list});
    EXPECT_EQ(refused.status, 2) << "the program itself looks nothing up on this PC, either";
  }
}

TEST(BashCompletion, TakesNamesFromAFile) {
  const TemporaryFile exported(Mira({"--sim", "attr", "export", "-"}).out);
  Bash bash({"--from", exported.path()});
  std::string calls;
  EXPECT_EQ(bash.Offers("mira attr get FanFl", &calls), std::vector<std::string>{"FanFloor"});
  EXPECT_EQ(calls, "");
  const TemporaryFile hostile(
      R"J({"attributes": [{"name": "'; exit 7 #"}, {"name": "$(exit 8)"}]})J");
  Bash careful({"--from", hostile.path()});
  EXPECT_EQ(careful.Offers("mira attr get $"), std::vector<std::string>{"\\$\\(exit\\ 8\\)"});
  const TemporaryFile lists(Mira({"--sim", "boot", "list", "--json"}).out);
  EXPECT_EQ(Bash({"--from", lists.path()}).Offers("mira boot show UEFI"),
            std::vector<std::string>{"UEFI\\ Boot"});
}

TEST(Manual, IsSetWithoutWarnings) {
  if (std::system("command -v groff >/dev/null") != 0) GTEST_SKIP() << "groff is not installed";
  const TemporaryFile page(Mira({"completion", "man"}).out);
  const auto warnings = RunLines("groff -man -Tutf8 -ww -z " + page.path() + " 2>&1");
  EXPECT_EQ(warnings, std::vector<std::string>());
}

#endif

TEST(Completion, KnowsEveryCommandAndOption) {
  const std::string bash = Mira({"completion", "bash"}).out;
  const std::string power_shell = Mira({"completion", "powershell"}).out;
  const std::string manual = Mira({"completion", "man"}).out;
  for (const client::Command& command : Commands()) {
    std::string path = command.name;
    std::replace(path.begin(), path.end(), '.', ' ');
    EXPECT_NE(bash.find("['mira " + path + "']="), std::string::npos) << path;
    EXPECT_NE(power_shell.find("'mira " + path + "' = "), std::string::npos) << path;
  }
  for (const char* const text :
       {"'mira hdd clear --admin-password-file' = @('@file')",
        "'mira boot show --kind' = @('uefi', 'legacy')", "'--sim=workstation'"}) {
    EXPECT_NE(power_shell.find(text), std::string::npos) << text;
  }
  for (const char* const text : {".SS boot legacy set\n", "\\fB\\-\\-stop\\-on\\-error\\fR",
                                 "\n\\fB\\-\\-value\\fR \\fIFIELD\\fR\n", "MIRA_SIM_STATE"}) {
    EXPECT_NE(manual.find(text), std::string::npos) << text;
  }
}

}  // namespace
}  // namespace mira::console
