// The exported functions. Each turns what it is given into values, has the work done by the engine,
// and turns what comes back, or is thrown, into a status and a document.

#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>

#include "client/c/document.h"
#include "client/c/engine.h"
#include "client/c/given_secrets.h"
#include "client/c/mira_client.h"
#include "client/c/raw_record.h"
#include "client/c/request_text.h"
#include "transport/com_error.h"

namespace mira::client::c {
namespace {

constexpr std::uint32_t kMostSecrets = 16;

// Where a function's document goes.
struct Target {
  Target(char** document, std::uint32_t* document_size) : text(document), size(document_size) {
    if (text != nullptr) *text = nullptr;
    if (size != nullptr) *size = 0;
  }

  void Put(const Json& document) const {
    if (text == nullptr) return;
    const std::string whole = ToText(document);
    char* const copy = static_cast<char*>(std::malloc(whole.size() + 1));
    if (copy == nullptr) throw std::bad_alloc();
    std::memcpy(copy, whole.c_str(), whole.size() + 1);
    *text = copy;
    if (size != nullptr) *size = static_cast<std::uint32_t>(whole.size());
  }

  char** text;
  std::uint32_t* size;
};

Error OutOfMemory() { return Error(kUnexpected, "out-of-memory", "The system ran out of memory."); }

// What is being handled, as an error of the interface.
Error CaughtError() {
  try {
    throw;
  } catch (const Error& error) {
    return error;
  } catch (const Cancelled& cancelled) {
    return Error(kCancelled, "cancelled", cancelled.what());
  } catch (const transport::ComError&) {
    return OutOfMemory();
  } catch (const std::bad_alloc&) {
    return OutOfMemory();
  } catch (const std::exception& error) {
    return Error(kUnexpected, "unexpected", std::string("It failed unexpectedly: ") + error.what());
  } catch (...) {
    return Error(kUnexpected, "unexpected", "It failed unexpectedly.");
  }
}

// The one place that exceptions end at. Without memory for a document there is none.
template <typename Operation>
std::int32_t Guard(const Target& target, Operation operation) noexcept {
  try {
    try {
      const Reply reply = operation();
      target.Put(WholeDocument(reply.document, Engine::Get().IsSimulated()));
      return reply.status;
    } catch (...) {
      const Error error = CaughtError();
      target.Put(WholeDocument(ErrorDocument(error), Engine::Get().IsSimulated()));
      return error.status;
    }
  } catch (...) {
    return kUnexpected;
  }
}

// A text that a host lends.
std::string_view Lent(const char* text, std::uint32_t size, const char* what) {
  if (text == nullptr && size != 0) {
    throw Error(kUsage, "null-pointer", std::string(what) + " is null.", what);
  }
  return text != nullptr ? std::string_view(text, size) : std::string_view();
}

std::span<const mira_secret> LentSecrets(const mira_secret* secrets, std::uint32_t count) {
  if ((secrets == nullptr && count != 0) || count > kMostSecrets) {
    throw Error(kUsage, "bad-secret", "The list of secrets is null or too long.");
  }
  return {secrets, count};
}

Ask AskOf(mira_progress progress, void* user) {
  if (progress == nullptr) return nullptr;
  return [progress, user](std::size_t done, std::size_t total) {
    return progress(user, static_cast<std::uint32_t>(done), static_cast<std::uint32_t>(total)) == 0;
  };
}

// What a request says is overwritten when it is no longer needed: a host may have put a secret
// into it.
class WipedJson {
 public:
  explicit WipedJson(Json value) : value_(std::move(value)) {}
  ~WipedJson() { Wipe(value_); }
  WipedJson(const WipedJson&) = delete;
  WipedJson& operator=(const WipedJson&) = delete;
  const Json& Value() const { return value_; }

 private:
  Json value_;
};

Reply RunRequest(mira_handle machine, std::string_view text, std::span<const mira_secret> given,
                 const Ask& ask) {
  const WipedJson request(ReadObject(text, "The request"));
  const NamedRequest named = ReadRequest(request.Value());
  GivenSecrets secrets(given, named.command->secrets);
  return Engine::Get().Run(
      machine,
      [&](Session& session) {
        Request work(session, secrets);
        Result result = Run(*named.command, named.arguments, work);
        return Reply{result.status, std::move(result.document)};
      },
      ask);
}

}  // namespace
}  // namespace mira::client::c

using namespace mira::client;
using namespace mira::client::c;

uint32_t MIRA_CALL mira_abi(void) { return MIRA_ABI; }

const char* MIRA_CALL mira_version(void) { return MIRA_VERSION; }

const char* MIRA_CALL mira_status_name(int32_t status) { return StatusName(status); }

int32_t MIRA_CALL mira_open(const char* options, uint32_t size, mira_handle* machine, char** doc,
                            uint32_t* doc_size) {
  if (machine != nullptr) *machine = 0;
  mira_handle opened = 0;
  const int32_t status = Guard(Target(doc, doc_size), [&] {
    const std::string_view text = Lent(options, size, "options");
    if (machine == nullptr) throw Error(kUsage, "null-pointer", "machine is null.", "machine");
    opened = Engine::Get().Open(ReadOptions(text));
    *machine = opened;
    return Reply{.document = {{"version", MIRA_VERSION}, {"abi", MIRA_ABI}}};
  });
  // A handle that the host is not told of is none.
  if (status != MIRA_DONE && opened != 0) {
    *machine = 0;
    mira_close(opened);
  }
  return status;
}

int32_t MIRA_CALL mira_close(mira_handle machine) {
  return Guard(Target(nullptr, nullptr), [&] {
    Engine::Get().Close(machine);
    return Reply();
  });
}

int32_t MIRA_CALL mira_request(mira_handle machine, const char* json, uint32_t size,
                               const mira_secret* secrets, uint32_t count, mira_progress progress,
                               void* user, char** doc, uint32_t* doc_size) {
  return Guard(Target(doc, doc_size), [&] {
    Engine::Get().Check(machine);
    return RunRequest(machine, Lent(json, size, "json"), LentSecrets(secrets, count),
                      AskOf(progress, user));
  });
}

int32_t MIRA_CALL mira_call(mira_handle machine, mira_record* record, uint8_t* data, uint32_t size,
                            const mira_secret* key, char** doc, uint32_t* doc_size) {
  return Guard(Target(doc, doc_size), [&] {
    Engine::Get().Check(machine);
    CheckRecord(record);
    if (data == nullptr && size != 0) {
      throw Error(kUsage, "null-pointer", "data is null.", "data");
    }
    constexpr const char* kSlots[] = {"password", "class10"};
    GivenSecrets secrets(LentSecrets(key, key != nullptr ? 1 : 0), kSlots);
    return Engine::Get().Run(
        machine,
        [&](Session& session) {
          return CallRecord(session, *record, {data, size}, secrets);
        },
        nullptr);
  });
}

int32_t MIRA_CALL mira_cancel(mira_handle machine) {
  return Guard(Target(nullptr, nullptr), [&] {
    Engine::Get().Cancel(machine);
    return Reply();
  });
}

void MIRA_CALL mira_free(void* document) { std::free(document); }
