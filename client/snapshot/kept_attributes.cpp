#include "client/snapshot/kept_attributes.h"

#include <algorithm>
#include <utility>

#include "client/attribute_value.h"

namespace mira::client {
namespace {

constexpr char kAtBootProblem[] = "atBootProblem";

Json KeepAttribute(Attributes& attributes, const AttributeEntry& entry) {
  Json item = ToJson(attributes, attributes.ReadLive(entry));
  if (!item.at("atBoot").is_null() || entry.IsPassword()) return item;
  try {
    attributes.ReadAtBoot(entry);
  } catch (const Error& error) {
    item[kAtBootProblem] = ToJson(error);
  }
  return item;
}

AttributeEntry EntryFromJson(const Json& json, const char* name) {
  return {.handle = json.at("handle"),
          .type = TypeOfName(json.at("type"), json.at("readOnly")),
          .name = ToUtf8(TextFromJson(json.at(name)))};
}

KeptAttribute AttributeFromJson(const Json& json) {
  KeptAttribute kept{.entry = EntryFromJson(json, "name"), .item = json};
  if (json.contains(kAtBootProblem)) {
    kept.at_boot_problem = ErrorFromJson(json[kAtBootProblem]);
    kept.item.erase(kAtBootProblem);
  }
  return kept;
}

KeptAttribute UnreadableFromJson(const Json& json) {
  KeptAttribute kept{.entry = EntryFromJson(json, "attribute"), .item = nullptr};
  kept.problem = ErrorFromJson(json);
  for (const char* const key : {"handle", "attribute", "type", "readOnly"}) {
    kept.problem->details.erase(key);
  }
  return kept;
}

}  // namespace

Json KeepAttributes(Session& session) {
  Attributes attributes(session, Session::Texts::kAll);
  Json list = Json::array();
  Json unreadable = Json::array();
  for (const AttributeEntry& entry : attributes.All()) {
    session.Report("Reading attributes", list.size() + unreadable.size(), attributes.All().size());
    try {
      list.push_back(KeepAttribute(attributes, entry));
    } catch (const Error& error) {
      Json json = ToJson(error);
      json["handle"] = entry.handle;
      json["attribute"] = entry.name;
      json["type"] = TypeName(entry.type);
      json["readOnly"] = entry.IsReadOnly();
      unreadable.push_back(std::move(json));
    }
  }
  Json value = {{"attributes", std::move(list)}};
  if (!unreadable.empty()) value["unreadable"] = std::move(unreadable);
  return value;
}

std::vector<KeptAttribute> KeptAttributes(const Snapshot& kept) {
  std::vector<KeptAttribute> list = kept.List(kAttributesSubject, "attributes", AttributeFromJson);
  if (kept.Value(kAttributesSubject).contains("unreadable")) {
    for (auto& one : kept.List(kAttributesSubject, "unreadable", UnreadableFromJson)) {
      list.push_back(std::move(one));
    }
  }
  std::stable_sort(list.begin(), list.end(),
                   [](const auto& a, const auto& b) { return a.entry.handle < b.entry.handle; });
  return list;
}

}  // namespace mira::client
