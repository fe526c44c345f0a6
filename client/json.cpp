#include "client/json.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "bytes/secure.h"
#include "bytes/text.h"
#include "bytes/utf16.h"
#include "client/error.h"

namespace mira::client {
namespace {

constexpr char32_t kHalfCharacter = 0xFFFD;  // in its place; no JSON outside its strings
constexpr std::uint64_t kLargestExact = (std::uint64_t{1} << 53) - 1;

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string PlaceText(std::string_view text, std::size_t byte) {
  const std::string_view before = text.substr(0, std::min(byte, text.size()));
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const std::size_t start = before.rfind('\n');
  const std::size_t column =
      start == std::string_view::npos ? before.size() : before.size() - start - 1;
  return "line " + std::to_string(line) + ", column " +
         std::to_string(std::max<std::size_t>(column, 1));
}

}  // namespace

std::string ToUtf8(std::string_view text) {
  return bytes::IsUtf8(text) ? std::string(text) : bytes::Utf8OfLatin1(text);
}

std::string ToUtf8(std::wstring_view text) { return bytes::Utf8(text); }

Json NumberJson(std::uint64_t value) {
  return value > kLargestExact ? Json(std::to_string(value)) : Json(value);
}

std::optional<std::uint64_t> ToNumber(const Json& value) {
  if (value.is_number_unsigned()) return value.get<std::uint64_t>();
  if (value.is_number_integer() && value.get<std::int64_t>() >= 0) {
    return value.get<std::uint64_t>();
  }
  if (!value.is_string()) return std::nullopt;
  return bytes::ParseDigits(value.get_ref<const std::string&>(), 10);
}

std::optional<std::vector<std::uint8_t>> FromHexText(std::string_view text) {
  std::string digits(bytes::WithoutHexPrefix(text).value_or(text));
  std::erase_if(digits, [](char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; });
  return bytes::ParseHexText(digits);
}

Json TextJson(std::string_view bytes) {
  if (IsAscii(bytes)) return bytes;
  return {{"text", ToUtf8(bytes)}, {"bytes", bytes::HexText(bytes::AsBytes(bytes))}};
}

std::optional<std::string> BytesOfText(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (!value.is_object()) return std::nullopt;
  const auto hex = value.find("bytes");
  if (hex == value.end() || !hex->is_string()) return std::nullopt;
  const auto bytes = FromHexText(hex->get_ref<const std::string&>());
  if (!bytes) return std::nullopt;
  return std::string(bytes->begin(), bytes->end());
}

std::string TextFromJson(const Json& value) {
  if (auto text = BytesOfText(value)) return std::move(*text);
  throw Error(kInvalidValue, "malformed-snapshot", "The snapshot has no text where one belongs.");
}

std::string Readable(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_null()) return "";
  if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
  if (value.is_object()) {
    const auto text = value.find("text");
    if (text != value.end() && text->is_string()) return text->get<std::string>();
  }
  if (!value.is_array()) return value.dump(-1, ' ', false, Json::error_handler_t::replace);
  std::string text;
  for (const Json& part : value) text += (text.empty() ? "" : ", ") + Readable(part);
  return text;
}

Json ParseJson(std::string_view text, const std::string& name) {
  const std::string plain = PlainUtf8(text);
  // Nothing that is read here is nested deeply; what is would exhaust the stack later.
  constexpr int kDeepest = 64;
  std::vector<std::set<std::string>> keys;
  std::string doubled;
  const auto watch = [&](int depth, Json::parse_event_t event, Json& parsed) {
    if (depth > kDeepest) {
      throw Error(kInvalidValue, "too-deep", name + " is nested too deeply.", name);
    }
    if (event == Json::parse_event_t::object_start) keys.emplace_back();
    if (event == Json::parse_event_t::object_end) keys.pop_back();
    if (event == Json::parse_event_t::key && doubled.empty() &&
        !keys.back().insert(parsed.get<std::string>()).second) {
      doubled = parsed.get<std::string>();
    }
    return true;
  };
  Json document;
  try {
    document = Json::parse(plain, watch);
  } catch (const Json::parse_error& error) {
    const std::string place = PlaceText(plain, error.byte);
    throw Error(kInvalidValue, "no-json", name + " is not valid JSON from " + place + " on.", name)
        .With("place", place);
  } catch (const Json::out_of_range&) {
    throw Error(kInvalidValue, "no-json", name + " has a number that is too large.", name);
  }
  if (!doubled.empty()) {
    throw Error(kInvalidValue, "doubled-key",
                name + " has the key '" + doubled + "' twice in one object.", name)
        .With("doubled", Json::array({doubled}));
  }
  return document;
}

std::string PlainUtf8(std::string_view text) {
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  constexpr std::string_view kLittleMark = "\xFF\xFE";
  constexpr std::string_view kBigMark = "\xFE\xFF";
  if (text.starts_with(kUtf8Mark)) return std::string(text.substr(kUtf8Mark.size()));
  const bool has_pair = text.size() >= 2 && text[0] != text[1];
  const bool is_big = text.starts_with(kBigMark) || (has_pair && text[0] == '\0');
  const bool is_little = text.starts_with(kLittleMark) || (has_pair && text[1] == '\0');
  if (!is_big && !is_little) return std::string(text);
  if (text.starts_with(kLittleMark) || text.starts_with(kBigMark)) text.remove_prefix(2);
  std::u16string units;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    const auto first = static_cast<unsigned char>(text[i]);
    const auto second = static_cast<unsigned char>(text[i + 1]);
    units += static_cast<char16_t>(is_big ? first << 8 | second : second << 8 | first);
  }
  std::string utf8 = bytes::Utf8(units);
  if (text.size() % 2 != 0) bytes::AppendUtf8(utf8, kHalfCharacter);
  return utf8;
}

std::string ToText(const Json& document) {
  return document.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

void Wipe(Json& value) noexcept {
  if (value.is_string()) bytes::Wipe(value.get_ref<std::string&>());
  if (value.is_structured()) {
    for (Json& part : value) Wipe(part);
  }
}

}  // namespace mira::client
