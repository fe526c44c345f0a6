#ifndef MIRA_TESTS_SUPPORT_CONSOLE_CAPTURE_H_
#define MIRA_TESTS_SUPPORT_CONSOLE_CAPTURE_H_

#include <iostream>
#include <sstream>
#include <string>

namespace mira::test {

// Puts a text in place of standard input and catches standard output for a scope. Works where test
// and library share their standard streams, that is, where the library is linked statically.
class ConsoleCapture {
 public:
  explicit ConsoleCapture(const std::string& input = "")
      : input_(input),
        in_before_(std::cin.rdbuf(input_.rdbuf())),
        out_before_(std::cout.rdbuf(output_.rdbuf())) {
    std::cin.clear();
  }
  ~ConsoleCapture() {
    std::cin.rdbuf(in_before_);
    std::cin.clear();
    std::cout.rdbuf(out_before_);
  }
  ConsoleCapture(const ConsoleCapture&) = delete;
  ConsoleCapture& operator=(const ConsoleCapture&) = delete;

  std::string Output() const { return output_.str(); }

 private:
  std::istringstream input_;
  std::ostringstream output_;
  std::streambuf* in_before_;
  std::streambuf* out_before_;
};

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_CONSOLE_CAPTURE_H_
