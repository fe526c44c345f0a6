#include "configuration.h"

#include <cstdint>

#include "mira_client.hpp"

namespace {

using miraclient::Machine;

constexpr int kUefiList = 1;

// A text as JSON.
std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

// The text behind the first member of this name; a program with a JSON library would use that.
std::string TextOf(const std::string& document, const std::string& member) {
  const std::string name = "\"" + member + "\": \"";
  const std::size_t at = document.find(name);
  if (at == std::string::npos) return "";
  const std::size_t begin = at + name.size();
  return document.substr(begin, document.find('"', begin) - begin);
}

// What a change came to is in its document: there is one entry in each of ours. Without one, the
// request ended before anything was written.
Outcome OutcomeOf(const std::string& document) {
  const std::string outcome = TextOf(document, "outcome");
  if (outcome == "changed" || outcome == "already-so") return Outcome::kDone;
  return outcome == "unknown" ? Outcome::kUnknown : Outcome::kNotDone;
}

Item Change(const Machine& machine, const std::string& what, const std::string& request,
            const std::string& password) {
  Item item;
  item.what = what;
  try {
    item.outcome = OutcomeOf(machine.Request(request, {{"password", password}}));
    if (item.outcome == Outcome::kUnknown) item.why = "It could not be read back.";
  } catch (const miraclient::Error& error) {
    item.outcome = OutcomeOf(error.Document());
    item.why = TextOf(error.Document(), "message");
    if (item.why.empty()) item.why = error.what();
  }
  return item;
}

struct Request {
  std::string what;
  std::string json;
};

std::vector<Request> RequestsOf(const Configuration& wanted) {
  std::vector<Request> requests;
  requests.push_back({"asset tag", R"({"command": "tag.set", "kind": "asset", "text": )" +
                                       Quoted(wanted.asset_tag) + "}"});
  requests.push_back({"boot order", R"({"command": "boot.order", "list": )" +
                                        std::to_string(kUefiList) +
                                        ", \"order\": " + Quoted(wanted.boot_order) + "}"});
  for (const auto& attribute : wanted.attributes) {
    requests.push_back({attribute.first, R"({"command": "attr.set", "name": )" +
                                             Quoted(attribute.first) +
                                             ", \"value\": " + Quoted(attribute.second) + "}"});
  }
  return requests;
}

}  // namespace

std::vector<Item> Configure(const Configuration& wanted, const std::string& password) noexcept {
  const std::vector<Request> requests = RequestsOf(wanted);
  std::vector<Item> items;
  try {
    const Machine machine;
    for (const Request& request : requests) {
      items.push_back(Change(machine, request.what, request.json, password));
    }
  } catch (const std::exception& error) {
    // Nothing was asked for yet: only opening the machine throws.
    for (const Request& request : requests) {
      items.push_back({request.what, Outcome::kNotDone, error.what()});
    }
  }
  return items;
}
