#include "client/snapshot/boot_names.h"

#include <cstdint>
#include <map>

#include "bytes/text.h"

namespace mira::client {
namespace {

std::string BootOptionName(const Json& option, const std::set<std::string>& doubled) {
  const std::string description = Readable(option.at("description"));
  if (!doubled.contains(description)) return description;
  const Json& path = option.at("path");
  const std::string more = path.is_null() && option.contains("device")
                               ? Readable(option["device"].at("description"))
                               : Readable(path);
  return description + " (" + more + ")";
}

}  // namespace

std::set<std::string> DoubledDescriptions(std::initializer_list<const Json*> boots) {
  std::set<std::string> doubled;
  for (const Json* const boot : boots) {
    for (const Json& list : boot->at("lists")) {
      if (!list.contains("options")) continue;
      std::set<std::string> seen;
      for (const Json& option : list["options"]) {
        const std::string description = Readable(option.at("description"));
        if (!seen.insert(description).second) doubled.insert(description);
      }
    }
  }
  return doubled;
}

Json WithBootNames(const Json& boot, const std::set<std::string>& doubled) {
  Json named = boot;
  for (Json& list : named.at("lists")) {
    if (!list.contains("options")) continue;
    std::map<std::uint64_t, std::string> names;
    for (Json& option : list["options"]) {
      option[kBootOptionKey] = BootOptionName(option, doubled);
      names[option.at("number").get<std::uint64_t>()] = option[kBootOptionKey];
    }
    Json order = Json::array();
    for (const Json& number : list.at("order")) {
      const auto name = names.find(number.get<std::uint64_t>());
      order.push_back(name != names.end() ? Json(name->second) : Json("unlisted"));
    }
    list["order"] = std::move(order);
  }
  return named;
}

}  // namespace mira::client
