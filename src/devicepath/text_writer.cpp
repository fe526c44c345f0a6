#include <algorithm>

#include "devicepath/generic_names.h"
#include "devicepath/nodes.h"
#include "devicepath/text.h"

namespace mira::devicepath {
namespace {

using bytes::ByteSpan;
using bytes::Reader;

bool Fits(const Form& form, ByteSpan node) {
  if (form.is_only_read || (form.size != 0 && form.size != node.size())) return false;
  return std::all_of(std::begin(form.conditions), std::end(form.conditions),
                     [node](const Condition& condition) {
                       Reader in(node, condition.offset);
                       const std::uint64_t value = in.Number(condition.width);
                       return in.Ok() && value == condition.value;
                     });
}

// False, with the text as it was, where the node is too short for the form or holds what the form
// cannot say.
bool WriteForm(const Form& form, ByteSpan node, std::string& text) {
  if (!Fits(form, node)) return false;
  const std::size_t before = text.size();
  const bool has_brackets = !form.name.empty();
  text += form.name;
  if (has_brackets) text += '(';
  bool is_first = true;
  for (const Arg& arg : form.Args()) {
    const std::size_t start = text.size();
    if (!is_first) text += ',';
    const std::size_t empty = text.size();
    if (!arg.notation->write(arg, node, text)) {
      text.resize(before);
      return false;
    }
    if (arg.is_hidden_empty && text.size() == empty) text.resize(start);
    is_first = false;
  }
  if (has_brackets) text += ')';
  return true;
}

void WriteNode(std::uint8_t type, std::uint8_t subtype, ByteSpan node, std::string& text) {
  const std::span<const Form> forms = FormsOf(type, subtype);
  for (const Form& form : forms) {
    if (WriteForm(form, node, text)) return;
  }
  const GenericName* const generic =
      std::find_if(std::begin(kGenericNames), std::end(kGenericNames),
                   [&](const GenericName& row) { return forms.empty() && row.type == type; });
  if (generic == std::end(kGenericNames)) {
    AppendDecimal(type, text.append(kAnyNode) += '(');
    text += ',';
  } else {
    text.append(generic->name) += '(';
  }
  AppendDecimal(subtype, text);
  const ByteSpan data = bytes::Slice(node, kNodeHeader);
  if (!data.empty()) AppendHexBytes(data, text += ',');
  text += ')';
}

// The path at the front of the bytes, which loses them; offsets of problems count from `start`.
Path TakePath(ByteSpan& bytes, std::size_t start) {
  Path path;
  PathWalk walk(bytes);
  while (const std::optional<RawNode> node = walk.Next()) {
    if (node->type == kEndType) {
      path.text += ',';
      continue;
    }
    if (!path.text.empty()) path.text += '/';
    WriteNode(node->type, node->subtype, node->bytes, path.text);
  }
  const std::size_t size = walk.Size();
  if (const char* const reason = walk.Reason()) path.problem = {start + walk.Offset(), reason};
  path.bytes.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
  bytes = bytes.subspan(size);
  return path;
}

}  // namespace

std::string DevicePathToText(const NodeRecords::DevicePath& path) {
  std::string text;
  for (const auto& record : path) {
    if (!record) continue;
    if (!text.empty()) text += '/';
    const NodeBytes node = EncodeNode(*record);
    WriteNode(node[0], node[1], node, text);
  }
  return text;
}

std::vector<Path> DecodePaths(ByteSpan list) {
  std::vector<Path> paths;
  ByteSpan rest = list;
  do {
    paths.push_back(TakePath(rest, list.size() - rest.size()));
  } while (!rest.empty());
  return paths;
}

std::string DevicePathToText(ByteSpan path) { return TakePath(path, 0).text; }

}  // namespace mira::devicepath
