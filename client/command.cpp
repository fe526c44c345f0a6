#include "client/command.h"

#include <algorithm>
#include <typeinfo>
#include <utility>

#include "bytes/text.h"
#include "client/snapshot/snapshot.h"
#include "transport/com_error.h"

namespace mira::client {
namespace {

constexpr char kWhatIf[] = "whatIf";

Error BadArgument(const Argument& argument, const std::string& message) {
  return Error(kUsage, "bad-argument", message, argument.name).With("argument", argument.name);
}

Json CheckNumber(const Argument& argument, const Json& value) {
  const auto number =
      value.is_string() ? bytes::ParseNumber(value.get_ref<const std::string&>()) : ToNumber(value);
  if (number && *number >= argument.min && *number <= argument.max) return *number;
  throw BadArgument(argument, "'" + Readable(value) + "' is not a valid " + argument.help +
                                  ": give a number from " + std::to_string(argument.min) + " to " +
                                  std::to_string(argument.max) + ", in decimal or with 0x.");
}

// A text, or a number that stands for its digits; null for anything else.
Json TextOf(const Json& value) {
  if (value.is_string()) return value;
  return value.is_number_unsigned() ? Json(value.dump()) : Json();
}

Json CheckTexts(const Argument& argument, const Json& value) {
  Json texts = Json::array();
  if (value.is_array()) {
    for (const Json& part : value) texts.push_back(TextOf(part));
  } else {
    texts.push_back(TextOf(value));
  }
  if (std::any_of(texts.begin(), texts.end(), [](auto& text) { return text.is_null(); })) {
    throw BadArgument(argument, std::string("'") + argument.name + "' takes a list of texts.");
  }
  return texts;
}

void CheckChoice(const Argument& argument, const std::string& text) {
  if (argument.choices.empty()) return;
  const auto& choices = argument.choices;
  if (std::find(choices.begin(), choices.end(), text) != choices.end()) return;
  std::string names;
  for (const std::string& choice : choices) names += (names.empty() ? "" : ", ") + choice;
  throw BadArgument(argument, "'" + text + "' is not a valid " + argument.name +
                                  "; the choices are " + names + ".")
      .With("choices", choices);
}

Json CheckValue(const Argument& argument, const Json& value) {
  switch (argument.type) {
    case Type::kNumber: {
      Json number = CheckNumber(argument, value);
      CheckChoice(argument, number.dump());
      return number;
    }
    case Type::kTexts:
      return CheckTexts(argument, value);
    case Type::kFlag:
      if (value.is_boolean()) return value;
      throw BadArgument(argument, std::string("'") + argument.name + "' is true or false.");
    case Type::kText:
    case Type::kContent: {
      Json text = argument.type == Type::kText || value.is_string() ? TextOf(value) : Json();
      if (text.is_null()) {
        throw BadArgument(argument, std::string("'") + argument.name + "' takes a text.");
      }
      if (argument.type == Type::kText) CheckChoice(argument, text.get_ref<const std::string&>());
      return text;
    }
    case Type::kValue:
      break;
  }
  return value;
}

const Argument* FindArgument(const Command& command, const std::string& name) {
  static const Argument kWhatIfArgument{.name = kWhatIf, .type = Type::kFlag};
  if (name == kWhatIf && command.effect == Effect::kChanges) return &kWhatIfArgument;
  for (const Argument& argument : command.arguments) {
    if (name == argument.name) return &argument;
  }
  return nullptr;
}

// Where a document's values come from, in front of them. A snapshot says it of itself.
Json WithOrigin(const Snapshot& snapshot, const Json& document) {
  if (Snapshot::IsOne(document)) return document;
  Json whole = {{"simulated", snapshot.IsSimulated()},
                {"from", {{"takenAt", snapshot.TakenAt()}, {"redacted", snapshot.IsRedacted()}}}};
  whole.update(document);
  return whole;
}

Json RunOffline(const Command& command, Request& request) {
  if (request.Has("file")) {
    throw Error(kUsage, "bad-argument", "A snapshot and another file exclude each other.", "file")
        .With("argument", "file");
  }
  const Snapshot snapshot = Snapshot::FromText(request.Text(kSnapshotArgument.name));
  const Session::Offline offline(request.GetSession(), snapshot);
  try {
    return WithOrigin(snapshot, command.run(request));
  } catch (Error& error) {
    error.document = WithOrigin(snapshot, error.document);
    throw;
  } catch (const Json::exception&) {
    throw MalformedSnapshot("What it has of a subject is not what the subject consists of.");
  }
}

}  // namespace

const Argument kClass10 = {.name = "class10",
                           .type = Type::kFlag,
                           .help = "use the class-10 password although a class-9 one is installed"};

const Argument kSnapshotArgument = {
    .name = "from", .type = Type::kContent, .help = "a snapshot; shows what was there then"};

Json CheckArguments(const Command& command, const Json& arguments) {
  if (!arguments.is_object()) {
    throw Error(kUsage, "bad-argument", "The arguments are not an object.", command.name);
  }
  // An object that grows leaves copies of its values behind, which may hold secrets; beside the
  // command's own arguments there may be "whatIf".
  Json checked = Json::object();
  checked.get_ref<Json::object_t&>().reserve(command.arguments.size() + 1);
  for (const auto& [name, value] : arguments.items()) {
    const Argument* const argument = FindArgument(command, name);
    if (argument == nullptr && name == kSnapshotArgument.name) {
      throw Error(
          kUsage, "snapshot-is-only-read",
          std::string("A snapshot is only read: '") + command.name + "' works on a machine alone.",
          name);
    }
    if (argument == nullptr) {
      throw Error(kUsage, "unknown-argument",
                  std::string("'") + command.name + "' takes no '" + name + "'.", name)
          .With("unknown", Json::array({name}));
    }
    if (!value.is_null()) checked[name] = CheckValue(*argument, value);
  }
  for (const Argument& argument : command.arguments) {
    if (!argument.required || checked.contains(argument.name)) continue;
    throw Error(kUsage, "missing-argument",
                std::string("'") + command.name + "' needs '" + argument.name + "'.", argument.name)
        .With("missing", Json::array({argument.name}));
  }
  return checked;
}

std::string Request::Text(const char* name, const std::string& otherwise) const {
  const auto found = arguments_.find(name);
  return found != arguments_.end() ? found->get<std::string>() : otherwise;
}

std::uint64_t Request::Number(const char* name, std::uint64_t otherwise) const {
  const auto found = arguments_.find(name);
  return found != arguments_.end() ? found->get<std::uint64_t>() : otherwise;
}

bool Request::Flag(const char* name) const {
  const auto found = arguments_.find(name);
  return found != arguments_.end() && found->get<bool>();
}

std::vector<std::string> Request::Texts(const char* name) const {
  const auto found = arguments_.find(name);
  return found != arguments_.end() ? found->get<std::vector<std::string>>()
                                   : std::vector<std::string>();
}

const Json& Request::Value(const char* name) const {
  static const Json kNone;
  const auto found = arguments_.find(name);
  return found != arguments_.end() ? *found : kNone;
}

Json Request::Carry(Plan& plan) {
  const auto document = [&] {
    if (!WhatIf()) Close(plan);
    return ToJson(plan, WhatIf());
  };
  const auto failed = [&](Error error) {
    error.document = document();
    return error;
  };
  const auto finished = [&] {
    if (const auto error = ApplyError(plan)) throw failed(*error);
    return document();
  };
  Prepare(plan);
  if (const Error* const impossible = plan.Impossible(); impossible != nullptr && !plan.goes_on) {
    throw failed(*impossible);
  }
  if (plan.IsEmpty()) return finished();
  Key key;
  if (plan.needs_key && (!WhatIf() || plan.checks_key || secrets_.IsGiven("password"))) {
    key = ObtainKey(session_, secrets_, Flag(kClass10.name), WhatIf() ? Check::kYes : Check::kNo);
  }
  if (WhatIf()) return finished();
  Approve(plan);
  try {
    Apply(session_, plan, key);
  } catch (Cancelled& cancelled) {
    cancelled.document = document();
    throw;
  }
  return finished();
}

Result Run(const Command& command, Json arguments, Request& request) {
  Result result;
  try {
    request.SetArguments(CheckArguments(command, arguments));
    Wipe(arguments);
    result.document = command.works_offline && request.Has(kSnapshotArgument.name)
                          ? RunOffline(command, request)
                          : command.run(request);
    return result;
  } catch (const Error& error) {
    result.error = error;
  } catch (const Cancelled& cancelled) {
    result.error = Error(kCancelled, "cancelled", cancelled.what());
    result.error->document = cancelled.document;
  } catch (const transport::ComError&) {
    result.error = Error(kUnexpected, "out-of-memory", "The system ran out of memory.");
  } catch (const std::bad_alloc&) {
    result.error = Error(kUnexpected, "out-of-memory", "The system ran out of memory.");
  } catch (const std::bad_cast&) {
    result.error =
        Error(kUnexpected, "unexpected", "The command met data of a kind that it does not take.");
  } catch (const std::exception& error) {
    result.error = Error(kUnexpected, "unexpected",
                         std::string("The command failed unexpectedly: ") + error.what());
  }
  result.status = result.error->status;
  result.document = result.error->document;
  result.document["error"] = ToJson(*result.error);
  return result;
}

}  // namespace mira::client
