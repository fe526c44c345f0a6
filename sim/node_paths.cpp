#include "sim/node_paths.h"

#include <algorithm>
#include <cstddef>

#include "bytes/text.h"

namespace mira::sim {
namespace {

bool HasParts(const Node& node) {
  return !IsSecret(node) &&
         (node.GetKind() == Node::Kind::kObject || node.GetKind() == Node::Kind::kList);
}

// A name as a JSON pointer has it (RFC 6901).
std::string PointerName(std::string_view name) {
  std::string escaped;
  for (const char c : name) escaped += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
  return escaped;
}

std::string PlainName(std::string_view escaped) {
  std::string name;
  for (std::size_t i = 0; i < escaped.size(); ++i) {
    const bool is_escape = escaped[i] == '~' && i + 1 < escaped.size();
    name += is_escape ? (escaped[++i] == '1' ? '/' : '~') : escaped[i];
  }
  return name;
}

const Node* Part(const Node& node, std::string_view name) {
  if (node.GetKind() == Node::Kind::kObject) return node.Find(name);
  const auto index = bytes::ParseDigits(name, 10);
  if (node.GetKind() != Node::Kind::kList || !index || *index >= node.Items().size()) {
    return nullptr;
  }
  return &node.Items()[static_cast<std::size_t>(*index)];
}

void Compare(const std::string& place, const Node* before, const Node* after,
             std::vector<Difference>& differences) {
  if (before != nullptr && after != nullptr && *before == *after) return;
  const bool is_one =
      before == nullptr || after == nullptr || !HasParts(*before) ||
      before->GetKind() != after->GetKind() || IsSecret(*after) ||
      (before->GetKind() == Node::Kind::kList && before->Items().size() != after->Items().size());
  if (is_one) {
    differences.push_back({place, before, after});
    return;
  }
  if (before->GetKind() == Node::Kind::kList) {
    for (std::size_t i = 0; i < before->Items().size(); ++i) {
      Compare(place + "/" + std::to_string(i), &before->Items()[i], &after->Items()[i],
              differences);
    }
    return;
  }
  for (const Node& member : before->Items()) {
    Compare(place + "/" + PointerName(member.Name()), &member, after->Find(member.Name()),
            differences);
  }
  for (const Node& member : after->Items()) {
    if (before->Find(member.Name()) == nullptr) {
      Compare(place + "/" + PointerName(member.Name()), nullptr, &member, differences);
    }
  }
}

}  // namespace

bool HoldsSecret(const Node& node) {
  return IsSecret(node) || std::any_of(node.Items().begin(), node.Items().end(), HoldsSecret);
}

bool IsSecret(const Node& node) {
  return node.GetKind() == Node::Kind::kObject && node.Items().size() == 1 &&
         node.Items().front().Name() == "secret";
}

const Node* FindPath(const Node& root, std::string_view pointer) {
  const Node* node = &root;
  while (node != nullptr && !pointer.empty()) {
    pointer.remove_prefix(1);
    const std::string_view name = pointer.substr(0, pointer.find('/'));
    node = Part(*node, PlainName(name));
    pointer.remove_prefix(name.size());
  }
  return node;
}

Node* FindPath(Node& root, std::string_view pointer) {
  return const_cast<Node*>(FindPath(static_cast<const Node&>(root), pointer));
}

std::vector<Difference> Differences(const Node& before, const Node& after) {
  std::vector<Difference> differences;
  Compare("", &before, &after, differences);
  return differences;
}

Node Torn(const Node& before, const Node& after, const std::vector<std::string>& part_groups) {
  Node torn = before;
  for (const std::string& group : part_groups) {
    Node* const parts = FindPath(torn, group);
    const Node* const wanted = FindPath(after, group);
    if (parts == nullptr || wanted == nullptr) continue;
    std::vector<Node*> changed;
    for (Node& part : parts->Items()) {
      const Node* const written = wanted->Find(part.Name());
      if (written != nullptr && !(part == *written)) changed.push_back(&part);
    }
    changed.resize((changed.size() + 1) / 2);
    for (Node* const part : changed) *part = *wanted->Find(part->Name());
  }
  return torn;
}

}  // namespace mira::sim
