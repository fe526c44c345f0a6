#include "client/snapshot/placeholders.h"

#include <algorithm>

#include "bytes/text.h"

namespace mira::client {
namespace {

constexpr std::size_t kMacPairs = 6;

// A MAC address in one form, so that the one in a text is the one in bytes.
std::string MacDigits(std::string_view text) {
  std::string digits;
  for (const char c : text) {
    if (bytes::IsHexDigit(c)) digits += bytes::Lower(c);
  }
  const bool has_separators = text.size() == 3 * kMacPairs - 1;
  const bool is_mac =
      digits.size() == 2 * kMacPairs && (text.size() == digits.size() || has_separators);
  return is_mac ? digits : "";
}

std::string KeyOf(std::string_view text) {
  if (std::string mac = MacDigits(text); !mac.empty()) return mac;
  std::string key;
  for (const char c : text) key += bytes::Lower(c);
  return key;
}

}  // namespace

const Placeholders::Place& Placeholders::Find(const std::string& key, std::string_view kind) {
  Place& place = places_[key];
  if (place.number != 0) return place;
  const auto count = counts_.try_emplace(std::string(kind), 0).first;
  place = {std::string(kind), ++count->second};
  return place;
}

std::string Placeholders::Of(std::string_view text, std::string_view kind) {
  const std::string_view trimmed = text.substr(0, text.find_last_not_of(' ') + 1);
  if (trimmed.empty()) return std::string(text);
  const Place& place = Find(KeyOf(trimmed), kind);
  return place.kind + '-' + std::to_string(place.number);
}

std::vector<std::uint8_t> Placeholders::OfBytes(bytes::ByteSpan bytes, std::string_view kind) {
  std::vector<std::uint8_t> replaced(bytes.begin(), bytes.end());
  for (const unsigned none : {0x00U, 0xFFU}) {
    const auto is_none = [none](unsigned byte) { return byte == none; };
    if (std::all_of(bytes.begin(), bytes.end(), is_none)) return replaced;
  }
  std::size_t number = Find(bytes::HexText(bytes), kind).number;
  for (auto byte = replaced.rbegin(); byte != replaced.rend(); ++byte, number >>= 8) {
    *byte = static_cast<std::uint8_t>(number & 0xFF);
  }
  return replaced;
}

}  // namespace mira::client
