#ifndef MIRA_SIM_STATE_DOCUMENT_H_
#define MIRA_SIM_STATE_DOCUMENT_H_

// The document of a machine's state, a JSON text, and its tree. Both may hold passwords, so all
// memory that had a part of one is wiped.
//
//   Node root;
//   root.Add("starts").SetNumber(2);
//   mira::bytes::SecureString text = WriteJson(root);
//   Node again = ParseJson(text);

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/secure.h"

namespace mira::sim {

// A document that is none, or not of the machine that takes it; says where.
struct StateError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// A value of the tree: null, flag, whole number, text, list or object.
class Node {
 public:
  enum class Kind { kNull, kFlag, kNumber, kText, kList, kObject };

  Kind GetKind() const { return kind_; }
  bool Flag() const { return number_ != 0; }
  std::int64_t Number() const { return number_; }
  const std::string& Text() const { return text_.str(); }
  // The members of an object in their order, or the items of a list.
  const std::vector<Node>& Items() const { return items_; }
  std::vector<Node>& Items() { return items_; }
  // The name as a member of an object.
  const std::string& Name() const { return name_; }
  // The line of the text that it was read from; 0 for none.
  int Line() const { return line_; }
  void SetLine(int line) { line_ = line; }
  // Null when the object has no such member.
  const Node* Find(std::string_view name) const;
  Node* Find(std::string_view name);

  void SetFlag(bool flag);
  void SetNumber(std::int64_t number);
  // In UTF-8.
  void SetText(std::string_view text);
  void Become(Kind kind);
  // Adds a member to an object, in the place of one of this name; adds an item to a list.
  Node& Add(std::string_view name);
  Node& AddItem();

  // Members in another order are another object.
  bool operator==(const Node& other) const;

 private:
  Kind kind_ = Kind::kNull;
  int line_ = 0;
  std::int64_t number_ = 0;
  bytes::SecureString text_;
  std::string name_;
  std::vector<Node> items_;
};

// Two blanks a level, a member a line.
bytes::SecureString WriteJson(const Node& node);
// The same on one line, which it ends.
bytes::SecureString WriteJsonLine(const Node& node);
// Throws StateError with the line for a text that is no JSON, or holds fractions.
Node ParseJson(std::string_view text);

}  // namespace mira::sim

#endif  // MIRA_SIM_STATE_DOCUMENT_H_
