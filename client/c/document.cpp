#include "client/c/document.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace mira::client::c {
namespace {

struct Hint {
  const char* error;
  const char* text;
};

constexpr Hint kHints[] = {
    {"password-needed", "Give the secret 'password' with the request."},
    {"value-needed", "Give the secret 'value' with the request."},
    {"secret-in-request", "Give it as a secret with the request."},
    {"secret-in-the-open", "Give it as the secret 'value' with the request."},
    {"not-administrator", "Run the host as an administrator."},
    {"in-callback", "Call it when the callback's request has ended."},
    {"another-machine", "Close all handles of the machine that is open."},
    {"unknown-command", "docs/c-interface.md lists the commands."},
    {"changed-meanwhile", "Read the value again, and repeat the request with what it is now."},
    {"request-not-made", "The command has a request of its own."},
};

// Errors stand inside documents, too: each has a name and an empty hint.
void FillHints(Json& value) {
  if (!value.is_structured()) return;
  for (Json& part : value) FillHints(part);
  if (!value.is_object()) return;
  const auto hint = value.find("hint");
  const auto name = value.find("name");
  if (hint == value.end() || name == value.end() || *hint != "" || !name->is_string()) return;
  const auto* const found = std::find_if(std::begin(kHints), std::end(kHints), [&](const Hint& h) {
    return name->get_ref<const std::string&>() == h.error;
  });
  if (found != std::end(kHints)) *hint = found->text;
}

}  // namespace

Json WholeDocument(Json document, bool is_simulated) {
  Json whole = {{"schemaVersion", 1}};
  if (is_simulated) whole["simulated"] = true;
  FillHints(document);
  whole.update(document);
  return whole;
}

Json ErrorDocument(const Error& error) {
  Json document = error.document;
  document["error"] = ToJson(error);
  return document;
}

}  // namespace mira::client::c
