#ifndef MIRA_CLIENT_TAG_H_
#define MIRA_CLIENT_TAG_H_

// The tags that the firmware keeps: asset, service, ownership, and the extended ones, which have a
// command value each.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/json.h"
#include "client/plan.h"
#include "client/session.h"

namespace mira::client {

// The kinds by name: "asset", "service", "ownership", "extended".
const std::vector<std::string>& TagKinds();

// The name of the error of a text that is too long for a tag that has what it can hold of it.
inline constexpr char kAlreadyCut[] = "text-too-long";

struct Tag {
  std::string kind;
  std::uint32_t command = 0;  // of an extended tag
  std::optional<std::string> text =
      std::nullopt;  // as the firmware has it; nothing where it cannot be read
  std::optional<Error> problem = std::nullopt;
};

// Throws Error where the machine has no such tag.
Tag ReadTag(Session& session, const std::string& kind, std::uint32_t command = 0);
// All of them. Those that cannot be read have their problem.
std::vector<Tag> ReadTags(Session& session, std::uint32_t command = 0);

// The plan to give a tag this text. The firmware keeps the first 12 characters of asset and service
// tags, and the first 80 of the ownership tag: the plan's subject says by "cut" when that is less.
// Throws Error for a text that no tag can have.
Plan PlanTag(Session& session, const std::string& kind, const std::string& text,
             std::uint32_t command = 0);

// {"tag", "value"}; "command" of an extended tag, "problem" of one that cannot be read.
Json ToJson(const Tag& tag);
Tag TagFromJson(const Json& json);

}  // namespace mira::client

#endif  // MIRA_CLIENT_TAG_H_
