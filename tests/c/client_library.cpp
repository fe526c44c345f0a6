#include "tests/support/client_library.h"

#include <gtest/gtest.h>

#if defined(_WIN32)
#include "tests/support/client_module.h"
#endif

namespace mira::test {
namespace {

// What came back; the document is released.
void Take(Answer& answer, std::int32_t status, char* document, std::uint32_t size) {
  answer.status = status;
  if (document == nullptr) return;
  answer.text = document;
  EXPECT_EQ(answer.text.size(), size) << "the document ends where its size says";
  Client().free(document);
  answer.document = nlohmann::json::parse(answer.text);
  EXPECT_EQ(answer.document.at("schemaVersion"), 1);
  const auto error = answer.document.find("error");
  EXPECT_EQ(error != answer.document.end(), status != MIRA_DONE) << answer.text;
  if (error != answer.document.end()) {
    EXPECT_EQ(error->at("code"), status);
  }
}

std::vector<mira_secret> Plain(const std::vector<Secret>& secrets) {
  std::vector<mira_secret> plain;
  for (const Secret& secret : secrets) {
    plain.push_back(
        {secret.slot.c_str(), secret.text.data(), static_cast<std::uint32_t>(secret.text.size())});
  }
  return plain;
}

}  // namespace

const ClientLibrary& Client() {
#if defined(_WIN32)
  static ClientModule module;
  return module.Functions();
#else
  static const ClientLibrary functions = {
      mira_abi,     mira_version, mira_status_name, mira_open, mira_close,
      mira_request, mira_call,    mira_cancel,      mira_free, mira_sim_control};
  return functions;
#endif
}

OpenAnswer Open(const std::string& options) {
  OpenAnswer answer;
  char* document = nullptr;
  std::uint32_t size = 0;
  const std::int32_t status = Client().open(
      options.data(), static_cast<std::uint32_t>(options.size()), &answer.handle, &document, &size);
  Take(answer, status, document, size);
  EXPECT_EQ(answer.handle != 0, status == MIRA_DONE);
  return answer;
}

Answer Send(mira_handle handle, const std::string& text, const std::vector<Secret>& secrets,
            mira_progress progress, void* user) {
  const std::vector<mira_secret> plain = Plain(secrets);
  Answer answer;
  char* document = nullptr;
  std::uint32_t size = 0;
  const std::int32_t status =
      Client().request(handle, text.data(), static_cast<std::uint32_t>(text.size()), plain.data(),
                       static_cast<std::uint32_t>(plain.size()), progress, user, &document, &size);
  Take(answer, status, document, size);
  return answer;
}

Answer Call(mira_handle handle, mira_record& record, std::vector<std::uint8_t>& data,
            const Secret& key) {
  const std::vector<Secret> keys = {key};
  const std::vector<mira_secret> plain = Plain(keys);
  Answer answer;
  char* document = nullptr;
  std::uint32_t size = 0;
  const std::int32_t status =
      Client().call(handle, &record, data.data(), static_cast<std::uint32_t>(data.size()),
                    key.slot.empty() ? nullptr : plain.data(), &document, &size);
  Take(answer, status, document, size);
  return answer;
}

OpenMachine::OpenMachine(const std::string& profile)
    : handle_(Open(nlohmann::json({{"simulated", profile}}).dump()).handle) {}

OpenMachine::~OpenMachine() { EXPECT_EQ(Client().close(handle_), MIRA_DONE); }

}  // namespace mira::test
