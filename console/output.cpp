#include "console/output.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace mira::console {
namespace {

void AppendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | c >> 6);
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | c >> 12);
    out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (c >> 18 & 0x07));
    out += static_cast<char>(0x80 | (c >> 12 & 0x3F));
    out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// The forms of RFC 3629: how the second byte is bounded depends on the first.
bool IsUtf8(std::string_view text) {
  struct Form {
    unsigned char first, last;
    unsigned char second_from, second_to;
    std::size_t length;
  };
  static constexpr Form kForms[] = {
      {0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
      {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
      {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
  };
  for (std::size_t i = 0; i < text.size();) {
    const auto at = [text, i](std::size_t offset) {
      return static_cast<unsigned char>(text[i + offset]);
    };
    const auto* const form = std::find_if(std::begin(kForms), std::end(kForms), [&](const Form& f) {
      return at(0) >= f.first && at(0) <= f.last;
    });
    if (form == std::end(kForms) || text.size() - i < form->length) return false;
    for (std::size_t k = 1; k < form->length; ++k) {
      const unsigned char from = k == 1 ? form->second_from : 0x80;
      const unsigned char to = k == 1 ? form->second_to : 0xBF;
      if (at(k) < from || at(k) > to) return false;
    }
    i += form->length;
  }
  return true;
}

// Columns are counted in characters, not in bytes.
std::size_t Width(std::string_view utf8) {
  return static_cast<std::size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

}  // namespace

std::string Hex(std::uint64_t value, int digits) {
  std::array<char, 16> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, 16).ptr;
  const std::string text(buffer.data(), end);
  const std::size_t width = static_cast<std::size_t>(digits);
  return "0x" + std::string(text.size() < width ? width - text.size() : 0, '0') + text;
}

std::string ToUtf8(std::string_view text) {
  if (IsUtf8(text)) return std::string(text);
  std::string result;
  for (const char c : text) AppendUtf8(result, static_cast<unsigned char>(c));
  return result;
}

std::string ToUtf8(std::wstring_view text) {
  constexpr char32_t kReplacement = 0xFFFD;
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t c = static_cast<char32_t>(text[i]);
    const char32_t next = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) : 0;
    if (c >= 0xD800 && c < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
      c = 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00);
      ++i;
    } else if ((c >= 0xD800 && c < 0xE000) || c > 0x10FFFF) {
      c = kReplacement;
    }
    AppendUtf8(result, c);
  }
  return result;
}

std::filesystem::path ToPath(const std::string& utf8) {
  return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string PathText(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

void WriteTable(std::ostream& out, const Rows& rows, const std::vector<std::size_t>& right) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    if (widths.size() < row.size()) widths.resize(row.size());
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], Width(row[i]));
  }
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string padding(widths[i] - Width(row[i]), ' ');
      const bool is_right = std::find(right.begin(), right.end(), i) != right.end();
      line += (i == 0 ? "" : "  ") + (is_right ? padding + row[i] : row[i] + padding);
    }
    out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
  }
}

void WriteJson(std::ostream& out, const Json& document) {
  out << document.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace mira::console
