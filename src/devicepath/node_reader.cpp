#include "devicepath/node_reader.h"

#include <algorithm>

#include "devicepath/generic_names.h"

namespace mira::devicepath {
namespace {

// Where a form does not take the arguments: at which, and whether there is one.
struct Mismatch {
  const char* at = nullptr;
  std::size_t number = 0;
  enum { kWrong, kMissing, kTooMany } kind = kWrong;
};

// The parts from `first` on, `count` of them, with the commas between them.
std::string_view Joined(const std::vector<std::string_view>& parts, std::size_t first,
                        std::size_t count) {
  const char* const begin = parts[first].data();
  const std::string_view& last = parts[first + count - 1];
  return {begin, static_cast<std::size_t>(last.data() + last.size() - begin)};
}

bool ReadForm(const Form& form, std::string_view inner, const std::vector<std::string_view>& parts,
              NodeBytes& node, Mismatch& mismatch) {
  const std::span<const Arg> args = form.Args();
  const char* const end = inner.data() + inner.size();
  node = {form.type, form.subtype, 0, 0};
  for (const Condition& condition : form.conditions) {
    if (condition.width > 0) SetField(condition.offset, condition.width, condition.value, node);
  }
  if (args.empty()) {
    mismatch = {inner.data(), 0, Mismatch::kTooMany};
    return Trimmed(inner).empty();
  }
  std::size_t next = 0;
  for (const Arg& arg : args) {
    const auto number = static_cast<std::size_t>(&arg - args.data()) + 1;
    const std::size_t left = parts.size() - next;
    const std::size_t behind = args.size() - number;
    // An argument that may hold commas takes what those behind it leave.
    std::size_t taken = std::min(left, arg.parts);
    if (arg.parts == 0) taken = left > behind ? left - behind : std::min<std::size_t>(left, 1);
    std::string_view text = taken == 0 ? std::string_view(end, 0) : Joined(parts, next, taken);
    next += taken;
    if (arg.fallback != nullptr && Trimmed(text).empty()) {
      text = arg.fallback;
    } else if (taken == 0) {
      mismatch = {end, number, Mismatch::kMissing};
      return false;
    }
    if (!arg.notation->read(arg, text, node)) {
      mismatch = {text.data(), number, Mismatch::kWrong};
      return false;
    }
  }
  if (next < parts.size()) {
    mismatch = {parts[next].data(), args.size(), Mismatch::kTooMany};
    return false;
  }
  if (form.size == 0) {
    const NodeType* const type = FindNodeType(form.type, form.subtype);
    node.resize(std::max(node.size(), type->shortest));
  }
  return true;
}

std::string Sentence(std::string_view name, const Mismatch& mismatch) {
  const std::string number = std::to_string(mismatch.number);
  const std::string quoted = "'" + std::string(name) + "'";
  switch (mismatch.kind) {
    case Mismatch::kMissing:
      return quoted + " lacks its argument " + number + ".";
    case Mismatch::kTooMany:
      return quoted + " takes " + (mismatch.number == 0 ? "no" : "at most " + number) +
             " arguments.";
    default:
      return "Argument " + number + " of " + quoted + " is not understood.";
  }
}

bool ReadGeneric(std::optional<std::uint8_t> type, const std::vector<std::string_view>& parts,
                 NodeBytes& node) {
  std::size_t next = 0;
  const auto byte = [&]() -> std::optional<std::uint64_t> {
    if (next == parts.size()) return std::nullopt;
    return ParseNumber(Trimmed(parts[next++]), 0xFF);
  };
  const std::optional<std::uint64_t> first = type ? *type : byte();
  const std::optional<std::uint64_t> subtype = byte();
  if (!first || !subtype || *first == kEndType) return false;
  node = {static_cast<std::uint8_t>(*first), static_cast<std::uint8_t>(*subtype), 0, 0};
  if (next == parts.size()) return true;
  return next + 1 == parts.size() && SetBytes(kNodeHeader, ParseHexBytes(parts[next]), node);
}

}  // namespace

bool ReadNamed(std::string_view text, NodeBytes& node, Failure& failure) {
  const std::size_t bracket = text.find('(');
  const std::string_view name = text.substr(0, bracket);
  const std::string_view inner = text.substr(bracket + 1, text.size() - bracket - 2);
  const std::vector<std::string_view> parts = Split(inner, ',');
  bool is_known = false;
  Mismatch furthest;
  for (const Form& form : Forms()) {
    if (!SameText(name, form.name)) continue;
    Mismatch mismatch;
    if (ReadForm(form, inner, parts, node, mismatch)) return true;
    if (!is_known || mismatch.at > furthest.at) furthest = mismatch;
    is_known = true;
  }
  if (is_known) {
    failure = {furthest.at, Sentence(name, furthest)};
    return false;
  }
  for (const GenericName& row : kGenericNames) {
    if (!SameText(name, row.name)) continue;
    failure = {inner.data(), "A subtype and bytes in hexadecimal are wanted."};
    return ReadGeneric(row.type, parts, node);
  }
  if (SameText(name, kAnyNode)) {
    failure = {inner.data(), "A type, a subtype and bytes in hexadecimal are wanted."};
    return ReadGeneric(std::nullopt, parts, node);
  }
  failure = {text.data(), "No node is called '" + std::string(name) + "'."};
  return false;
}

bool IsNodeName(std::string_view name) {
  const auto is_name = [name](const auto& row) { return SameText(name, row.name); };
  return SameText(name, kAnyNode) ||
         std::any_of(std::begin(kGenericNames), std::end(kGenericNames), is_name) ||
         std::any_of(Forms().begin(), Forms().end(), is_name);
}

bool ReadFilePath(std::string_view text, NodeBytes& node) {
  constexpr std::uint8_t kMedia = 4;
  constexpr std::uint8_t kFilePath = 4;
  Mismatch mismatch;
  return ReadForm(FormsOf(kMedia, kFilePath).front(), text, {text}, node, mismatch);
}

}  // namespace mira::devicepath
