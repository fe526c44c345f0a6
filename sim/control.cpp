#include "sim/control.h"

#include <map>
#include <mutex>
#include <thread>

#include "sim/control_commands.h"
#include "sim/mira_sim.h"

namespace mira::sim {
namespace {

constexpr std::uint32_t kLargestRequest = 16 * 1024 * 1024;

const ControlCommand& FindCommand(const Node& name) {
  for (const ControlCommand& command : ControlCommands()) {
    if (command.name == name.Text()) return command;
  }
  std::string known;
  for (const ControlCommand& command : ControlCommands()) {
    known += (known.empty() ? "" : ", ") + std::string(command.name);
  }
  throw ChoiceError(MIRA_SIM_USAGE, "unknown-command", "'command' is one of: " + known + ".",
                    "command");
}

std::string Serve(std::string_view text, ControlHost& host) {
  Node root;
  try {
    root = ParseJson(text);
  } catch (const StateError& error) {
    throw BadRequest(error.what());
  }
  if (root.GetKind() != Node::Kind::kObject) throw BadRequest("it is no JSON object");
  ControlRequest request(std::move(root), host);
  FindCommand(request.Take("command")).run(request);
  return WriteJson(request.answer).str();
}

ControlAnswer Refusal(const ChoiceError& error) {
  Node document;
  document.Become(Node::Kind::kObject);
  document.Add("schemaVersion").SetNumber(1);
  Node& described = document.Add("error");
  described.Become(Node::Kind::kObject);
  described.Add("code").SetNumber(error.status);
  described.Add("name").SetText(error.name);
  described.Add("message").SetText(error.what());
  described.Add("target").SetText(error.target);
  described.Add("hint").SetText("");
  return {error.status, WriteJson(document).str()};
}

}  // namespace

ControlAnswer Control(std::string_view request, ControlHost& host) {
  try {
    std::string document;
    if (!host.WhileStill([&] { document = Serve(request, host); })) {
      throw ChoiceError(MIRA_SIM_BUSY, "busy", "The host is in the middle of a call.");
    }
    return {MIRA_SIM_DONE, std::move(document)};
  } catch (const ChoiceError& error) {
    return Refusal(error);
  } catch (const StateError& error) {
    return Refusal({MIRA_SIM_UNEXPECTED, "machine-not-kept",
                    "The simulated machine could not be kept: " + std::string(error.what())});
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    return Refusal({MIRA_SIM_UNEXPECTED, "unexpected",
                    "It failed unexpectedly: " + std::string(error.what())});
  }
}

std::int32_t ControlForHost(const char* request, std::uint32_t size, const char** document,
                            std::uint32_t* document_size, ControlHost& host) noexcept {
  // Never destroyed: a host may ask at its end.
  static std::mutex& mutex = *new std::mutex();
  static auto& documents = *new std::map<std::thread::id, std::string>();
  if (document != nullptr) *document = nullptr;
  if (document_size != nullptr) *document_size = 0;
  try {
    const std::scoped_lock lock(mutex);
    ControlAnswer answer;
    if ((request == nullptr && size != 0) || size > kLargestRequest) {
      answer = Refusal({MIRA_SIM_USAGE, "bad-request", "The request is null or too long."});
    } else {
      answer = Control({request, size}, host);
    }
    std::string& kept = documents[std::this_thread::get_id()];
    kept = std::move(answer.document);
    if (document != nullptr) *document = kept.c_str();
    if (document_size != nullptr) *document_size = static_cast<std::uint32_t>(kept.size());
    return answer.status;
  } catch (...) {
    return MIRA_SIM_UNEXPECTED;
  }
}

}  // namespace mira::sim
