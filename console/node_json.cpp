#include "console/node_json.h"

#include "sim/node_paths.h"

namespace mira::console {

Json JsonOf(const sim::Node& node) {
  using Kind = sim::Node::Kind;
  if (sim::IsSecret(node)) return "(secret)";
  switch (node.GetKind()) {
    case Kind::kNull:
      return nullptr;
    case Kind::kFlag:
      return node.Flag();
    case Kind::kNumber:
      return node.Number();
    case Kind::kText:
      return node.Text();
    case Kind::kList: {
      Json list = Json::array();
      for (const sim::Node& item : node.Items()) list.push_back(JsonOf(item));
      return list;
    }
    case Kind::kObject:
      break;
  }
  Json object = Json::object();
  for (const sim::Node& member : node.Items()) object[member.Name()] = JsonOf(member);
  return object;
}

}  // namespace mira::console
