#ifndef MIRA_SIM_PROFILE_FILE_H_
#define MIRA_SIM_PROFILE_FILE_H_

// Machines as files: a profile in JSON, as docs/json/profile.schema.json describes it. What a file
// does not say is as in the profile that it names as its base, or as in the laptop.
//
//   Profile profile = ReadProfile(R"({"name": "kiosk", "base": "locked", "assetTag": "K-7"})");

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "sim/profile.h"
#include "sim/state_document.h"

namespace mira::sim {

// The profiles that a file may name as its base.
using ProfileBases = std::vector<Profile>;

// Throws StateError, with line and JSON pointer, for a text that is no profile.
Profile ReadProfile(std::string_view json, const ProfileBases& bases);
Profile ReadProfile(std::string_view json);
// The same for a file.
Profile LoadProfile(const std::filesystem::path& file);
// The profile in full, without a base.
std::string WriteProfile(const Profile& profile);

}  // namespace mira::sim

#endif  // MIRA_SIM_PROFILE_FILE_H_
