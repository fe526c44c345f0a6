#include <algorithm>
#include <limits>

#include "devicepath/node_reader.h"
#include "devicepath/text.h"

namespace mira::devicepath {
namespace {

bool IsNameCharacter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
}

std::string_view WithoutLeadingBlanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

// The length of the name in front of a bracket; 0 where the text does not begin so.
std::size_t NameLength(std::string_view text) {
  std::size_t length = 0;
  while (length < text.size() && IsNameCharacter(text[length])) ++length;
  return length < text.size() && text[length] == '(' ? length : 0;
}

// Whether a node may end here: at the path's end, before a slash or, between instances, before a
// comma, which people may or may not follow up with a slash. Blanks may stand before those.
bool IsBoundary(std::string_view text, std::size_t at, bool needs_slash) {
  text = WithoutLeadingBlanks(text.substr(at));
  if (text.empty() || text[0] == '/' || text.starts_with(",/")) return true;
  if (needs_slash || text[0] != ',') return false;
  text = WithoutLeadingBlanks(text.substr(1));
  return text.starts_with('\\') || text.starts_with('/') || NameLength(text) != 0;
}

// A name with brackets at the start of the text: where the brackets pair and, since a device's
// description may hold single ones, where the first stands that may end a node. Both are 0 where
// there is no such place.
struct Named {
  std::size_t bracket = 0;  // 0: there is no name with a bracket
  std::size_t paired = 0;
  std::size_t first = 0;
  bool is_open = false;  // its bracket is not closed
};

Named FindNamed(std::string_view text) {
  Named named;
  std::size_t at = NameLength(text);
  if (at == 0) return named;
  named.bracket = at;
  named.is_open = true;
  std::size_t depth = 0;
  for (; at < text.size() && (named.is_open || named.first == 0); ++at) {
    if (text[at] == '(') ++depth;
    if (text[at] != ')') continue;
    if (named.first == 0 && IsBoundary(text, at + 1, true)) named.first = at + 1;
    if (!named.is_open || --depth > 0) continue;
    named.is_open = false;
    if (IsBoundary(text, at + 1, false)) named.paired = at + 1;
  }
  return named;
}

// A comma belongs to a file's name unless a slash follows.
std::size_t FileLength(std::string_view text) {
  return std::min({text.find('/'), text.find(",/"), text.size()});
}

// The first bracket of a text that has no partner; null where all have.
const char* FindUnpaired(std::string_view text) {
  std::vector<const char*> open;
  for (const char& c : text) {
    if (c == '(') open.push_back(&c);
    if (c != ')') continue;
    if (open.empty()) return &c;
    open.pop_back();
  }
  return open.empty() ? nullptr : open.front();
}

class PathReader {
 public:
  explicit PathReader(std::string_view text) : text_(text), left_(text) {}

  // False with the reason where the text is no path.
  bool Read() {
    if (Trimmed(text_).empty()) return Fail(text_.data(), "The text is empty.");
    while (!left_.empty()) {
      const std::string_view trimmed = WithoutLeadingBlanks(left_);
      if (trimmed.empty()) break;
      if (trimmed[0] == '/') {
        left_ = trimmed.substr(1);
      } else if (trimmed[0] == ',') {
        if (!EndInstance(trimmed.data(), kEndOfInstance)) return false;
        left_ = trimmed.substr(1);
      } else if (!ReadNode(trimmed)) {
        return false;
      }
    }
    return EndInstance(text_.data() + text_.size(), kEndOfPath);
  }

  std::vector<std::uint8_t>& Bytes() { return path_; }
  Problem TakeProblem() {
    return {static_cast<std::size_t>(failure_.at - text_.data()), std::move(failure_.message)};
  }

 private:
  bool Fail(const char* at, const char* message) {
    failure_ = {at, message};
    return false;
  }

  bool EndInstance(const char* at, std::uint8_t subtype) {
    if (!has_node_) return Fail(at, "Between commas, and at all, nodes are wanted.");
    has_node_ = false;
    node_ = {kEndType, subtype, 0, 0};
    return Append(at);
  }

  bool Append(const char* at) {
    if (node_.size() > std::numeric_limits<std::uint16_t>::max()) {
      return Fail(at, "A node cannot be longer than 65,535 bytes.");
    }
    SetField(2, sizeof(std::uint16_t), node_.size(), node_);
    path_.insert(path_.end(), node_.begin(), node_.end());
    return true;
  }

  // `text` is what is left without leading blanks.
  bool ReadNode(std::string_view text) {
    const Named named = FindNamed(text);
    has_node_ = true;
    for (const std::size_t length : {named.paired, named.first}) {
      if (length == 0) continue;
      Failure failure;
      if (ReadNamed(text.substr(0, length), node_, failure)) {
        left_ = text.substr(length);
        return Append(text.data());
      }
      if (failure_.at == nullptr) failure_ = std::move(failure);
    }
    if (named.paired != 0 || named.first != 0) return false;
    if (named.is_open) return Fail(text.data() + named.bracket, "This bracket is not closed.");
    if (IsPartedNode(text)) {
      return Fail(text.data() + text.find('('), "No blank may stand in front of a node's bracket.");
    }
    if (named.bracket != 0 && IsNodeName(text.substr(0, named.bracket))) {
      return Fail(text.data(), "Behind a node's bracket, a slash is wanted.");
    }
    return ReadFile(text);
  }

  // A node's name that a blank parts from its brackets: nobody means a file that is called so.
  static bool IsPartedNode(std::string_view text) {
    const std::size_t bracket = text.find('(');
    if (bracket == std::string_view::npos || bracket == 0) return false;
    const std::string_view name = text.substr(0, bracket);
    if (kBlanks.find(name.back()) == std::string_view::npos) return false;
    const std::size_t end = text.find(')', bracket);
    return end != std::string_view::npos && IsBoundary(text, end + 1, false) &&
           IsNodeName(Trimmed(name));
  }

  // What is no name with brackets is a file's path. Behind a backslash, brackets are its own.
  bool ReadFile(std::string_view text) {
    const std::size_t length = FileLength(text);
    text = text.substr(0, length);
    const char* const unpaired = text.starts_with('\\') ? nullptr : FindUnpaired(text);
    if (unpaired != nullptr) return Fail(unpaired, "This bracket has no partner.");
    if (!ReadFilePath(text, node_)) {
      return Fail(text.data(), "The file's path is no UTF-8.");
    }
    left_ = left_.substr(static_cast<std::size_t>(text.data() - left_.data()) + length);
    return Append(text.data());
  }

  std::string_view text_;
  std::string_view left_;
  NodeBytes node_;
  NodeBytes path_;
  bool has_node_ = false;  // of this instance
  Failure failure_;
};

}  // namespace

std::optional<std::vector<std::uint8_t>> DevicePathFromText(std::string_view text,
                                                            Problem* problem) {
  PathReader reader(text);
  if (reader.Read()) return std::move(reader.Bytes());
  if (problem != nullptr) *problem = reader.TakeProblem();
  return std::nullopt;
}

}  // namespace mira::devicepath
