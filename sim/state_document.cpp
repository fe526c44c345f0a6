#include "sim/state_document.h"

#include <algorithm>
#include <charconv>

#include "bytes/text.h"
#include "bytes/utf16.h"

namespace mira::sim {
namespace {

// A text that grows without leaving copies of itself behind.
class Output {
 public:
  void Put(std::string_view part) {
    std::string& text = text_.str();
    if (text.capacity() - text.size() < part.size()) {
      bytes::SecureString larger;
      larger.str().reserve(2 * text.capacity() + part.size());
      larger.str().append(text);
      text_ = std::move(larger);
    }
    text_.str().append(part);
  }
  bytes::SecureString Take() { return std::move(text_); }

 private:
  bytes::SecureString text_;
};

void PutText(Output& out, std::string_view text) {
  out.Put("\"");
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      const char escaped[] = {'\\', c};
      out.Put({escaped, 2});
    } else if (byte < 0x20 || byte == 0x7F) {
      const char escaped[] = {
          '\\', 'u', '0', '0', bytes::HexDigit(byte >> 4), bytes::HexDigit(byte)};
      out.Put({escaped, sizeof(escaped)});
    } else {
      out.Put({&c, 1});
    }
  }
  out.Put("\"");
}

enum class Layout { kLines, kOneLine };

void Put(Output& out, const Node& node, Layout layout, std::size_t level = 0) {
  const auto break_line = [&out](std::size_t depth) {
    out.Put("\n");
    for (std::size_t i = 0; i < depth; ++i) out.Put("  ");
  };
  switch (node.GetKind()) {
    case Node::Kind::kNull:
      return out.Put("null");
    case Node::Kind::kFlag:
      return out.Put(node.Flag() ? "true" : "false");
    case Node::Kind::kNumber:
      return out.Put(std::to_string(node.Number()));
    case Node::Kind::kText:
      return PutText(out, node.Text());
    case Node::Kind::kList:
    case Node::Kind::kObject:
      break;
  }
  const bool is_object = node.GetKind() == Node::Kind::kObject;
  // Lists of numbers stand on one line.
  const bool has_lines = layout == Layout::kLines &&
                         std::any_of(node.Items().begin(), node.Items().end(), [&](const Node& n) {
                           return is_object || n.GetKind() != Node::Kind::kNumber;
                         });
  out.Put(is_object ? "{" : "[");
  bool is_first = true;
  for (const Node& item : node.Items()) {
    if (!is_first) out.Put(has_lines ? "," : ", ");
    is_first = false;
    if (has_lines) break_line(level + 1);
    if (is_object) {
      PutText(out, item.Name());
      out.Put(": ");
    }
    Put(out, item, layout, level + 1);
  }
  if (has_lines) break_line(level);
  out.Put(is_object ? "}" : "]");
}

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  Node Document() {
    Node node;
    Value(node, 0);
    SkipBlanks();
    if (at_ != text_.size()) Fail("there is something behind the document");
    return node;
  }

 private:
  static constexpr int kDeepest = 32;

  [[noreturn]] void Fail(const char* what) const {
    throw StateError("line " + std::to_string(line_) + ": " + what);
  }
  void SkipBlanks() {
    for (; at_ < text_.size() &&
           std::string_view(" \t\r\n").find(text_[at_]) != std::string_view::npos;
         ++at_) {
      line_ += text_[at_] == '\n' ? 1 : 0;
    }
  }
  bool Take(std::string_view word) {
    SkipBlanks();
    if (!text_.substr(at_).starts_with(word)) return false;
    at_ += word.size();
    return true;
  }

  void Value(Node& node, int depth) {
    if (depth > kDeepest) Fail("it is nested too deeply");
    SkipBlanks();
    node.SetLine(line_);
    if (Take("{")) return Object(node, depth);
    if (Take("[")) return List(node, depth);
    if (Take("null")) return node.Become(Node::Kind::kNull);
    if (Take("true")) return node.SetFlag(true);
    if (Take("false")) return node.SetFlag(false);
    if (Take("\"")) {
      bytes::SecureString text;
      TakeText(text);
      return node.SetText(text.str());
    }
    std::int64_t number = 0;
    const char* const begin = text_.data() + at_;
    const char* const end = text_.data() + text_.size();
    const auto [stop, error] = std::from_chars(begin, end, number);
    // What is wider stands in the tree as its digits.
    std::uint64_t wide = 0;
    const bool is_wide = error == std::errc::result_out_of_range && *begin != '-' &&
                         std::from_chars(begin, end, wide).ec == std::errc();
    if ((error != std::errc() && !is_wide) ||
        (stop != end && (*stop == '.' || *stop == 'e' || *stop == 'E'))) {
      Fail("a value is missing or is no whole number");
    }
    at_ += static_cast<std::size_t>(stop - begin);
    if (is_wide) return node.SetText(std::to_string(wide));
    node.SetNumber(number);
  }

  void Object(Node& node, int depth) {
    node.Become(Node::Kind::kObject);
    if (Take("}")) return;
    do {
      if (!Take("\"")) Fail("a member's name is missing");
      bytes::SecureString name;
      TakeText(name);
      if (node.Find(name.str()) != nullptr) Fail("a member stands twice");
      if (!Take(":")) Fail("':' is missing");
      Value(node.Add(name.str()), depth + 1);
    } while (Take(","));
    if (!Take("}")) Fail("'}' is missing");
  }

  void List(Node& node, int depth) {
    node.Become(Node::Kind::kList);
    if (Take("]")) return;
    do {
      Value(node.AddItem(), depth + 1);
    } while (Take(","));
    if (!Take("]")) Fail("']' is missing");
  }

  // The text up to its closing quote.
  void TakeText(bytes::SecureString& into) {
    std::size_t end = at_;
    while (end < text_.size() && text_[end] != '"') end += text_[end] == '\\' ? 2u : 1u;
    if (end >= text_.size()) Fail("a text is not closed");
    std::string& text = into.str();
    text.reserve(end - at_);
    while (at_ < end) {
      const char c = text_[at_++];
      if (static_cast<unsigned char>(c) < 0x20) Fail("a text goes over a line's end");
      if (c != '\\') {
        text += c;
      } else {
        TakeEscape(text);
      }
    }
    ++at_;
  }

  void TakeEscape(std::string& text) {
    constexpr std::string_view kShort = "\"\\/bfnrt";
    constexpr std::string_view kMeaning = "\"\\/\b\f\n\r\t";
    const char c = text_[at_++];
    if (const std::size_t found = kShort.find(c); found != std::string_view::npos) {
      text += kMeaning[found];
      return;
    }
    if (c != 'u') Fail("there is no such escape");
    char32_t value = CodeUnit();
    if (bytes::IsSurrogate(value) && text_.substr(at_).starts_with("\\u")) {
      at_ += 2;
      value = bytes::PairOf(value, CodeUnit()).value_or(value);
    }
    if (bytes::IsSurrogate(value)) Fail("half of a character is missing");
    bytes::AppendUtf8(text, value);
  }

  char32_t CodeUnit() {
    const std::string_view digits = text_.substr(at_, 4);
    const auto value = bytes::ParseDigits(digits, 16);
    if (digits.size() != 4 || !value) Fail("an escape lacks its digits");
    at_ += 4;
    return static_cast<char32_t>(*value);
  }

  std::string_view text_;
  std::size_t at_ = 0;
  int line_ = 1;
};

}  // namespace

