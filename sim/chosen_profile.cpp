#include "sim/chosen_profile.h"

#include <cstdint>

#include "bytes/text.h"
#include "sim/profile_file.h"

namespace mira::sim {
namespace {

std::string Utf8Path(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace

bool IsProfileFile(const std::string& name) { return name.ends_with(".json"); }

std::filesystem::path FilePath(const std::string& utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

Profile ChooseProfile(const std::string& name) {
  if (const Profile* const profile = FindProfile(name)) return *profile;
  if (IsProfileFile(name)) return LoadProfile(FilePath(name));
  throw UnknownProfile("there is no simulated machine called '" + name + "'");
}

std::filesystem::path KeptName(const std::string& name) {
  if (!IsProfileFile(name)) return FilePath(name + ".machine");
  const std::filesystem::path file = std::filesystem::absolute(FilePath(name));
  std::uint32_t hash = 2166136261;
  for (const char c : Utf8Path(file)) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619;
  return FilePath(Utf8Path(file.stem()) + "-" + bytes::HexNumber(hash, 8) + ".machine");
}

}  // namespace mira::sim
