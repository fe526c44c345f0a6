// The commands on BIOS attributes.

#include <algorithm>
#include <set>
#include <utility>

#include "bytes/secure.h"
#include "client/attribute_file.h"
#include "client/attribute_show.h"
#include "client/commands.h"

namespace mira::client {
namespace {

// Puts what the changes say together: whether a restart is pending for one of them.
void SumUp(Json& document) {
  const auto changes = document.find("changes");
  if (changes == document.end()) return;
  document["restartPending"] =
      std::any_of(changes->begin(), changes->end(),
                  [](const Json& change) { return change.value("restartPending", false); });
}

Json CarryAttributes(Request& request, Plan& plan) {
  try {
    Json document = request.Carry(plan);
    SumUp(document);
    return document;
  } catch (Error& error) {
    SumUp(error.document);
    throw;
  } catch (Cancelled& cancelled) {
    SumUp(cancelled.document);
    throw;
  }
}

// What is to be set: the name as it is typed, and its value.
struct Assigned {
  std::string name;
  std::optional<Json> value;
};

// NAME VALUE, or NAME=VALUE several times. A name may have a "=" in it only where a value stands
// in an argument of its own.
std::vector<Assigned> ReadAssignments(const Request& request) {
  const std::string name = request.Text("name");
  const Json& value = request.Value("value");
  std::vector<std::string> pairs = request.Texts("more");
  const auto is_pair = [](const std::string& text) {
    const std::size_t sign = text.find('=');
    return sign != std::string::npos && sign != 0;
  };
  const bool is_value = !value.is_null() && !(value.is_string() && is_pair(value));
  if (pairs.empty() && (is_value || !is_pair(name))) {
    return {{name, value.is_null() ? std::nullopt : std::optional(value)}};
  }
  if (!value.is_null()) pairs.insert(pairs.begin(), Readable(value));
  pairs.insert(pairs.begin(), name);
  std::vector<Assigned> assigned;
  for (const std::string& pair : pairs) {
    if (!is_pair(pair)) {
      throw Error(kUsage, "bad-argument",
                  "'" + pair + "' is not of the form NAME=VALUE, which sets several at once.",
                  pair);
    }
    const std::size_t sign = pair.find('=');
    assigned.push_back({pair.substr(0, sign), Json(pair.substr(sign + 1))});
  }
  return assigned;
}

// The value in the slot "value".
bytes::SecureString ReadValue(Request& request, const AttributeEntry& entry) {
  const std::string title = entry.Title();
  if (!entry.IsPassword() && !request.Secrets().IsGiven("value")) {
    throw Error(kUsage, "value-missing", "A value is needed for " + title + ".", title);
  }
  auto text = request.Secrets().Get("value", "New value");
  if (text) return std::move(*text);
  throw Error(kPassword, "value-needed", "The new value of " + title + " is needed.", title)
      .With("slot", "value");
}

Step PlanOne(Request& request, const AttributeWriterPtr& writer, const Assigned& assigned) {
  const AttributeEntry& entry = writer->All().Find(assigned.name);
  AttributeWish wish{.entry = &entry,
                     .limits = request.Flag("force") ? Limits::kIgnore : Limits::kCheck};
  if (assigned.value) {
    if (request.Secrets().IsGiven("value")) {
      throw Error(kUsage, "value-twice", "The value is given twice.", assigned.name);
    }
    if (entry.IsPassword()) {
      throw Error(
          kUsage, "secret-in-the-open",
          entry.Title() + " is a password: its value is never an argument, which others can read.",
          entry.Title());
    }
    wish.value = *assigned.value;
    return PlanAttribute(writer, wish);
  }
  wish.value = ReadValue(request, entry).str();
  try {
    Step step = PlanAttribute(writer, wish);
    Wipe(wish.value);
    return step;
  } catch (...) {
    Wipe(wish.value);
    throw;
  }
}

Json SetAttributes(Request& request) {
  const auto writer = std::make_shared<AttributeWriter>(request.GetSession());
  Plan plan;
  plan.force = request.Flag("force");
  plan.checks_key = false;
  std::set<Json> handles;
  for (const Assigned& assigned : ReadAssignments(request)) {
    plan.steps.push_back(PlanOne(request, writer, assigned));
    const Change& change = plan.steps.back().changes.front();
    if (!handles.insert(change.details.at("handle")).second) {
      const std::string& title = change.target;
      throw Error(kUsage, "given-twice", title + " is given twice.", title);
    }
  }
  return CarryAttributes(request, plan);
}

// Gives attributes the defaults of the tables: of enumerations, strings and integers, and never
// passwords.
Json Reset(Request& request) {
  const std::vector<std::string> names = request.Texts("names");
  const bool is_all = request.Flag("all");
  if (names.empty() != is_all) {
    throw Error(kUsage, "bad-argument", "Either names of attributes or 'all' must be given.",
                "names");
  }
  Session& session = request.GetSession();
  const auto writer = std::make_shared<AttributeWriter>(session);
  Plan plan;
  plan.checks_key = false;
  plan.goes_on = is_all;
  const auto& entries = writer->All().All();
  std::set<std::uint16_t> seen;
  for (const std::string& name : names) {
    const AttributeEntry& entry = writer->All().Find(name);
    if (seen.insert(entry.handle).second) plan.steps.push_back(PlanDefault(writer, entry));
  }
  Json left_out = Json::array();
  const auto leave_out = [&](const AttributeEntry& entry, const char* reason) {
    Json item = NameOf(writer->All(), entry);
    item["reason"] = reason;
    left_out.push_back(std::move(item));
  };
  for (std::size_t i = 0; is_all && i < entries.size(); ++i) {
    session.Report("Reading attributes", i, entries.size());
    if (entries[i].IsReadOnly() || entries[i].IsPassword()) {
      leave_out(entries[i], entries[i].IsPassword() ? "password" : "read-only");
      continue;
    }
    try {
      plan.steps.push_back(PlanDefault(writer, entries[i]));
    } catch (const Error& error) {
      if (error.status == kCancelled) throw;
      if (error.name == "no-default") {
        leave_out(entries[i], "no-default");
      } else {
        plan.steps.push_back(ImpossibleStep(writer->All(), &entries[i], entries[i].Title(), error));
      }
    }
  }
  if (is_all) plan.subject["leftOut"] = std::move(left_out);
  return CarryAttributes(request, plan);
}

Json Export(Request& request) { return ExportAttributes(request.GetSession()); }

Json Import(Request& request) {
  if (request.Flag("dryRun") || request.Flag("check")) request.OnlyCheck();
  Plan plan = PlanImport(request.GetSession(), request.Text("file"),
                         request.Flag("stopOnError") ? OnError::kStop : OnError::kGoOn);
  Json document = CarryAttributes(request, plan);
  if (!request.Flag("check")) return document;
  const auto& changes = document.at("changes");
  const auto count = std::count_if(changes.begin(), changes.end(), [](const Json& change) {
    return change.at("outcome") == "planned";
  });
  if (count == 0) return document;
  Error error(kDiffers, "differs",
              std::to_string(count) + " of the values differ from those of the file.");
  error.document = std::move(document);
  throw error;
}

}  // namespace

std::vector<Command> AttributeCommands() {
  const Argument names = {.name = "names",
                          .type = Type::kTexts,
                          .help = "names or handles of attributes",
                          .positional = true};
  Argument required_names = names;
  required_names.required = true;
  return {
      {.name = "attr.list",
       .summary = "List attributes with values and limits",
       .arguments = {{.name = "part",
                      .help = "only those with this in their names or display names",
                      .positional = true},
                     {.name = "changedFromDefault",
                      .type = Type::kFlag,
                      .help = "only those whose value is not their default"},
                     {.name = "pending",
                      .type = Type::kFlag,
                      .help = "only those whose value waits for a restart"}},
       .run = ListAttributes},
      {.name = "attr.get",
       .summary = "Show all about attributes",
       .arguments = {required_names},
       .run = ShowAttributes},
      {.name = "attr.set",
       .summary = "Give attributes new values",
       .effect = Effect::kChanges,
       .arguments =
           {{.name = "name",
             .help = "name or handle; or NAME=VALUE",
             .required = true,
             .positional = true},
            {.name = "value",
             .type = Type::kValue,
             .help =
                 "a value's name, several names with commas, a number or a text; never a password",
             .positional = true},
            {.name = "more",
             .type = Type::kTexts,
             .help = "further NAME=VALUE",
             .positional = true},
            {.name = "force",
             .type = Type::kFlag,
             .help = "send the value unchecked: the firmware alone decides"},
            kClass10},
       .secrets = {"value", "password"},
       .run = SetAttributes},
      {.name = "attr.reset",
       .summary = "Set attributes to their defaults, but no passwords",
       .effect = Effect::kChanges,
       .arguments = {names,
                     {.name = "all",
                      .type = Type::kFlag,
                      .help = "every attribute that has a default and can be written"},
                     kClass10},
       .secrets = {"password"},
       .run = Reset},
      {.name = "attr.export",
       .summary = "Write all values to a file, but no passwords",
       .run = Export},
      {.name = "attr.import",
       .summary = "Bring the attributes to the values of a file",
       .effect = Effect::kChanges,
       .arguments = {{.name = "file",
                      .type = Type::kContent,
                      .help = "the file, or - for standard input",
                      .required = true,
                      .positional = true},
                     {.name = "dryRun",
                      .type = Type::kFlag,
                      .help = "show the difference, write nothing"},
                     {.name = "check",
                      .type = Type::kFlag,
                      .help = "the same; end with status 12 if something would change"},
                     {.name = "stopOnError",
                      .type = Type::kFlag,
                      .help = "stop at the first failure; write nothing if a value breaks a limit"},
                     kClass10},
       .secrets = {"password"},
       .run = Import},
      {.name = "attr.diff",
       .summary = "Show which values differ from those at boot, and whether a restart is pending",
       .run = CompareAttributes},
  };
}

}  // namespace mira::client
