#include "client/snapshot/identity_values.h"

#include "client/snapshot/fields.h"
#include "client/snapshot/snapshot.h"

namespace mira::client {

IdentityValues::IdentityValues(const Json& subjects) {
  for (const char* const name : {kInventorySubject, kTagsSubject, kIdentifiersSubject}) {
    const auto subject = subjects.find(name);
    if (subject != subjects.end() && subject->contains("value")) Add(name, subject->at("value"));
  }
}

void IdentityValues::Add(const std::string& path, const Json& value) {
  if (value.is_structured()) {
    for (const auto& [key, part] : value.items()) {
      Add(path + '.' + (value.is_array() ? "*" : key), part);
    }
    return;
  }
  // A manufacturer's strings say much else, too.
  if (path == "inventory.oemStrings.*") return;
  if (!value.is_string() || RuleOf(path).meaning != Meaning::kIdentity) return;
  std::string text = Readable(value);
  text.resize(text.find_last_not_of(' ') + 1);
  if (!text.empty()) values_.insert(std::move(text));
}

}  // namespace mira::client
