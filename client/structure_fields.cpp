#include "client/structure_fields.h"

#include <algorithm>

#include "bytes/text.h"

namespace mira::client {

std::optional<std::uint64_t> StructureFields::Known(
    std::size_t offset, std::size_t width, std::initializer_list<std::uint64_t> unknown) const {
  const auto value = Number(offset, width);
  if (value && std::find(unknown.begin(), unknown.end(), *value) != unknown.end()) {
    return std::nullopt;
  }
  return value;
}

std::optional<std::string> StructureFields::String(std::size_t offset) const {
  const auto number = Byte(offset);
  if (!number || *number == 0) return std::nullopt;
  bytes::Reader in(strings_);
  for (unsigned i = 1; i < *number; ++i) in.CString();
  const std::string_view text = in.CString();
  // A set without strings holds one empty text, which none of its numbers names.
  if (!in.Ok() || (text.empty() && *number == 1)) return std::nullopt;
  return std::string(text);
}

std::vector<std::string> StructureFields::Strings() const {
  std::vector<std::string> texts;
  bytes::Reader in(strings_);
  while (in.Left() > 0) {
    const std::string_view text = in.CString();
    if (!in.Ok() || text.empty()) break;
    texts.emplace_back(text);
  }
  return texts;
}

namespace {

std::string CodeText(std::uint64_t code) { return "code 0x" + bytes::HexNumber(code); }

}  // namespace

std::string NameOf(std::span<const CodeName> names, std::uint64_t code) {
  const auto row = std::lower_bound(names.begin(), names.end(), code,
                                    [](const CodeName& r, std::uint64_t c) { return r.code < c; });
  return row != names.end() && row->code == code ? row->name : CodeText(code);
}

std::string NameOf(std::span<const char* const> names, std::uint64_t first, std::uint64_t code) {
  return code >= first && code - first < names.size()
             ? names[static_cast<std::size_t>(code - first)]
             : CodeText(code);
}

}  // namespace mira::client
