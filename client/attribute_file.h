#ifndef MIRA_CLIENT_ATTRIBUTE_FILE_H_
#define MIRA_CLIENT_ATTRIBUTE_FILE_H_

// Attribute values in a file: exported from one machine, brought back or to another.

#include <string>
#include <vector>

#include "client/attribute_plan.h"
#include "client/inventory.h"

namespace mira::client {

// Attributes that could not be read, while others could.
class UnreadAttributes {
 public:
  void Add(const Error& error) { errors_.push_back(error); }
  bool IsEmpty() const { return errors_.empty(); }
  // The document, when all were read. Else throws Error with the document and what is missing in
  // it: kAppliedInPart, or the first error where none could be read.
  Json Finish(Json document, bool is_any_read) const;

 private:
  std::vector<Error> errors_;
};

// {"manufacturer", "product", "serialNumber", "biosVersion"}: of this machine what it states.
Json MachineJson(Session& session);
Json MachineJson(const Inventory& inventory);

// {"createdAt", "machine", "attributes"}, without passwords: no value of theirs is ever shown.
Json ExportAttributes(Session& session);

enum class OnError { kGoOn, kStop };
// The plan to bring the attributes to what a file has: {"attributes": [{"name", "value"}, …]} as it
// is exported, or {"attributes": {NAME: value, …}}. An entry that is impossible has its reason in
// the plan. The plan's subject has "warnings" about a file of another machine, and "skipped"
// entries: those that cannot be written, and that the file calls so. Throws Error for what is no
// such file.
Plan PlanImport(Session& session, const std::string& content, OnError on_error);

}  // namespace mira::client

#endif  // MIRA_CLIENT_ATTRIBUTE_FILE_H_
