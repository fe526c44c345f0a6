#include "console/input_file.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "bytes/secure.h"
#include "console/terminal.h"

namespace mira::console {
namespace {

constexpr std::size_t kMost = 64 * 1024 * 1024;

void Grow(std::vector<std::uint8_t>& content) {
  std::vector<std::uint8_t> larger;
  larger.reserve(2 * content.size());
  larger.assign(content.begin(), content.end());
  bytes::Wipe(content.data(), content.size());
  content = std::move(larger);
}

std::vector<std::uint8_t> ReadAll(std::istream& in) {
  std::vector<std::uint8_t> content;
  content.reserve(64 * 1024);
  // What grows leaves no copy behind: it may hold secrets.
  for (std::istreambuf_iterator<char> next(in), end; next != end && content.size() < kMost;
       ++next) {
    if (content.size() == content.capacity()) Grow(content);
    content.push_back(static_cast<std::uint8_t>(*next));
  }
  return content;
}

}  // namespace

std::vector<std::uint8_t> LoadFile(const std::string& path) {
  std::error_code error;
  // The stream's buffer is wiped, too.
  bytes::SecureString buffer(std::string(64 * 1024, '\0'));
  std::ifstream file;
  file.rdbuf()->pubsetbuf(buffer.str().data(), static_cast<std::streamsize>(buffer.size()));
  file.open(ToPath(path), std::ios::binary);
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
