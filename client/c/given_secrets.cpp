#include "client/c/given_secrets.h"

#include <algorithm>
#include <string_view>

#include "client/error.h"

namespace mira::client::c {
namespace {

constexpr std::uint32_t kLongestSecret = 1024;
constexpr std::string_view kSeveral = "secrets";
constexpr std::uint32_t kLongestSeveral = 64 * 1024;

std::string ReadSlot(const mira_secret& secret, std::span<const char* const> slots) {
  if (secret.slot == nullptr) throw Error(kUsage, "bad-secret", "A secret has no slot.");
  const std::string_view slot = secret.slot;
  if (std::find(slots.begin(), slots.end(), slot) != slots.end()) return std::string(slot);
  // What is not known is not repeated: it may be the secret itself.
  std::string known;
  for (const char* const name : slots) known += (known.empty() ? "" : ", ") + std::string(name);
  throw Error(kUsage, "unknown-secret",
              known.empty() ? "The request takes no secrets."
                            : "The request takes no secret of that slot, but: " + known + ".");
}

}  // namespace

GivenSecrets::GivenSecrets(std::span<const mira_secret> secrets,
                           std::span<const char* const> slots) {
  for (const mira_secret& secret : secrets) {
    const std::string slot = ReadSlot(secret, slots);
    if (secret.size > (slot == kSeveral ? kLongestSeveral : kLongestSecret) ||
        (secret.bytes == nullptr && secret.size != 0)) {
      throw Error(kUsage, "bad-secret", "The secret '" + slot + "' has a wrong size.", slot);
    }
    const std::string_view text(static_cast<const char*>(secret.bytes), secret.size);
    if (text.find('\0') != std::string_view::npos) {
      throw Error(kUsage, "bad-secret", "The secret '" + slot + "' has a zero byte.", slot);
    }
    if (!secrets_.try_emplace(slot, text).second) {
      throw Error(kUsage, "bad-secret", "The secret '" + slot + "' is given twice.", slot);
    }
  }
}

std::optional<bytes::SecureString> GivenSecrets::Get(const std::string& slot, const std::string&) {
  const auto found = secrets_.find(slot);
  if (found == secrets_.end()) return std::nullopt;
  return found->second;
}

}  // namespace mira::client::c
