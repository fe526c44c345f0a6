#ifndef MIRA_TESTS_SUPPORT_CLIENT_LIBRARY_H_
#define MIRA_TESTS_SUPPORT_CLIENT_LIBRARY_H_

// The C interface as a host has it: on Windows the simulator's DLL, loaded at run time; elsewhere
// the same functions linked in.

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "client/c/mira_client.h"
#include "sim/mira_sim.h"

namespace mira::test {

struct ClientLibrary {
  decltype(&mira_abi) abi;
  decltype(&mira_version) version;
  decltype(&mira_status_name) status_name;
  decltype(&mira_open) open;
  decltype(&mira_close) close;
  decltype(&mira_request) request;
  decltype(&mira_call) call;
  decltype(&mira_cancel) cancel;
  decltype(&mira_free) free;
  mira_sim_control_function control;  // null in the product
};
const ClientLibrary& Client();

// A status with the document that came with it.
struct Answer {
  std::int32_t status = -1;
  nlohmann::json document;
  std::string text;
  // The name of the document's error; empty without one.
  std::string Error() const {
    const auto error = document.find("error");
    return error != document.end() ? error->at("name").get<std::string>() : "";
  }
};

struct Secret {
  std::string slot;
  std::string text;
};

struct OpenAnswer : Answer {
  mira_handle handle = 0;
};
OpenAnswer Open(const std::string& options);
// The request as it stands.
Answer Send(mira_handle handle, const std::string& text, const std::vector<Secret>& secrets = {},
            mira_progress progress = nullptr, void* user = nullptr);
// The key is none where its slot is empty.
Answer Call(mira_handle handle, mira_record& record, std::vector<std::uint8_t>& data,
            const Secret& key = {});

// A machine that is open for a scope.
class OpenMachine {
 public:
  explicit OpenMachine(const std::string& profile = "laptop");
  ~OpenMachine();
  OpenMachine(const OpenMachine&) = delete;
  OpenMachine& operator=(const OpenMachine&) = delete;
  mira_handle Handle() const { return handle_; }
  Answer Send(const nlohmann::json& request, const std::vector<Secret>& secrets = {}) const {
    return test::Send(handle_, request.dump(), secrets);
  }

 private:
  mira_handle handle_;
};

}  // namespace mira::test

#endif  // MIRA_TESTS_SUPPORT_CLIENT_LIBRARY_H_
