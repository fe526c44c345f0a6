#include "console/output.h"

#include <algorithm>

#include "bytes/text.h"
#include "client/report/characters.h"

namespace mira::console {
namespace {

// Columns are counted in characters, not in bytes.
std::size_t Width(std::string_view utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

}  // namespace

std::string Hex(std::uint64_t value, int digits) {
  return "0x" + bytes::HexNumber(value, static_cast<std::size_t>(digits));
}

std::string Escaped(std::string_view text) {
  return client::RewriteCharacters(text, [](std::string_view character, char32_t code) {
    return client::DrivesDisplay(code) ? client::EscapeOf(code) : std::string(character);
  });
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
