#include "console/input_file.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "console/terminal.h"

namespace mira::console {
namespace {

constexpr std::size_t kMost = 64 * 1024 * 1024;

std::vector<std::uint8_t> ReadAll(std::istream& in) {
  std::vector<std::uint8_t> content;
  content.reserve(64 * 1024);
  for (std::istreambuf_iterator<char> next(in), end; next != end && content.size() < kMost;
       ++next) {
    content.push_back(static_cast<std::uint8_t>(*next));
  }
  return content;
}

}  // namespace

std::vector<std::uint8_t> LoadFile(const std::string& path) {
  std::error_code error;
  std::ifstream file(ToPath(path), std::ios::binary);
  // A folder may be opened like a file, and fails only when it is read.
  if (!file || std::filesystem::is_directory(ToPath(path), error)) {
    throw Error(kNotFound, "no-file", "The file '" + path + "' cannot be read.", path);
  }
  return ReadAll(file);
}

std::vector<std::uint8_t> LoadFileOrInput(Context& context, const std::string& path) {
  if (path != "-") return LoadFile(path);
  if (&context.In() == &std::cin) MakeStandardInputBinary();
  return ReadAll(context.In());
}

}  // namespace mira::console
