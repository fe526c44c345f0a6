#ifndef MIRA_FUZZ_SUPPORT_DISCARD_H_
#define MIRA_FUZZ_SUPPORT_DISCARD_H_

// Where what is shown goes: everything is made, nothing is kept.

#include <iostream>
#include <streambuf>

namespace mira::fuzz {

class DiscardBuffer : public std::streambuf {
 protected:
  int overflow(int character) override { return traits_type::not_eof(character); }
  std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

// Standard output goes nowhere for a scope, and standard input is at its end.
class SilentStreams {
 public:
  SilentStreams() : out_(std::cout.rdbuf(&discard_)), in_(std::cin.rdbuf(nullptr)) {}
  ~SilentStreams() {
    std::cout.rdbuf(out_);
    std::cout.clear();
    std::cin.rdbuf(in_);
    std::cin.clear();
  }
  SilentStreams(const SilentStreams&) = delete;
  SilentStreams& operator=(const SilentStreams&) = delete;

 private:
  DiscardBuffer discard_;
  std::streambuf* out_;
  std::streambuf* in_;
};

}  // namespace mira::fuzz

#endif  // MIRA_FUZZ_SUPPORT_DISCARD_H_
