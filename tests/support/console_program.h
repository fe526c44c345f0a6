#ifndef MIRA_TESTS_SUPPORT_CONSOLE_PROGRAM_H_
#define MIRA_TESTS_SUPPORT_CONSOLE_PROGRAM_H_

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "console/console.h"

namespace mira::test {

// What the console program did with its arguments.
struct ProgramResult {
  int status;
  std::string out;
  std::string err;
};

inline ProgramResult Mira(const std::vector<std::string>& arguments, const std::string& input = "",
                          const std::filesystem::path& machines = {}) {
  std::istringstream in(input);
  std::ostringstream out;
  std::ostringstream err;
  const int status = console::RunConsole(arguments, in, out, err, machines);
  return {status, out.str(), err.str()};
}

// The document of a run with --json.
inline nlohmann::json Document(const ProgramResult& result) {
  EXPECT_EQ(result.err, "") << "with --json everything stands in the document";
  return nlohmann::json::parse(result.out);
}

// A file that is gone at the end of the test.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& content = "") {
    static int count = 0;
    path_ = "mira_test_" + std::to_string(++count) + ".tmp";
    std::ofstream(path_, std::ios::binary) << content;
  }
  ~TemporaryFile() { std::remove(path_.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  const std::string& path() const { return path_; }
  std::string Content() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string path_;
};

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_CONSOLE_PROGRAM_H_
