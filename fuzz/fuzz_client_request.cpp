// Requests and raw records of the C interface, on a simulated machine that is new for every input.
// What begins with 'P' is a request with a password, with 'R' a record and its data; all else is a
// request as it stands.

#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "client/c/mira_client.h"

namespace {

constexpr std::string_view kOptions = R"({"simulated": "laptop"})";

void SendRequest(mira_handle machine, std::string_view text, bool has_password) {
  const mira_secret secret = {"password", "setup1", 6};
  char* document = nullptr;
  std::uint32_t size = 0;
  const std::int32_t status =
      mira_request(machine, text.data(), static_cast<std::uint32_t>(text.size()), &secret,
                   has_password ? 1 : 0, nullptr, nullptr, &document, &size);
  // Whatever was asked, there is an answer.
  if (document == nullptr || document[0] != '{' || std::strlen(document) != size) std::abort();
  if (std::strcmp(mira_status_name(status), "unknown") == 0) std::abort();
  mira_free(document);
}

void SendRecord(mira_handle machine, std::string_view bytes) {
  mira_record record = {};
  if (bytes.size() < sizeof record) return;
  std::memcpy(&record, bytes.data(), sizeof record);
  bytes.remove_prefix(sizeof record);
  std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
  char* document = nullptr;
  mira_call(machine, &record, data.data(), static_cast<std::uint32_t>(data.size()), nullptr,
            &document, nullptr);
  if (document == nullptr) std::abort();
  mira_free(document);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  mira_handle machine = 0;
  if (mira_open(kOptions.data(), static_cast<std::uint32_t>(kOptions.size()), &machine, nullptr,
                nullptr) != MIRA_DONE) {
    std::abort();
  }
  if (input.starts_with('R')) {
    SendRecord(machine, input.substr(1));
  } else if (input.starts_with('P')) {
    SendRequest(machine, input.substr(1), true);
  } else {
    SendRequest(machine, input, false);
  }
  mira_close(machine);
  return 0;
}
