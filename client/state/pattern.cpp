#include "client/state/pattern.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "bytes/text.h"

namespace mira::client {
namespace {

// The bytes of the first character of UTF-8.
std::size_t CharacterSize(std::string_view text) {
  std::size_t size = 1;
  while (size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) ++size;
  return size;
}

std::optional<std::vector<std::uint64_t>> VersionNumbers(std::string_view text) {
  std::vector<std::uint64_t> numbers;
  for (;;) {
    const std::size_t dot = text.find('.');
    const auto number = bytes::ParseDigits(text.substr(0, dot), 10);
    if (!number) return std::nullopt;
    numbers.push_back(*number);
    if (dot == std::string_view::npos) break;
    text.remove_prefix(dot + 1);
  }
  while (!numbers.empty() && numbers.back() == 0) numbers.pop_back();
  return numbers;
}

}  // namespace

bool IsPattern(std::string_view text) { return text.find_first_of("*?") != std::string_view::npos; }

bool FitsPattern(std::string_view pattern, std::string_view text, LetterCase letters) {
  const auto is_same = [letters](char a, char b) {
    return a == b || (letters == LetterCase::kIgnored && bytes::Lower(a) == bytes::Lower(b));
  };
  // Where to go on when what follows the last star does not fit.
  std::optional<std::string_view> behind_star;
  std::string_view retry;
  while (!text.empty()) {
    if (!pattern.empty() && pattern.front() == '*') {
      pattern.remove_prefix(1);
      behind_star = pattern;
      retry = text;
    } else if (!pattern.empty() && pattern.front() == '?') {
      pattern.remove_prefix(1);
      text.remove_prefix(CharacterSize(text));
    } else if (!pattern.empty() && is_same(pattern.front(), text.front())) {
      pattern.remove_prefix(1);
      text.remove_prefix(1);
    } else if (behind_star) {
      pattern = *behind_star;
      retry.remove_prefix(1);
      text = retry;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*') == std::string_view::npos;
}

std::optional<int> CompareVersions(std::string_view a, std::string_view b) {
  const auto left = VersionNumbers(a);
  const auto right = VersionNumbers(b);
  if (!left || !right) return std::nullopt;
  return *left == *right ? 0
         : std::lexicographical_compare(left->begin(), left->end(), right->begin(), right->end())
             ? -1
             : 1;
}

}  // namespace mira::client
