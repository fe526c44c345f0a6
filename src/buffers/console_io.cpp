#include "buffers/console_io.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <string_view>
#include <utility>

#include "buffers/prompt_input.h"
#include "bytes/secure.h"
#include "bytes/text.h"
#include "bytes/utf16.h"

namespace mira::buffers {
namespace {

bool input_ended = false;

}  // namespace

bool InputEnded() noexcept { return input_ended; }

}  // namespace mira::buffers

namespace mira::console_io {
namespace {

constexpr std::string_view kBlanks = " \t";

// Where wide output goes as long as the host has not put another buffer in its place.
std::wstreambuf* const kWideStandardOutput = std::wcout.rdbuf();

// False when the input ended with nothing read. A line that outgrows its memory leaves no copy of
// its parts behind.
bool ReadLine(bytes::SecureString& line) {
  line.Clear();
  for (char c = 0; std::cin.get(c);) {
    if (c == '\n') return true;
    if (line.size() == line.str().capacity()) {
      bytes::SecureString longer;
      longer.str().reserve(2 * line.size());
      longer.str().assign(line.str());
      line = std::move(longer);
    }
    line.str().push_back(c);
  }
  return !line.empty();
}

// Asks until `accept` takes a line.
template <typename Accept>
bool Ask(const char* prompt, const Accept& accept) {
  bytes::SecureString line;
  line.str().reserve(256);
  for (;;) {
    std::cout << prompt << std::flush;
    buffers::input_ended = !ReadLine(line);
    if (buffers::input_ended) return false;
    std::string_view answer = line;
    if (answer.ends_with('\r')) answer.remove_suffix(1);
    if (accept(answer)) return true;
  }
}

bool TakeNumber(std::string_view answer, int base, std::uint32_t& value) {
  std::string_view text = bytes::Trimmed(answer, kBlanks);
  if (base == 16) text = bytes::WithoutHexPrefix(text).value_or(text);
  const auto parsed = bytes::ParseDigits(text, base, std::numeric_limits<std::uint32_t>::max());
  if (parsed) value = static_cast<std::uint32_t>(*parsed);
  return parsed.has_value();
}

}  // namespace

bool AskHex(const char* prompt, std::uint32_t& value) {
  return Ask(prompt, [&](std::string_view answer) { return TakeNumber(answer, 16, value); });
}

bool AskNumber(const char* prompt, std::uint32_t& value, std::uint32_t lowest,
               std::uint32_t highest) {
  return Ask(prompt, [&](std::string_view answer) {
    std::uint32_t parsed = 0;
    if (!TakeNumber(answer, 10, parsed) || parsed < lowest || parsed > highest) return false;
    value = parsed;
    return true;
  });
}

bool AskNumbers(const char* prompt, std::vector<std::uint32_t>& values, std::size_t count,
                std::uint32_t highest) {
  values.clear();
  if (count == 0) std::cout << prompt << std::flush;
  while (values.size() < count) {
    const bool answered = Ask(values.empty() ? prompt : "", [&](std::string_view answer) {
      const std::size_t before = values.size();
      for (std::size_t begin = answer.find_first_not_of(kBlanks); begin != std::string_view::npos;
           begin = answer.find_first_not_of(kBlanks)) {
        answer.remove_prefix(begin);
        const std::size_t end = std::min(answer.find_first_of(kBlanks), answer.size());
        std::uint32_t parsed = 0;
        if (!TakeNumber(answer.substr(0, end), 10, parsed) || parsed > highest ||
            values.size() == count) {
          values.resize(before);
          return false;
        }
        values.push_back(parsed);
        answer.remove_prefix(end);
      }
      return values.size() > before;
    });
    if (!answered) return false;
  }
  return true;
}

bool AskText(const char* prompt, std::string& text, std::size_t longest) {
  return Ask(prompt, [&](std::string_view answer) {
    if (answer.size() > longest) return false;
    bytes::Wipe(text);
    text.assign(answer);
    return true;
  });
}

bool AskWord(const char* prompt, std::string& text) {
  return Ask(prompt, [&](std::string_view answer) {
    answer.remove_prefix(std::min(answer.find_first_not_of(kBlanks), answer.size()));
    answer = answer.substr(0, answer.find_first_of(kBlanks));
    if (answer.empty()) return false;
    bytes::Wipe(text);
    text.assign(answer);
    return true;
  });
}

bool AskYes(const char* prompt, bool& yes) {
  return Ask(prompt, [&](std::string_view answer) {
    const std::size_t first = answer.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return false;
    yes = answer[first] == 'y' || answer[first] == 'Y';
    return true;
  });
}

void WriteWideLine(std::u16string_view text) {
  std::cout << std::flush;
  if (std::wcout.rdbuf() != kWideStandardOutput) {
    std::wcout << bytes::Wide(text) << std::endl;
    if (std::wcout) return;
    // Its locale has no such characters.
    std::wcout.clear();
  }
  std::cout << bytes::Utf8(text) << std::endl;
}

}  // namespace mira::console_io
