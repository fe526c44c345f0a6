#include "client/smbios_text.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <limits>
#include <optional>
#include <sstream>
#include <string>

#include "bytes/text.h"
#include "client/smbios_file.h"

namespace mira::client {
namespace {

using Bytes = std::vector<std::uint8_t>;

// No dump of a table is as long as this.
constexpr std::size_t kLargestTable = 64 * 1024 * 1024;

bool ParseHex(std::string_view digits, std::size_t& value) {
  const auto parsed = bytes::ParseDigits(digits, 16, std::numeric_limits<std::size_t>::max());
  if (parsed) value = static_cast<std::size_t>(*parsed);
  return parsed.has_value();
}

bool AppendPairs(std::string_view digits, Bytes& bytes) {
  const auto added = bytes::ParseHexText(digits);
  if (added) bytes.insert(bytes.end(), added->begin(), added->end());
  return added.has_value();
}

std::vector<std::string> Words(std::string_view text) {
  std::istringstream in{std::string(text)};
  return {std::istream_iterator<std::string>(in), {}};
}

struct Line {
  std::optional<std::size_t> offset;
  Bytes bytes;
};

// One line of a dump; nothing when it is none.
std::optional<Line> ParseLine(std::string_view text) {
  Line line;
  const std::size_t bar = text.find('|');
  const std::size_t colon = text.find(':');
  if (bar != std::string_view::npos) text = text.substr(0, bar);
  if (colon < text.size()) {
    std::size_t offset = 0;
    if (!ParseHex(text.substr(0, colon), offset)) return std::nullopt;
    line.offset = offset;
    text = text.substr(std::min(text.size(), colon + 2));
    text = text.substr(0, text.find("  "));
  }
  std::vector<std::string> words = Words(text);
  // Without a colon, an offset shows by being longer than the pairs behind it.
  if (!line.offset && words.size() > 1 && words[0].size() >= 6 && words[1].size() == 2) {
    std::size_t offset = 0;
    if (!ParseHex(words[0], offset)) return std::nullopt;
    line.offset = offset;
    words.erase(words.begin());
  }
  for (const std::string& word : words) {
    if (!AppendPairs(word, line.bytes)) return std::nullopt;
  }
  return line;
}

// Takes the next line off the text.
std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  const std::string_view line = text.substr(0, end);
  text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  return bytes::Trimmed(line, " \t\r");
}

}  // namespace

Bytes FromHexDump(std::string_view text) {
  Bytes result;
  Bytes last;
  bool repeats = false;
  bool has_offsets = false;
  while (!text.empty()) {
    const std::string_view line_text = TakeLine(text);
    if (line_text.empty()) continue;
    if (line_text == "*") {
      repeats = true;
      continue;
    }
    std::size_t end = 0;
    // Dumps with offsets end in one that has no bytes behind it.
    if (has_offsets && ParseHex(line_text, end) && line_text.size() > 2) {
      if (end < result.size() || end > kLargestTable) return {};
      while (repeats && !last.empty() && result.size() + last.size() <= end) {
        result.insert(result.end(), last.begin(), last.end());
      }
      return end == result.size() ? result : Bytes();
    }
    std::optional<Line> line = ParseLine(line_text);
    if (!line) return {};
    if (line->offset) {
      has_offsets = true;
      if (*line->offset > kLargestTable) return {};
      while (repeats && !last.empty() && result.size() + last.size() <= *line->offset) {
        result.insert(result.end(), last.begin(), last.end());
      }
      if (*line->offset != result.size()) return {};
    }
    repeats = false;
    result.insert(result.end(), line->bytes.begin(), line->bytes.end());
    last = std::move(line->bytes);
  }
  return result;
}

Bytes FromListing(std::string_view text) {
  constexpr std::string_view kStructure = "Handle 0x";
  constexpr std::string_view kFormattedMark = "Header and Data:";
  constexpr std::string_view kStringsMark = "Strings:";
  if (text.find(kFormattedMark) == std::string_view::npos) return {};
  unsigned major = 0;
  unsigned minor = 0;
  enum class Section { kNone, kFormatted, kStrings } section = Section::kNone;
  Bytes table;
  bool has_strings = false;
  bool is_text = false;  // each string's bytes are followed by its characters
  const auto finish = [&] {
    if (section == Section::kNone) return;
    if (!has_strings) table.push_back(0);
    table.push_back(0);
  };
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    if (is_text) {
      is_text = false;
    } else if (line.starts_with(kStructure)) {
      finish();
      section = Section::kNone;
      has_strings = false;
    } else if (line == kFormattedMark) {
      section = Section::kFormatted;
    } else if (line == kStringsMark) {
      section = Section::kStrings;
    } else if (section == Section::kNone) {
      std::sscanf(std::string(line).c_str(), "SMBIOS %2u.%2u", &major, &minor);
    } else {
      Bytes bytes;
      for (const std::string& word : Words(line)) {
        if (word.size() != 2 || !AppendPairs(word, bytes)) return {};
      }
      if (section == Section::kStrings && !bytes.empty()) {
        has_strings = true;
        is_text = bytes.back() == 0;
      }
      table.insert(table.end(), bytes.begin(), bytes.end());
    }
  }
  finish();
  return WithHeader(RealVersion(major, minor), table.size(), table);
}

}  // namespace mira::client