const Node* Node::Find(std::string_view name) const {
  const auto found = std::find_if(items_.begin(), items_.end(),
                                  [name](const Node& item) { return item.name_ == name; });
  return found != items_.end() ? &*found : nullptr;
}

Node* Node::Find(std::string_view name) {
  return const_cast<Node*>(static_cast<const Node*>(this)->Find(name));
}

void Node::Become(Kind kind) {
  kind_ = kind;
  number_ = 0;
  text_.Clear();
  items_.clear();
}

void Node::SetFlag(bool flag) {
  Become(Kind::kFlag);
  number_ = flag ? 1 : 0;
}

void Node::SetNumber(std::int64_t number) {
  Become(Kind::kNumber);
  number_ = number;
}

void Node::SetText(std::string_view text) {
  Become(Kind::kText);
  text_ = bytes::SecureString(text);
}

Node& Node::Add(std::string_view name) {
  Node* const present = Find(name);
  if (present != nullptr) {
    present->Become(Kind::kNull);
    return *present;
  }
  Node& added = AddItem();
  added.name_ = name;
  return added;
}

Node& Node::AddItem() { return items_.emplace_back(); }

bool Node::operator==(const Node& other) const {
  return kind_ == other.kind_ && number_ == other.number_ && name_ == other.name_ &&
         text_.str() == other.text_.str() && items_ == other.items_;
}

bytes::SecureString WriteJson(const Node& node) {
  Output out;
  Put(out, node, Layout::kLines);
  out.Put("\n");
  return out.Take();
}

bytes::SecureString WriteJsonLine(const Node& node) {
  Output out;
  Put(out, node, Layout::kOneLine);
  out.Put("\n");
  return out.Take();
}

Node ParseJson(std::string_view text) { return Parser(text).Document(); }

}  // namespace mira::sim
