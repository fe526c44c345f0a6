#ifndef MIRA_DEVICEPATH_NODE_READER_H_
#define MIRA_DEVICEPATH_NODE_READER_H_

// A node from its text.
//
//   NodeBytes node;
//   Failure failure;
//   if (!ReadNamed("Pci(0x1F,0x2)", node, failure)) ...

#include <string>
#include <string_view>

#include "devicepath/node_types.h"

namespace mira::devicepath {

// Why a text is not understood: the place in it, and a sentence.
struct Failure {
  const char* at = nullptr;
  std::string message;
};

// A name with brackets, which end the text. The node's length is left 0.
bool ReadNamed(std::string_view text, NodeBytes& node, Failure& failure);

// A file's path, which has no name.
bool ReadFilePath(std::string_view text, NodeBytes& node);

bool IsNodeName(std::string_view name);

}  // namespace mira::devicepath

#endif  // MIRA_DEVICEPATH_NODE_READER_H_
