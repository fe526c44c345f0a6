#ifndef MIRA_DEVICEPATH_LOAD_OPTION_H_
#define MIRA_DEVICEPATH_LOAD_OPTION_H_

// UEFI load options (EFI_LOAD_OPTION), as they lie in Boot#### variables.
//
//   Problem problem;
//   if (auto option = mira::devicepath::DecodeLoadOption(bytes, &problem)) {
//     for (const Path& path : option->paths) std::cout << path.text << '\n';
//   }

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bytes/reader.h"
#include "devicepath/text.h"
#include "platform/api.h"

namespace mira::devicepath {

struct LoadOption {
  static constexpr std::uint32_t kActive = 1;  // bit of the attributes

  std::uint32_t attributes = 0;
  std::u16string description;
  // The FilePathList: the first path leads to what is started, those behind it are its loader's
  // own. Of a decoded option there is at least one; offsets of problems count from the start of
  // the decoded bytes.
  std::vector<Path> paths;
  std::vector<std::uint8_t> optional_data;
  // The variable's attributes, where they stand in front of the option, as in Linux's efivarfs.
  std::optional<std::uint32_t> variable_attributes;

  bool IsActive() const { return (attributes & kActive) != 0; }
  // The first problem of its paths; null where all are well-formed.
  const Problem* FirstProblem() const {
    for (const Path& path : paths) {
      if (path.problem) return &*path.problem;
    }
    return nullptr;
  }
};

// Nothing when the bytes are too short for what they announce, which `problem` explains. A file of
// Linux's efivarfs is known by its four leading bytes and read behind them.
MIRA_API std::optional<LoadOption> DecodeLoadOption(bytes::ByteSpan bytes,
                                                    Problem* problem = nullptr);

// The bytes of an option, of each path its `bytes`; variable attributes are not written. Nothing
// when the paths are longer than 65,535 bytes or the description holds a NUL.
MIRA_API std::optional<std::vector<std::uint8_t>> EncodeLoadOption(const LoadOption& option);

}  // namespace mira::devicepath

#endif  // MIRA_DEVICEPATH_LOAD_OPTION_H_
