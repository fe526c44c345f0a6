#include "client/nearest.h"

#include <algorithm>
#include <numeric>

#include "bytes/text.h"

namespace mira::client {
namespace {

// How many letters must be added, taken away or replaced to turn one text into the other.
std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool is_same = bytes::Lower(a[i - 1]) == bytes::Lower(b[j - 1]);
      const std::size_t substituted = diagonal + (is_same ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, substituted});
    }
  }
  return row.back();
}

}  // namespace

std::optional<std::string> Nearest(const std::string& word, const std::vector<std::string>& names) {
  constexpr std::size_t kNear = 2;
  constexpr std::size_t kLongestWord = 64;
  if (word.size() > kLongestWord) return std::nullopt;
  const auto nearest = std::min_element(
      names.begin(), names.end(),
      [&word](const auto& a, const auto& b) { return Distance(word, a) < Distance(word, b); });
  if (nearest == names.end() || Distance(word, *nearest) > kNear) return std::nullopt;
  return *nearest;
}

}  // namespace mira::client
