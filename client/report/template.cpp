#include "client/report/template.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "client/report/characters.h"

namespace mira::client {

struct Template::Part {
  enum class Kind { kText, kElement, kAttribute, kSection, kInverted };
  Kind kind = Kind::kText;
  std::string text;  // or the name
  std::vector<Part> parts = {};
};

namespace {

using TemplatePart = Template::Part;

std::string_view WithoutIndent(std::string_view line) {
  const std::size_t from = line.find_first_not_of(" \t\r");
  return from == std::string_view::npos ? std::string_view() : line.substr(from);
}

// Whether a line holds one tag that is not a value, and nothing else.
bool IsTagAlone(std::string_view line) {
  return line.size() > 5 && line.starts_with("{{") && line.find("}}") == line.size() - 2 &&
         std::string_view("#^/>").find(line[2]) != std::string_view::npos;
}

// Indents, empty lines, and the ends of lines that hold a tag alone are for who reads the template.
std::string Condensed(std::string_view text) {
  std::string condensed;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1);
    std::string_view line = WithoutIndent(text.substr(0, end + 1));
    text.remove_prefix(end + 1);
    if (line.ends_with('\n')) line.remove_suffix(1);
    if (line.empty()) continue;
    condensed += line;
    if (!IsTagAlone(line)) condensed += '\n';
  }
  return condensed;
}

class TemplateParser {
 public:
  TemplateParser(std::string_view name, Template::Files files)
      : name_(name), text_(Condensed(files(name))), files_(files) {}

  std::vector<TemplatePart> Parse() {
    std::vector<TemplatePart> parts = ParseUntil("");
    return parts;
  }

 private:
  [[noreturn]] void Fail(const std::string& why) const {
    throw std::logic_error("The template " + std::string(name_) + ": " + why);
  }

  std::vector<TemplatePart> ParseUntil(const std::string& section) {
    std::vector<TemplatePart> parts;
    while (true) {
      const std::size_t open = text_.find("{{", at_);
      if (const std::string text = text_.substr(at_, open - at_); !text.empty()) {
        parts.push_back({TemplatePart::Kind::kText, text});
        Follow(text);
      }
      if (open == std::string::npos) {
        if (!section.empty()) Fail("the section " + section + " has no end.");
        return parts;
      }
      const std::size_t close = text_.find("}}", open);
      if (close == std::string::npos) Fail("a tag has no end.");
      const std::string tag = text_.substr(open + 2, close - open - 2);
      at_ = close + 2;
      if (tag.starts_with('/')) {
        if (tag.substr(1) != section) Fail(tag + " ends the section '" + section + "'.");
        return parts;
      }
      Add(tag, parts);
    }
  }

  void Add(const std::string& tag, std::vector<TemplatePart>& parts) {
    const std::string name = tag.empty() ? tag : tag.substr(1);
    switch (tag.empty() ? '\0' : tag.front()) {
      case '\0':
        Fail("a tag is empty.");
      case '#':
        parts.push_back({TemplatePart::Kind::kSection, name, ParseUntil(name)});
        return;
      case '^':
        parts.push_back({TemplatePart::Kind::kInverted, name, ParseUntil(name)});
        return;
      case '>':
        for (TemplatePart& part : TemplateParser(name, files_).Parse())
          parts.push_back(std::move(part));
        return;
      case '&':
        parts.push_back({TemplatePart::Kind::kText, std::string(files_(name))});
        return;
      default:
        parts.push_back(
            {is_plain_ ? TemplatePart::Kind::kAttribute : TemplatePart::Kind::kElement, tag});
    }
  }

  // Keeps account of whether what comes next stands inside an HTML tag, or in the title.
  void Follow(std::string_view text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '<') is_plain_ = true;
      if (text[i] == '>') is_plain_ = text.substr(0, i + 1).ends_with("<title>");
    }
  }

  std::string_view name_;
  std::string text_;
  Template::Files files_;
  std::size_t at_ = 0;
  bool is_plain_ = false;
};

std::string EscapedForHtml(std::string_view character) {
  switch (character.front()) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return std::string(character);
  }
}

std::string EscapedInElement(std::string_view character, char32_t code) {
  if (!IsInvisible(code)) return EscapedForHtml(character);
  return "<span class=\"unseen\">" + EscapeOf(code) + "</span>";
}

std::string EscapedInAttribute(std::string_view character, char32_t code) {
  return IsInvisible(code) ? EscapeOf(code) : EscapedForHtml(character);
}

bool Says(const Json* value) {
  if (value == nullptr || value->is_null()) return false;
  if (value->is_boolean()) return value->get<bool>();
  if (value->is_string()) return !value->get_ref<const std::string&>().empty();
  return !value->is_structured() || !value->empty();
}

class Filler {
 public:
  explicit Filler(const Json& values) : values_{&values} {}

  void Fill(const std::vector<TemplatePart>& parts) {
    for (const TemplatePart& part : parts) Fill(part);
  }
  std::string Take() { return std::move(text_); }

 private:
  void Fill(const TemplatePart& part) {
    if (part.kind == TemplatePart::Kind::kText) {
      text_ += part.text;
      return;
    }
    const Json* const value = Find(part.text);
    switch (part.kind) {
      case TemplatePart::Kind::kSection:
        FillSection(part, value);
        break;
      case TemplatePart::Kind::kInverted:
        if (!Says(value)) Fill(part.parts);
        break;
      default:
        if (value == nullptr) return;
        text_ += RewriteCharacters(Readable(*value), part.kind == TemplatePart::Kind::kElement
                                                         ? EscapedInElement
                                                         : EscapedInAttribute);
    }
  }

  void FillSection(const TemplatePart& part, const Json* value) {
    if (!Says(value)) return;
    if (!value->is_array()) return FillWith(part, *value);
    for (const Json& entry : *value) FillWith(part, entry);
  }

  void FillWith(const TemplatePart& part, const Json& value) {
    values_.push_back(&value);
    Fill(part.parts);
    values_.pop_back();
  }

  const Json* Find(const std::string& name) const {
    if (name == ".") return values_.back();
    for (auto value = values_.rbegin(); value != values_.rend(); ++value) {
      if (!(*value)->is_object()) continue;
      const auto found = (*value)->find(name);
      if (found != (*value)->end()) return &*found;
    }
    return nullptr;
  }

  std::vector<const Json*> values_;
  std::string text_;
};

}  // namespace

Template::Template(std::string_view name, Files files)
    : parts_(TemplateParser(name, files).Parse()) {}

Template::~Template() = default;

std::string Template::Fill(const Json& values) const {
  Filler filler(values);
  filler.Fill(parts_);
  return filler.Take();
}

}  // namespace mira::client
