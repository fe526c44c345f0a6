#include "client/attribute_show.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "bytes/text.h"
#include "client/attribute_file.h"

namespace mira::client {
namespace {

using Texts = Session::Texts;

bool IsNamed(const Json& item, const std::string& part) {
  for (const char* const key : {"name", "suffix", "displayName"}) {
    if (item.contains(key) && bytes::ContainsText(Readable(item[key]), part)) return true;
  }
  return false;
}

bool IsOtherThanDefault(const Json& item) {
  return !item.at("default").is_null() && item.at("value") != item.at("default");
}

// Whether a value is another one than that at boot, or a mode is.
bool Differs(const Json& item) {
  if (item.at("atBoot") != item.at("value")) return true;
  return std::any_of(std::begin(kBootModes), std::end(kBootModes), [&item](const ModeRow& row) {
    return item.contains(row.name) && item[row.name] != item.at(row.name + std::string("AtBoot"));
  });
}

}  // namespace

Json ListAttributes(Request& request) {
  Session& session = request.GetSession();
  // Display names are searched, too, and only then worth their fetching.
  Attributes attributes(session, request.Has("part") ? Texts::kAll : Texts::kNone);
  const std::string part = request.Text("part");
  Json list = Json::array();
  UnreadAttributes unread;
  std::size_t done = 0;
  bool is_any_read = false;
  for (const AttributeEntry& entry : attributes.All()) {
    session.Report("Reading attributes", done++, attributes.All().size());
    try {
      Json item = ReadItem(attributes, entry);
      is_any_read = true;
      if (!IsNamed(item, part)) continue;
      if (request.Flag("changedFromDefault") && !IsOtherThanDefault(item)) continue;
      if (request.Flag("pending") && !item.at("restartPending").get<bool>()) continue;
      item.erase("help");
      // It is there by chance where an earlier request has fetched the texts.
      if (part.empty()) item.erase("displayName");
      list.push_back(std::move(item));
    } catch (const Error& error) {
      unread.Add(error);
    }
  }
  return unread.Finish({{"attributes", std::move(list)}}, is_any_read);
}

Json ShowAttributes(Request& request) {
  Attributes attributes(request.GetSession(), Texts::kAll);
  std::vector<const AttributeEntry*> entries;
  for (const std::string& name : request.Texts("names")) {
    entries.push_back(&attributes.Find(name));
  }
  Json list = Json::array();
  UnreadAttributes unread;
  for (const AttributeEntry* const entry : entries) {
    try {
      list.push_back(ReadItem(attributes, *entry));
    } catch (const Error& error) {
      unread.Add(error);
    }
  }
  const bool is_any_read = !list.empty();
  return unread.Finish({{"attributes", std::move(list)}}, is_any_read);
}

Json CompareAttributes(Request& request) {
  Session& session = request.GetSession();
  Attributes attributes(session);
  Json list = Json::array();
  UnreadAttributes unread;
  std::size_t done = 0;
  bool is_any_read = false;
  for (const AttributeEntry& entry : attributes.All()) {
    session.Report("Reading attributes", done++, attributes.All().size());
    if (entry.IsPassword()) continue;
    try {
      Json item = ReadDifference(attributes, entry);
      is_any_read = true;
      if (!Differs(item)) continue;
      list.push_back(std::move(item));
    } catch (const Error& error) {
      unread.Add(error);
    }
  }
  const std::size_t count = list.size();
  return unread.Finish(
      {{"differences", std::move(list)}, {"restartPending", count != 0}, {"pendingCount", count}},
      is_any_read);
}

}  // namespace mira::client
