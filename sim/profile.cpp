#include "sim/profile.h"

#include <algorithm>

#include "sim/embedded_profiles.h"
#include "sim/profile_file.h"

namespace mira::sim {

const std::vector<Profile>& Profiles() {
  static const std::vector<Profile> profiles = [] {
    // The laptop comes first: it is what the others differ from.
    std::vector<Profile> read;
    for (const std::string_view json : EmbeddedProfiles()) read.push_back(ReadProfile(json, {}));
    std::stable_partition(read.begin(), read.end(),
                          [](const Profile& p) { return p.name == Profile().name; });
    return read;
  }();
  return profiles;
}

const Profile* FindProfile(std::string_view name) {
  const auto& profiles = Profiles();
  const auto found = std::find_if(profiles.begin(), profiles.end(),
                                  [name](const Profile& p) { return p.name == name; });
  return found != profiles.end() ? &*found : nullptr;
}

}  // namespace mira::sim
