#ifndef MIRA_DEVICEPATH_TEXT_H_
#define MIRA_DEVICEPATH_TEXT_H_

// UEFI device paths as text, in the UEFI specification's full form, and back.
//
//   std::cout << mira::devicepath::DevicePathToText(bytes);
//   // PciRoot(0x0)/Pci(0x1F,0x2)/Sata(0x0,0xFFFF,0x0)
//   Problem problem;
//   if (!mira::devicepath::DevicePathFromText(text, &problem)) std::cerr << problem.message;
//
// A node of a type that has no text is written by its numbers and bytes, as HardwarePath, AcpiPath,
// Msg, MediaPath or BbsPath(subtype,bytes), or, where its type is unknown or the node is too short
// for its type, as Path(type,subtype,bytes). Texts are UTF-8. Any thread may call these functions.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"
#include "devicepath/records.h"
#include "platform/api.h"

namespace mira::devicepath {

// What is wrong with bytes or a text, and where: bytes from their start.
struct Problem {
  std::size_t offset = 0;
  std::string message;  // a sentence
};

// A path with its end node.
struct Path {
  std::string text;  // further instances stand behind ",/"
  std::vector<std::uint8_t> bytes;
  // Of a malformed path, whose text goes as far as its nodes can be followed: a node's length is
  // below 4 or leads past the bytes, or the end node is missing or no end node of the standard's.
  std::optional<Problem> problem;
};

// The paths that stand one behind another in the bytes, at least one: no bytes are a path without
// an end node. What is behind a malformed place belongs to its path. Offsets of problems count
// from the start of `list`.
MIRA_API std::vector<Path> DecodePaths(bytes::ByteSpan list);

// The text of the first path.
MIRA_API std::string DevicePathToText(bytes::ByteSpan path);

// A decoded path, as CUEFILOList holds it.
MIRA_API std::string DevicePathToText(const NodeRecords::DevicePath& path);

// The bytes of a path with its end node; nothing when the text cannot be understood, which
// `problem` explains. Names are taken in any case, numbers in hexadecimal (0x) or decimal;
// arguments that have a default may be left out. What is no name with brackets is a file path.
MIRA_API std::optional<std::vector<std::uint8_t>> DevicePathFromText(std::string_view text,
                                                                     Problem* problem = nullptr);

}  // namespace mira::devicepath

#endif  // MIRA_DEVICEPATH_TEXT_H_
