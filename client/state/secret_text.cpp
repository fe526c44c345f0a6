#include "client/state/secret_text.h"

#include <string_view>

#include "bytes/text.h"
#include "bytes/utf16.h"
#include "client/error.h"

namespace mira::client {
namespace {

constexpr char kSecretsKey[] = "secrets";

Error NoSecretObject() {
  return Error(kInvalidValue, "malformed-secrets",
               "The secrets are not a JSON object of names and texts.", kSecretsKey);
}

// Walks over a JSON text as far as that takes to find secrets in it; whether the rest is JSON is
// for others to say.
class SecretWalk {
 public:
  explicit SecretWalk(std::string& text) : text_(text) {}

  SecretTexts ReadObject() {
    SecretTexts secrets;
    ForEachMember([&](const std::string& name) {
      if (Next() != '"') throw NoSecretObject();
      bytes::SecureString value = TakeString();
      if (!secrets.try_emplace(name, std::move(value)).second) {
        throw Error(kInvalidValue, "doubled-key", "The secrets have '" + name + "' twice.", name);
      }
    });
    return secrets;
  }

  // What is no JSON elsewhere ends the walk.
  std::optional<SecretTexts> ReadBeside() {
    std::optional<SecretTexts> secrets;
    bool is_inside = false;
    try {
      ForEachMember([&](const std::string& name) {
        if (name != kSecretsKey || secrets) return SkipValue();
        is_inside = true;
        secrets = ReadObject();
        is_inside = false;
      });
    } catch (const Error&) {
      if (is_inside) throw;
    }
    return secrets;
  }

  bool IsAtEnd() { return Next() == 0; }

 private:
  // The next character that is no blank; 0 at the end.
  char Next() {
    while (at_ < text_.size() &&
           std::string_view(" \t\r\n").find(text_[at_]) != std::string::npos) {
      ++at_;
    }
    return at_ < text_.size() ? text_[at_] : '\0';
  }

  void Take(char c) {
    if (Next() != c) throw NoSecretObject();
    ++at_;
  }

  template <typename Visit>
  void ForEachMember(Visit visit) {
    Take('{');
    while (Next() == '"') {
      const std::string name = TakeString(false).str();
      Take(':');
      visit(name);
      if (Next() != ',') break;
      ++at_;
    }
    Take('}');
  }

  // The string that begins here. What it says is blanked in the text.
  bytes::SecureString TakeString(bool blanks = true) {
    Take('"');
    const std::size_t from = at_;
    while (at_ < text_.size() && text_[at_] != '"') at_ += text_[at_] == '\\' ? std::size_t{2} : 1;
    if (at_ >= text_.size()) throw NoSecretObject();
    const std::string_view raw = std::string_view(text_).substr(from, at_ - from);
    ++at_;
    bytes::SecureString value = Decode(raw);
    for (std::size_t i = from; blanks && i + 1 < at_; ++i) text_[i] = ' ';
    return value;
  }

  static bytes::SecureString Decode(std::string_view raw) {
    bytes::SecureString value;
    value.str().reserve(raw.size());  // no text is longer than its escapes
    constexpr std::string_view kEscapes = "\"\\/bfnrt";
    constexpr std::string_view kCharacters = "\"\\/\b\f\n\r\t";
    std::u16string pair;  // the first half of one
    while (!raw.empty()) {
      if (raw.front() != '\\') {
        value.str() += raw.front();
        raw.remove_prefix(1);
        continue;
      }
      if (raw.size() > 1 && raw[1] == 'u') {
        const auto unit = bytes::ParseDigits(raw.substr(2, 4), 16);
        if (!unit || raw.size() < 6) throw NoSecretObject();
        pair += static_cast<char16_t>(*unit);
        raw.remove_prefix(6);
        constexpr char16_t kHalves = 0xFC00;
        constexpr char16_t kFirstHalf = 0xD800;
        if ((pair.back() & kHalves) == kFirstHalf && raw.starts_with("\\u")) continue;
        value.str() += bytes::Utf8(pair);
        pair.clear();
        continue;
      }
      const std::size_t place = raw.size() > 1 ? kEscapes.find(raw[1]) : std::string_view::npos;
      if (place == std::string_view::npos) throw NoSecretObject();
      value.str() += kCharacters[place];
      raw.remove_prefix(2);
    }
    return value;
  }

  void SkipValue() {
    int depth = 0;
    do {
      const char c = Next();
      if (c == '"') {
        TakeString(false);
      } else if (c == 0 || (depth == 0 && (c == ',' || c == '}'))) {
        return;
      } else {
        depth += (c == '{' || c == '[') - (c == '}' || c == ']');
        ++at_;
      }
    } while (depth > 0 || (Next() != ',' && Next() != '}'));
  }

  std::string& text_;
  std::size_t at_ = 0;
};

}  // namespace

SecretTexts TakeSecrets(std::string& text) {
  SecretWalk walk(text);
  SecretTexts secrets = walk.ReadObject();
  if (!walk.IsAtEnd()) throw NoSecretObject();
  return secrets;
}

std::optional<SecretTexts> TakeSecretsBeside(std::string& text) {
  return SecretWalk(text).ReadBeside();
}

}  // namespace mira::client
