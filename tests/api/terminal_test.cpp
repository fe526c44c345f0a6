// The program at a terminal, driven as a person would: prompts, hidden answers, questions.

#include <gtest/gtest.h>

#if !defined(_WIN32)

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/support/console_program.h"

namespace mira {
namespace {

// The program in a terminal of its own.
class Terminal {
 public:
  explicit Terminal(std::vector<std::string> arguments) {
    child_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
    if (child_ != 0) return;
    arguments.insert(arguments.begin(), MIRA_PROGRAM);
    std::vector<char*> words;
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    setenv("MIRA_SIM_STATE", "", 1);  // a new machine each time
    execv(words[0], words.data());
    _exit(127);
  }
  ~Terminal() { close(terminal_); }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  // Waits until the text shows, and answers it. False when it does not.
  bool Answer(const std::string& prompt, const std::string& answer) {
    while (screen_.find(prompt, answered_) == std::string::npos) {
      if (!Read()) return false;
    }
    answered_ = screen_.size();
    const std::string line = answer + "\n";
    return write(terminal_, line.data(), line.size()) == static_cast<ssize_t>(line.size());
  }

  // The exit status, once the program has ended; what it showed stands in Screen().
  int End() {
    while (Read()) {
    }
    int status = 0;
    waitpid(child_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }
  const std::string& Screen() const { return screen_; }
  bool Echoes() const {
    termios mode{};
    tcgetattr(terminal_, &mode);
    return (mode.c_lflag & ECHO) != 0;
  }

 private:
  bool Read() {
    constexpr int kMilliseconds = 20000;
    pollfd ready{terminal_, POLLIN, 0};
    char block[4096];
    if (poll(&ready, 1, kMilliseconds) <= 0) return false;
    const ssize_t size = read(terminal_, block, sizeof(block));
    if (size <= 0) return false;
    screen_.append(block, static_cast<std::size_t>(size));
    return true;
  }

  int terminal_ = -1;
  pid_t child_ = -1;
  std::string screen_;
  std::size_t answered_ = 0;
};

TEST(Terminal, HidesPasswordsAndAsksBeforeAChange) {
  Terminal terminal({"--sim=locked", "password", "change", "--class", "9"});
  EXPECT_TRUE(terminal.Answer("Current password : ", "setup1"));
  EXPECT_TRUE(terminal.Answer("New password : ", "brandnew"));
  EXPECT_TRUE(terminal.Answer("New password again : ", "brandnew"));
  EXPECT_TRUE(terminal.Answer("Write this? [y/N] ", "y"));
  EXPECT_EQ(terminal.End(), 0) << terminal.Screen();
  EXPECT_NE(terminal.Screen().find("was changed"), std::string::npos) << terminal.Screen();
  EXPECT_EQ(terminal.Screen().find("setup1"), std::string::npos);
  EXPECT_EQ(terminal.Screen().find("brandnew"), std::string::npos);
}

TEST(Terminal, TakesNoForAnAnswer) {
  Terminal terminal({"--sim", "password", "change", "--class", "9"});
  EXPECT_TRUE(terminal.Answer("New password : ", "brandnew"));
  EXPECT_TRUE(terminal.Answer("New password again : ", "brandnew"));
  EXPECT_TRUE(terminal.Answer("Write this? [y/N] ", "n"));
  EXPECT_EQ(terminal.End(), 8);
  EXPECT_NE(terminal.Screen().find("Nothing was written"), std::string::npos);
}

TEST(Terminal, ShowsAgainWhenAPromptIsInterrupted) {
  Terminal terminal({"--sim=locked", "password", "verify", "--class", "9"});
  EXPECT_TRUE(terminal.Answer("Password : ", "\x03"));  // Ctrl+C
  EXPECT_EQ(terminal.End(), -SIGINT);
  EXPECT_TRUE(terminal.Echoes());
}

TEST(Terminal, AsksOnceForAReadOfAnyLength) {
  Terminal terminal({"--sim", "console", "3", "11"});
  EXPECT_TRUE(terminal.Answer("Boot List (from Class 3, Select 9) : ", "1"));
  EXPECT_EQ(terminal.End(), 0);
  EXPECT_NE(terminal.Screen().find("Load Option Item Count : 9"), std::string::npos)
      << terminal.Screen();
}

// The pre-boot database, from the key that opens it to a user's deletion.
TEST(Terminal, RunsTheTestConsole) {
  Terminal terminal({"--sim=pre-boot", "console"});
  EXPECT_TRUE(terminal.Answer("Password (empty: calls carry no key) : ", ""));
  EXPECT_TRUE(terminal.Answer("Class : ", "10"));
  EXPECT_TRUE(terminal.Answer("Select : ", "7"));
  EXPECT_TRUE(terminal.Answer("Enter the Function (0 - Status, 1 - Get, 2 - Clear) : ", "3"));
  EXPECT_TRUE(terminal.Answer("Enter the Function (0 - Status, 1 - Get, 2 - Clear) : ", "1"));
  EXPECT_TRUE(terminal.Answer("Enter the Password : ", "system1"));
  EXPECT_TRUE(terminal.Answer("Class : ", "10"));
  // The key is the second result word, lowest byte first.
  unsigned bytes[4] = {};
  const std::size_t word = terminal.Screen().find("cbRES2 : Byte 0 - ");
  ASSERT_NE(word, std::string::npos) << terminal.Screen();
  ASSERT_EQ(std::sscanf(terminal.Screen().c_str() + word,
                        "cbRES2 : Byte 0 - %x\t Byte 1 - %x\t Byte 2 - %x\t Byte 3 - %x", &bytes[0],
                        &bytes[1], &bytes[2], &bytes[3]),
            4);
  char key[16];
  std::snprintf(key, sizeof(key), "%02x%02x%02x%02x", bytes[3], bytes[2], bytes[1], bytes[0]);

  EXPECT_TRUE(terminal.Answer("Select : ", "8"));
  EXPECT_TRUE(
      terminal.Answer("Enter the PBA Config Key (See cbSelect = 7 ; Function = 1) : 0x", key));
  EXPECT_TRUE(terminal.Answer("Enter the type of User ID (0 - Binary ; 1 - ASCIIZ) : ", "1"));
  EXPECT_TRUE(terminal.Answer("Enter the User ID or User Name (in ASCIIZ format) : ", "bert"));
  EXPECT_TRUE(terminal.Answer("Enter the type of Passphrase (0 - Binary ; 1 - ASCIIZ) : ", "1"));
  EXPECT_TRUE(terminal.Answer("Enter the Passpharse : ", "pw"));
  EXPECT_TRUE(terminal.Answer("(see cbSelect = 7, Function 0) : 0x", "3"));
  EXPECT_TRUE(terminal.Answer("(subset of Permitted) : 0x", "1"));
  EXPECT_TRUE(terminal.Answer("Class : ", "10"));
  EXPECT_NE(terminal.Screen().find("ASCIIZ User ID is : bert"), std::string::npos);

  EXPECT_TRUE(terminal.Answer("Select : ", "9"));
  EXPECT_TRUE(terminal.Answer("Function = 1) : 0x", "1"));
  EXPECT_TRUE(terminal.Answer("Enter the type of User ID (0 - Binary ; 1 - ASCIIZ) : ", "1"));
  EXPECT_TRUE(terminal.Answer("Enter the User ID or User Name (in ASCIIZ format) : ", "bert"));
  EXPECT_TRUE(terminal.Answer("Class : ", ""));
  EXPECT_EQ(terminal.End(), 0);
  EXPECT_NE(terminal.Screen().find("Incorrect PBA Config Key!"), std::string::npos);
  EXPECT_EQ(terminal.Screen().find("system1"), std::string::npos) << "hidden";
}

// Where answers come from a pipe, the last one may lack its line end.
TEST(TestConsole, TakesItsAnswersFromAPipe) {
  const test::TemporaryFile good("setup1\n");
  struct Case {
    std::vector<std::string> arguments;
    const char* answers;
    int status;
    const char* said;
  };
  const std::string& file = good.path();
  const Case cases[] = {
      {{"1", "0", "--password-file", file}, "70\n1\n0\n0\n", 5, "Invalid security key!"},
      {{"1", "0", "--password-file", file, "--key-arg", "3"},
       "70\n1\n0\n0\n",
       0,
       "completed successfully!"},
      {{"1", "0", "--key-arg", "3"}, "70\n1\n0\n0\n", 5, "A password is needed"},
      {{"1", "0", "--key-arg", "5"}, "", 2, "argument word"},
      {{"0", "0"}, "70\n0\n0\n0", 0, "completed successfully!"},
      {{"0", "0"}, "70\n0\n0\n", 2, "The input ended"},
      {{"10", "28"}, "", 4, "Command 10/28 has no prompts."},
      {{"9", "5"}, "4\nlong!\nother", 6, "cannot be made of these answers"},
      {{"9", "5"}, "4\nlong", 2, "The input ended"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments) + c.answers);
    std::vector<std::string> arguments = {"--sim=locked", "console"};
    arguments.insert(arguments.end(), c.arguments.begin(), c.arguments.end());
    const test::ProgramResult result = test::Mira(arguments, c.answers);
    EXPECT_EQ(result.status, c.status) << result.err;
    EXPECT_NE((result.out + result.err).find(c.said), std::string::npos)
        << result.out << result.err;
  }
}

}  // namespace
}  // namespace mira

#endif  // !defined(_WIN32)
