#include "console/output.h"

#include <algorithm>

#include "bytes/text.h"

namespace mira::console {
namespace {

// Columns are counted in characters, not in bytes.
std::size_t Width(std::string_view utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

char32_t CodePoint(std::string_view character) {
  const auto first = static_cast<unsigned char>(character.front());
  if (character.size() == 1) return first;
  constexpr unsigned kFirstBits[] = {0, 0, 0x1F, 0x0F, 0x07};
  char32_t code = first & kFirstBits[std::min<std::size_t>(character.size(), 4)];
  for (const char c : character.substr(1)) code = code << 6 | (static_cast<unsigned>(c) & 0x3F);
  return code;
}

bool IsHarmless(char32_t code) {
  const bool is_control = code < 0x20 || (code >= 0x7F && code < 0xA0);
  const bool turns_direction = code == 0x061C || code == 0x200E || code == 0x200F ||
                               (code >= 0x202A && code <= 0x202E) ||
                               (code >= 0x2066 && code <= 0x2069);
  const bool breaks_line = code == 0x2028 || code == 0x2029;
  return !is_control && !turns_direction && !breaks_line;
}

std::string EscapeOf(char32_t code) {
  return code < 0x100 ? "\\x" + bytes::HexNumber(code, 2) : "\\u" + bytes::HexNumber(code, 4);
}

}  // namespace

std::string Hex(std::uint64_t value, int digits) {
  return "0x" + bytes::HexNumber(value, static_cast<std::size_t>(digits));
}

std::string Escaped(std::string_view text) {
  const std::string utf8 = ToUtf8(text);
  std::string escaped;
  escaped.reserve(utf8.size());
  for (std::size_t i = 0; i < utf8.size();) {
    std::size_t end = i + 1;
    while (end < utf8.size() && (static_cast<unsigned char>(utf8[end]) & 0xC0) == 0x80) ++end;
    const std::string_view character = std::string_view(utf8).substr(i, end - i);
    const char32_t code = CodePoint(character);
    escaped += IsHarmless(code) ? std::string(character) : EscapeOf(code);
    i = end;
  }
  return escaped;
}

std::filesystem::path ToPath(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string PathText(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

void WriteTable(std::ostream& out, const Rows& rows, const std::vector<std::size_t>& right) {
  Rows cells = rows;
  std::vector<std::size_t> widths;
  for (auto& row : cells) {
    if (widths.size() < row.size()) widths.resize(row.size());
    for (std::size_t i = 0; i < row.size(); ++i) {
      row[i] = Escaped(row[i]);
      widths[i] = std::max(widths[i], Width(row[i]));
    }
  }
  for (const auto& row : cells) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string padding(widths[i] - Width(row[i]), ' ');
      const bool is_right = std::find(right.begin(), right.end(), i) != right.end();
      line += (i == 0 ? "" : "  ") + (is_right ? padding + row[i] : row[i] + padding);
    }
    out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
  }
}

void WriteJson(std::ostream& out, const Json& document) { out << client::ToText(document); }

}  // namespace mira::console
