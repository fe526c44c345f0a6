#include "sim/firmware/fields.h"

#include <algorithm>
#include <limits>

#include "bytes/text.h"
#include "bytes/utf16.h"

namespace mira::sim {
namespace {

constexpr char kSecretName[] = "secret";

void AppendLatin1(std::string& utf8, std::string_view text) {
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      utf8 += c;
    } else {
      utf8 += static_cast<char>(0xC0 | byte >> 6);
      utf8 += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
}

// False for a text with characters beyond Latin-1.
bool ToLatin1(std::string_view utf8, std::string& text) {
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<unsigned char>(utf8[i]);
    if (byte < 0x80) {
      text += utf8[i];
      continue;
    }
    if ((byte != 0xC2 && byte != 0xC3) || i + 1 == utf8.size()) return false;
    const auto next = static_cast<unsigned char>(utf8[++i]);
    if ((next & 0xC0) != 0x80) return false;
    text += static_cast<char>((byte & 3) << 6 | (next & 0x3F));
  }
  return true;
}

}  // namespace

Fields::Fields(Pass pass, Node& root) : pass_(pass) {
  places_.push_back({&root, ""});
  if (pass == Pass::kSave) root.Become(Node::Kind::kObject);
}

std::string Fields::Pointer() const {
  std::string pointer;
  for (const Place& place : places_) {
    if (&place != &places_.front()) pointer += "/" + place.name;
  }
  return pointer;
}

void Fields::Refuse(std::string_view rule) const {
  const int line = places_.back().node->Line();
  throw StateError("at '" + Pointer() + "'" +
                   (line != 0 ? " (line " + std::to_string(line) + ")" : "") + ": " +
                   std::string(rule));
}

void Fields::Require(bool is_sound, std::string_view rule) const {
  if (IsLoading() && !is_sound) Refuse(rule);
}

bool Fields::Has(std::string_view name) const {
  return !IsLoading() || places_.back().node->Find(name) != nullptr;
}

void Fields::Enter(std::string_view name) {
  Place& object = places_.back();
  object.taken.emplace(name);
  Node* node = &nowhere_;
  if (pass_ == Pass::kSave) node = &object.node->Add(name);
  if (IsLoading()) {
    node = object.node->Find(name);
    if (node == nullptr) Refuse("'" + std::string(name) + "' is missing");
  }
  places_.push_back({node, std::string(name)});
}

void Fields::Leave() { places_.pop_back(); }

void Fields::EnterItem(std::size_t index) {
  Node* node = &nowhere_;
  if (pass_ == Pass::kSave) node = &Here().AddItem();
  if (IsLoading()) node = &Here().Items().at(index);
  places_.push_back({node, std::to_string(index)});
}

void Fields::Expect(Node::Kind kind, const char* what) {
  if (Here().GetKind() != kind) Refuse(std::string("is no ") + what);
}

void Fields::BeginObject() {
  if (pass_ == Pass::kSave) Here().Become(Node::Kind::kObject);
  if (IsLoading()) Expect(Node::Kind::kObject, "object");
}

void Fields::EndObject() {
  if (!IsLoading()) return;
  for (const Node& member : Here().Items()) {
    if (!places_.back().taken.contains(member.Name())) {
      Refuse("'" + member.Name() + "' is unknown");
    }
  }
}

void Fields::MarkParts() {
  if (pass_ == Pass::kSave) part_groups_.push_back(Pointer());
}

std::size_t Fields::BeginList(std::size_t count, std::size_t most) {
  if (pass_ == Pass::kSave) Here().Become(Node::Kind::kList);
  if (!IsLoading()) return count;
  Expect(Node::Kind::kList, "list");
  if (Here().Items().size() > most) Refuse("has too many items");
  return Here().Items().size();
}

bool Fields::Present(bool is_present) {
  if (pass_ == Pass::kSave && !is_present) Here().Become(Node::Kind::kNull);
  return IsLoading() ? Here().GetKind() != Node::Kind::kNull : is_present;
}

std::vector<std::string> Fields::Names() const {
  std::vector<std::string> names;
  for (const Node& member : places_.back().node->Items()) names.push_back(member.Name());
  return names;
}

void Fields::Number(std::int64_t& number, std::int64_t lowest, std::int64_t highest) {
  if (pass_ == Pass::kSave) Here().SetNumber(number);
  if (!IsLoading()) return;
  if (pass_ == Pass::kLoadSome && Here().Text().starts_with("0x")) {
    const auto value = bytes::ParseNumber(Here().Text(), std::numeric_limits<std::int64_t>::max());
    if (!value) Refuse("is no number");
    Here().SetNumber(static_cast<std::int64_t>(*value));
  }
  Expect(Node::Kind::kNumber, "number");
  if (Here().Number() < lowest || Here().Number() > highest) Refuse("is out of its range");
  number = Here().Number();
}

void Fields::WideNumber(std::uint64_t& number) {
  constexpr auto kHighest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  const bool is_text = IsLoading() ? Here().GetKind() == Node::Kind::kText : number > kHighest;
  if (!is_text) {
    auto narrow = static_cast<std::int64_t>(number);
    Number(narrow, 0, std::numeric_limits<std::int64_t>::max());
    number = static_cast<std::uint64_t>(narrow);
    return;
  }
  if (pass_ == Pass::kSave) Here().SetText(std::to_string(number));
  if (!IsLoading()) return;
  const auto value = bytes::ParseNumber(Here().Text());
  if (!value) Refuse("is no number");
  number = *value;
}

void Fields::Flag(bool& flag) {
  if (pass_ == Pass::kSave) Here().SetFlag(flag);
  if (!IsLoading()) return;
  Expect(Node::Kind::kFlag, "flag");
  flag = Here().Flag();
}

void Fields::Text(std::string& text) {
  if (pass_ == Pass::kSave) {
    std::string utf8;
    AppendLatin1(utf8, text);
    Here().SetText(utf8);
  }
  if (!IsLoading()) return;
  Expect(Node::Kind::kText, "text");
  std::string loaded;
  if (!ToLatin1(Here().Text(), loaded)) Refuse("has characters that the firmware does not know");
  text = loaded;
}

void Fields::WideText(std::u16string& text) {
  if (pass_ == Pass::kSave) Here().SetText(bytes::Utf8(text));
  if (!IsLoading()) return;
  Expect(Node::Kind::kText, "text");
  const auto wide = bytes::Utf16(Here().Text());
  if (!wide) Refuse("is no UTF-8");
  text = *wide;
}

// An object of its own, so that nobody who shows a state has to know which texts are secret.
void Fields::Secret(bytes::SecureString& text) {
  if (!Walks()) return;
  BeginObject();
  {
    const Member member(*this, kSecretName);
    bytes::SecureString converted;
    if (pass_ == Pass::kSave) {
      converted.str().reserve(2 * text.size());
      AppendLatin1(converted.str(), text.str());
      Here().SetText(converted.str());
    } else {
      Expect(Node::Kind::kText, "text");
      converted.str().reserve(Here().Text().size());
      if (!ToLatin1(Here().Text(), converted.str())) Refuse("has characters beyond Latin-1");
      text = std::move(converted);
    }
  }
  EndObject();
}

void Fields::Octets(std::vector<std::uint8_t>& octets) {
  if (pass_ == Pass::kSave) Here().SetText(bytes::HexText(octets));
  if (!IsLoading()) return;
  Expect(Node::Kind::kText, "text of hexadecimal digits");
  const auto loaded = bytes::ParseHexText(Here().Text());
  if (!loaded) Refuse("is no text of hexadecimal digits, two a byte");
  octets = *loaded;
}

}  // namespace mira::sim
