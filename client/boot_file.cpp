#include <algorithm>

#include "bytes/text.h"
#include "client/boot.h"
#include "client/error.h"
#include "client/smbios_text.h"

namespace mira::client {
namespace {

// Bytes as they are, or in hexadecimal: text holds no NUL, an option and a path always do.
std::vector<std::uint8_t> BytesOf(const std::string& content) {
  if (content.find('\0') != std::string::npos) return {content.begin(), content.end()};
  std::vector<std::uint8_t> bytes = FromHexDump(bytes::WithoutHexPrefix(content).value_or(content));
  if (!bytes.empty()) return bytes;
  throw Error(kInvalidValue, "no-bytes", "These are neither bytes of firmware nor hexadecimal.");
}

}  // namespace

BootOption DecodeBootOption(const std::string& content) {
  const std::vector<std::uint8_t> bytes = BytesOf(content);
  devicepath::Problem problem;
  auto decoded = devicepath::DecodeLoadOption(bytes, &problem);
  if (!decoded) {
    throw Error(kInvalidValue, "no-load-option",
                "This is not a load option, at byte " + std::to_string(problem.offset) + ": " +
                    problem.message)
        .With("offset", problem.offset);
  }
  BootOption option;
  option.attributes = decoded->attributes;
  option.description = std::move(decoded->description);
  option.paths = std::move(decoded->paths);
  option.optional_data = std::move(decoded->optional_data);
  option.variable_attributes = decoded->variable_attributes;
  return option;
}

std::vector<devicepath::Path> DecodeBootPaths(const std::string& content) {
  return devicepath::DecodePaths(BytesOf(content));
}

}  // namespace mira::client
