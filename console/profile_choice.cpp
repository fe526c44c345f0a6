#include "console/profile_choice.h"

#include "console/command.h"
#include "console/hints.h"
#include "sim/chosen_profile.h"
#include "sim/profile_file.h"

namespace mira::console {
namespace {

Error UnknownProfile(ExitStatus status, const std::string& name) {
  std::string known;
  for (const sim::Profile& p : sim::Profiles()) known += (known.empty() ? "" : ", ") + p.name;
  return WithHint(Error(status, "unknown-profile",
                        "There is no simulated machine called '" + name + "'.", name),
                  "The machines are: " + known + ". A file that ends in .json describes one, too.");
}

}  // namespace

sim::Profile LoadProfileFile(const std::string& path) {
  try {
    return sim::LoadProfile(ToPath(path));
  } catch (const sim::StateError& error) {
    throw Error(
        kInvalidValue, "bad-profile",
        client::Sentence("'" + path + "' does not describe a simulated machine: " + error.what()),
        path);
  }
}

void CheckProfileName(const std::string& name) {
  if (sim::FindProfile(name) == nullptr && !sim::IsProfileFile(name)) {
    throw UnknownProfile(kUsage, name);
  }
}

sim::Profile ChosenProfile(const std::string& name) {
  if (const sim::Profile* const profile = sim::FindProfile(name)) return *profile;
  if (sim::IsProfileFile(name)) return LoadProfileFile(name);
  throw UnknownProfile(kNotFound, name);
}

}  // namespace mira::console
