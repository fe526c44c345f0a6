#ifndef MIRA_CLIENT_REPORT_VIEW_H_
#define MIRA_CLIENT_REPORT_VIEW_H_

// What the templates of the report show: the values of a snapshot in the words and units of people,
// section by section. A snapshot may come from a file: a value of another type than expected is as
// good as none.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "client/json.h"
#include "client/report/quantity.h"

namespace mira::client {

// A member of an object; null where there is none.
const Json& At(const Json& value, const char* name);
// The same where it is a list; an empty one otherwise.
const Json& ListAt(const Json& value, const char* name);
bool IsTrueAt(const Json& value, const char* name);
// A member as a person reads it; empty where there is none.
std::string PlainAt(const Json& value, const char* name);
// A subject's value in a snapshot; null where it could not be read.
const Json& SubjectValue(const Json& snapshot, const char* subject);

struct ViewField {
  const char* label;
  const char* name;
  std::string (*show)(const Json& value) = Plain;
};
std::string Shown(const Json& object, const ViewField& field);
// [{"label", "value"}]; what is not there is left out.
Json FieldsView(const Json& object, const std::vector<ViewField>& fields);

// For ViewColumn::is_number, and the last argument of ColumnOf.
inline constexpr bool kIsNumber = true;

struct ViewColumn {
  const char* heading;
  std::function<std::string(const Json& object)> show;
  bool is_number = false;
};
ViewColumn ColumnOf(const char* heading, const char* name,
                    std::string (*show)(const Json& value) = Plain, bool is_number = false);
// {"title", "headings", "rows"}, without the columns in which nothing stands; null where nothing
// does.
Json TableView(const std::string& title, const Json& list, const std::vector<ViewColumn>& columns);

// "1 slot", "2 slots"
std::string Counted(std::size_t count, const std::string& one, const std::string& several = "");
// The texts with something between them; empty ones are left out.
std::string Joined(const std::vector<std::string>& texts, const char* between = ", ");

// ---- The sections ----

Json GlanceView(const Json& snapshot);
Json MemoryView(const Json& inventory);
// {"groups", "tables"}
Json HardwareView(const Json& inventory);
Json BootView(const Json& boot, const Json& legacy);
Json BatteriesView(const Json& batteries);
Json AttributesView(const Json& attributes);
Json PasswordsView(const Json& passwords);
Json IdentityView(const Json& tags, const Json& identifiers);
Json FirmwareListsView(const Json& lists);
Json StartUpView(const Json& start_up);
Json TokensView(const Json& tokens);
// [{"subject", "kind", "what", "message"}]: what could not be read, or only in part.
Json MissingView(const Json& snapshot);

// How much memory there is, and in how many slots.
struct MemoryTotal {
  std::string size, slots, room;
};
MemoryTotal TotalOf(const Json& inventory);

// What a device path leads to, in words: "SATA port 0, partition 2, \EFI\BOOT\BOOTX64.EFI". Empty
// where no part of it is known.
std::string PathInWords(const std::string& path);
// What a person would look for the attribute under.
std::string TopicOf(const std::string& name);
// In which place the page shows a topic.
std::size_t PlaceOfTopic(const std::string& topic);

}  // namespace mira::client

#endif  // MIRA_CLIENT_REPORT_VIEW_H_
