#ifndef MIRA_TESTS_SUPPORT_COMMAND_LINE_H_
#define MIRA_TESTS_SUPPORT_COMMAND_LINE_H_

#include <string>
#include <vector>

namespace mira::test {

// A command line as a shell takes it apart: words, with quotes removed; "<" and its file; whatever
// stands behind "|" or ">" is cut off, and so is a comment.
struct CommandLine {
  std::vector<std::string> words;
  std::string input_file;
};

inline CommandLine TakeApart(const std::string& line) {
  std::vector<std::string> words(1);
  bool is_word = false;
  char quote = 0;
  for (const char c : line) {
    if (quote != 0) {
      if (c == quote) {
        quote = 0;
      } else {
        words.back() += c;
      }
    } else if (c == '\'' || c == '"') {
      quote = c;
      is_word = true;
    } else if (c == ' ') {
      if (is_word) words.emplace_back();
      is_word = false;
    } else if (!is_word && (c == '#' || c == '|' || c == '>')) {
      break;
    } else {
      words.back() += c;
      is_word = true;
    }
  }
  if (!is_word) words.pop_back();
  CommandLine taken;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "<" && i + 1 < words.size()) {
      taken.input_file = words[++i];
    } else {
      taken.words.push_back(words[i]);
    }
  }
  return taken;
}

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_COMMAND_LINE_H_
