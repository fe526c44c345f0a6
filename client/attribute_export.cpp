#include "client/attribute_file.h"
#include "client/smbios.h"

namespace mira::client {

Json UnreadAttributes::Finish(Json document, bool is_any_read) const {
  if (errors_.empty()) return document;
  Json list = Json::array();
  for (const Error& error : errors_) list.push_back(ToJson(error));
  document["unreadable"] = std::move(list);
  Error error = errors_.front();
  if (is_any_read) {
    error = Error(kAppliedInPart, "read-in-part",
                  std::to_string(errors_.size()) +
                      " attributes could not be read. The first: " + errors_.front().what(),
                  errors_.front().target);
  }
  error.document = std::move(document);
  throw error;
}

Json MachineJson(Session& session) {
  try {
    return MachineJson(ReadInventory(ReadTable(session)));
  } catch (const Error&) {
    return Json::object();
  }
}

Json MachineJson(const Inventory& inventory) {
  Json json = Json::object();
  const auto add = [&json](const char* name, const OptionalText& text) {
    if (text) json[name] = TextJson(*text);
  };
  if (inventory.system) {
    add("manufacturer", inventory.system->manufacturer);
    add("product", inventory.system->product_name);
    add("serialNumber", inventory.system->serial_number);
  }
  if (inventory.bios) add("biosVersion", inventory.bios->version);
  return json;
}

Json ExportAttributes(Session& session) {
  Attributes attributes(session);
  Json list = Json::array();
  UnreadAttributes unread;
  std::size_t done = 0;
  for (const AttributeEntry& entry : attributes.All()) {
    session.Report("Reading attributes", done++, attributes.All().size());
    if (entry.IsPassword()) continue;
    try {
      list.push_back(ReadStored(attributes, entry));
    } catch (const Error& error) {
      unread.Add(error);
    }
  }
  const bool is_any_read = !list.empty();
  return unread.Finish({{"createdAt", session.Now()},
                        {"machine", MachineJson(session)},
                        {"attributes", std::move(list)}},
                       is_any_read);
}

}  // namespace mira::client
