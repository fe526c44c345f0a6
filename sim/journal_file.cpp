#include "sim/journal_file.h"

#include <algorithm>
#include <fstream>
#include <string_view>
#include <system_error>

#include "sim/kept_file.h"
#include "support/files.h"

namespace mira::sim {
namespace {

constexpr std::size_t kLongestAbout = 200;

// Words in a list; those that are masked are null.
template <std::size_t count>
void AddWords(Node& node, const char* name, const std::uint32_t (&words)[count],
              const bool (&masked)[count]) {
  Node& list = node.Add(name);
  list.Become(Node::Kind::kList);
  for (std::size_t i = 0; i < count; ++i) {
    Node& word = list.AddItem();
    if (!masked[i]) word.SetNumber(words[i]);
  }
}

Node EntryNode(const char* kind) {
  Node node;
  node.Become(Node::Kind::kObject);
  node.Add("kind").SetText(kind);
  return node;
}

}  // namespace

Node ToNode(const JournalEntry& entry) {
  Node node = EntryNode("call");
  node.Add("class").SetNumber(entry.cls);
  node.Add("select").SetNumber(entry.select);
  AddWords(node, "arguments", entry.args, entry.masked);
  node.Add("recordLength").SetNumber(entry.record_length);
  Node& completion = node.Add("completion");
  if (entry.answered) completion.SetNumber(entry.completion);
  const bool is_silent = !entry.answered;
  AddWords(node, "results", entry.results,
           {is_silent || entry.hands_out_key, is_silent, is_silent});
  node.Add("injected").SetFlag(entry.injected);
  return node;
}

Node ToNode(const OperationEntry& entry) {
  Node node = EntryNode("operation");
  node.Add("operation").SetText(entry.operation);
  std::size_t size = std::min(entry.about.size(), kLongestAbout);
  // No character is cut in two.
  while (size < entry.about.size() && size > 0 &&
         (static_cast<unsigned char>(entry.about[size]) & 0xC0) == 0x80) {
    --size;
  }
  node.Add("about").SetText(std::string_view(entry.about).substr(0, size));
  Node& moved = node.Add("size");
  if (entry.size) moved.SetNumber(static_cast<std::int64_t>(*entry.size));
  node.Add("result").SetNumber(static_cast<std::uint32_t>(entry.result));
  return node;
}

void JournalFile::Note(const JournalEntry& entry) {
  pending_ += WriteJsonLine(ToNode(entry)).str();
}

void JournalFile::Note(const OperationEntry& entry) {
  pending_ += WriteJsonLine(ToNode(entry)).str();
}

void JournalFile::Flush() {
  if (pending_.empty()) return;
  std::string text;
  text.swap(pending_);
  std::error_code error;
  const auto size = std::filesystem::file_size(file_, error);
  if (error) {
    static_cast<void>(support::WriteFileSafely(file_, text, support::FileAccess::kPrivate));
    return;
  }
  if (size + text.size() > kBound) {
    bytes::SecureString old;
    try {
      old = ReadKeptFile(file_, 2 * kBound);
    } catch (const StateError&) {
      return;
    }
    const std::size_t keep = std::min(old.size(), kBound / 2);
    const std::size_t line = old.str().find('\n', old.size() - keep);
    if (line != std::string::npos) text.insert(0, old.str(), line + 1);
    static_cast<void>(support::WriteFileSafely(file_, text, support::FileAccess::kPrivate));
    return;
  }
  std::fstream out(file_, std::ios::binary | std::ios::in | std::ios::out | std::ios::ate);
  // A line that somebody has begun ends here.
  if (size > 0) {
    out.seekg(-1, std::ios::end);
    if (out.get() != '\n') text.insert(text.begin(), '\n');
    out.seekp(0, std::ios::end);
  }
  out << text;
}

std::vector<Node> JournalFile::Read() const {
  const bytes::SecureString text = ReadKeptFile(file_, 2 * kBound);
  std::vector<Node> entries;
  std::string_view rest = text.str();
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    try {
      Node entry = ParseJson(line);
      if (entry.Find("kind") != nullptr) entries.push_back(std::move(entry));
    } catch (const StateError&) {
      continue;
    }
  }
  return entries;
}

void JournalFile::Clear() {
  pending_.clear();
  std::error_code error;
  std::filesystem::remove(file_, error);
  if (error) throw StateError("the journal cannot be removed: " + error.message());
}

}  // namespace mira::sim
