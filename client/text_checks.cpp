#include "client/text_checks.h"

#include <algorithm>

#include "client/error.h"

namespace mira::client {

void RequireAscii(const std::string& text, const std::string& target) {
  if (std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; })) return;
  throw Error(kInvalidValue, "not-ascii",
              "The text has characters other than printable ASCII ones.", target);
}

void RequireLength(const std::string& text, std::size_t longest, const std::string& target) {
  if (text.size() <= longest) return;
  throw Error(kInvalidValue, "too-long",
              "The text has " + std::to_string(text.size()) + " characters; at most " +
                  std::to_string(longest) + " are possible.",
              target)
      .With("length", text.size())
      .With("maxLength", longest);
}

}  // namespace mira::client
