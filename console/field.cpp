#include "console/field.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "bytes/text.h"
#include "client/error.h"
#include "console/hints.h"
#include "console/output.h"

namespace mira::console {
namespace {

using client::Json;

// What a path's word names in a value, or null.
const Json* Part(const Json& value, const std::string& word) {
  if (value.is_object()) {
    const auto found = value.find(word);
    return found != value.end() ? &*found : nullptr;
  }
  if (!value.is_array()) return nullptr;
  const auto index = bytes::ParseDigits(word, 10);
  if (index) return *index < value.size() ? &value[static_cast<std::size_t>(*index)] : nullptr;
  return value.size() == 1 ? Part(value.front(), word) : nullptr;
}

// The one thing of the document's only list. Null: it has several lists, or the list several
// things.
const Json* OnlyThing(const Json& document) {
  const Json* list = nullptr;
  for (const auto& [name, part] : document.items()) {
    if (!part.is_array()) continue;
    if (list != nullptr) return nullptr;
    list = &part;
  }
  return list != nullptr && list->size() == 1 && list->front().is_object() ? &list->front()
                                                                           : nullptr;
}

// What stands in a value, for the hint of a word that does not.
std::string Offers(const Json& value, const Json* only, const std::string& word) {
  if (value.is_array() && value.empty()) return "The list is empty.";
  if (value.is_array() && value.size() > 1) {
    return "The list has the indices 0 to " + std::to_string(value.size() - 1) + ".";
  }
  const Json& object = value.is_array() ? value.front() : value;
  if (!object.is_object()) return "It has no fields.";
  std::vector<std::string> names;
  std::string all;
  const auto add = [&](const std::string& name) {
    names.push_back(name);
    all += (all.empty() ? "" : ", ") + name;
  };
  for (const auto& [name, part] : object.items()) add(name);
  if (only != nullptr) {
    for (const auto& [name, part] : only->items()) {
      if (!object.contains(name)) add(name);
    }
  }
  return Suggest(word, names, "The fields are: " + all + ".");
}

struct Found {
  const Json* value = nullptr;  // null: there is no such field
  const Json* last = nullptr;   // the innermost value on the way
  std::string word;             // what that one does not have
};

Found Search(const Json& document, const std::string& path) {
  Found found{&document, &document, ""};
  std::string_view rest = path;
  for (bool more = true; more && found.value != nullptr;) {
    const std::size_t dot = rest.find('.');
    more = dot != std::string_view::npos;
    found.word = std::string(rest.substr(0, dot));
    if (more) rest.remove_prefix(dot + 1);
    found.last = found.value;
    found.value = Part(*found.last, found.word);
    if (found.value != nullptr || found.last != &document) continue;
    if (const Json* const only = OnlyThing(document)) found.value = Part(*only, found.word);
  }
  return found;
}

}  // namespace

const Json& FindField(const Json& document, const std::string& path) {
  const Found found = Search(document, path);
  if (found.value != nullptr) return *found.value;
  throw WithHint(
      client::Error(client::kUsage, "unknown-field", "The answer has no field '" + path + "'.",
                    path),
      Offers(*found.last, found.last == &document ? OnlyThing(document) : nullptr, found.word));
}

bool HasField(const Json& document, const std::string& path) {
  return Search(document, path).value != nullptr;
}

std::string FieldText(const Json& value) {
  if (value.is_string()) return Escaped(value.get<std::string>());
  if (value.is_null()) return "";
  const auto text = value.is_object() ? value.find("text") : value.end();
  if (value.is_object() && text != value.end() && value.size() == 2 && value.contains("bytes")) {
    return Escaped(text->get<std::string>());
  }
  return value.dump(-1, ' ', true, Json::error_handler_t::replace);
}

}  // namespace mira::console
