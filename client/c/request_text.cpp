#include "client/c/request_text.h"

#include <algorithm>
#include <string>

#include "bytes/text.h"
#include "bytes/utf16.h"
#include "client/nearest.h"

namespace mira::client::c {
namespace {

constexpr std::size_t kLargestText = 64 * 1024 * 1024;
constexpr char kCommand[] = "command";
constexpr char kArguments[] = "arguments";
constexpr char kWhatIf[] = "whatIf";
constexpr char kUsualMachine[] = "laptop";

const Argument* FindArgument(const Command& command, const std::string& name) {
  const auto found =
      std::find_if(command.arguments.begin(), command.arguments.end(),
                   [&name](const Argument& argument) { return name == argument.name; });
  return found != command.arguments.end() ? &*found : nullptr;
}

// Whether a member that is no argument is called like a secret.
bool IsSecretName(const Command& command, const std::string& name) {
  const auto is_slot = [&name](const char* slot) { return name == slot; };
  if (std::any_of(command.secrets.begin(), command.secrets.end(), is_slot)) return true;
  std::string lower = name;
  for (char& c : lower) c = bytes::Lower(c);
  constexpr std::string_view kWords[] = {"password", "passphrase", "passwd", "pwd", "secret"};
  return std::any_of(std::begin(kWords), std::end(kWords), [&lower](std::string_view word) {
    return lower.find(word) != std::string::npos;
  });
}

const Command& NamedCommand(const Json& request) {
  const auto found = request.find(kCommand);
  if (found == request.end() || !found->is_string()) {
    throw Error(kUsage, "missing-argument", "The request has no 'command', a text.", kCommand)
        .With("missing", Json::array({kCommand}));
  }
  const std::string& name = found->get_ref<const std::string&>();
  if (const Command* const command = FindCommand(name)) return *command;
  std::vector<std::string> names;
  for (const Command& command : Commands()) names.emplace_back(command.name);
  const auto nearest = Nearest(name, names);
  throw Error(
      kUsage, "unknown-command",
      "There is no command '" + name + "'." + (nearest ? " Did you mean '" + *nearest + "'?" : ""),
      name);
}

// What a file holds, as a text of its bytes.
Json ContentOf(Json value) {
  if (!value.is_structured()) return value;
  if (const auto bytes = BytesOfText(value)) return *bytes;
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void AddArgument(NamedRequest& request, const std::string& name, Json value) {
  const Command& command = *request.command;
  const Argument* const argument = FindArgument(command, name);
  if (argument == nullptr && IsSecretName(command, name)) {
    throw Error(kUsage, "secret-in-request",
                "A secret may not stand in a request: '" + name + "' does.", name);
  }
  if (request.arguments.contains(name)) {
    throw Error(kUsage, "bad-argument", "'" + name + "' is given twice.", name);
  }
  // What changes nothing writes nothing either way.
  if (name == kWhatIf && value.is_boolean() && command.effect != Effect::kChanges) return;
  const bool is_content = argument != nullptr && argument->type == Type::kContent;
  request.arguments[name] = is_content ? ContentOf(std::move(value)) : std::move(value);
}

}  // namespace

Json ReadObject(std::string_view text, const char* what) {
  const auto refuse = [what](const std::string& why) {
    return Error(kUsage, "bad-request", std::string(what) + ' ' + why, what);
  };
  if (text.size() > kLargestText) throw refuse("is too long.");
  if (!bytes::IsUtf8(text)) throw refuse("is no UTF-8.");
  if (text.find('\0') != std::string_view::npos) throw refuse("has a zero byte.");
  Json value;
  try {
    value = ParseJson(text, what);
  } catch (const Error& error) {
    Error refusal = refuse("");
    static_cast<std::runtime_error&>(refusal) = error;
    refusal.details = error.details;
    throw refusal;
  }
  if (!value.is_object()) throw refuse("is no JSON object.");
  return value;
}

NamedRequest ReadRequest(Json request) {
  NamedRequest named{.command = &NamedCommand(request)};
  for (auto& [name, value] : request.items()) {
    if (name == kCommand) continue;
    if (name != kArguments || !value.is_object()) {
      AddArgument(named, name, std::move(value));
      continue;
    }
    for (auto& [inner, inner_value] : value.items()) {
      AddArgument(named, inner, std::move(inner_value));
    }
  }
  return named;
}

Json ReadOptions(std::string_view text) {
  const Json given = text.empty() ? Json::object() : ReadObject(text, "The options");
  const auto refuse = [](const std::string& name, const std::string& why) {
    return Error(kUsage, "bad-option", "The option '" + name + "' " + why, name);
  };
  Json options = Json::object();
  for (const auto& [name, value] : given.items()) {
    if (name == "simulated") {
      if (!value.is_boolean() && !value.is_string() && !value.is_object() && !value.is_null()) {
        throw refuse(name, "takes a machine's name, its description, true or false.");
      }
    } else if (name == "state") {
      if (!value.is_string() && !value.is_null()) throw refuse(name, "takes the name of a file.");
    } else {
      throw refuse(name, "is unknown.");
    }
    if (value == true) {
      options[name] = kUsualMachine;
    } else if (!value.is_null() && value != false) {
      options[name] = value;
    }
  }
  if (options.contains("state") && !options.contains("simulated")) {
    throw refuse("state", "is for simulated machines.");
  }
  return options;
}

}  // namespace mira::client::c
