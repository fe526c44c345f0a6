#ifndef MIRA_CLIENT_HPP_
#define MIRA_CLIENT_HPP_

// miraclient for C++11 and later, of any compiler: machines that close themselves, and exceptions,
// which are the host's own and never cross into the DLL.
//
//   miraclient::Machine machine;                      // this PC
//   std::string tags = machine.Request(R"({"command": "tag.show"})");
//   machine.Request(R"({"command": "tag.set", "kind": "asset", "text": "A-1"})",
//                   {{"password", "setup1"}});

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "mira_client.h"

namespace miraclient {

// A status that is not MIRA_DONE, with its document, which says more.
class Error : public std::runtime_error {
 public:
  Error(std::int32_t status, std::string document)
      : std::runtime_error(std::string("miraclient: ") + mira_status_name(status)),
        status_(status),
        document_(std::move(document)) {}
  std::int32_t Status() const noexcept { return status_; }
  // JSON; empty when there was no memory for one.
  const std::string& Document() const noexcept { return document_; }

 private:
  std::int32_t status_;
  std::string document_;
};

// A password for a request. Overwrites its copy when it ends.
class Secret {
 public:
  Secret(std::string slot, const std::string& text)
      : slot_(std::move(slot)), text_(text.begin(), text.end()) {}
  Secret(const Secret&) = default;
  Secret& operator=(const Secret&) = delete;
  ~Secret() {
    volatile char* const bytes = text_.data();
    for (std::size_t i = 0; i < text_.size(); ++i) bytes[i] = 0;
  }
  mira_secret Plain() const {
    mira_secret plain;
    plain.slot = slot_.c_str();
    plain.bytes = text_.data();
    plain.size = static_cast<std::uint32_t>(text_.size());
    return plain;
  }

 private:
  std::string slot_;
  std::vector<char> text_;
};

// How far a request is; false cancels it. Called on the thread that made the request.
using Progress = std::function<bool(std::uint32_t done, std::uint32_t total)>;

class Machine {
 public:
  explicit Machine(const std::string& options = "{}") {
    Document document;
    document.Check(mira_open(options.data(), static_cast<std::uint32_t>(options.size()), &handle_,
                             document.Text(), document.Size()));
  }
  ~Machine() { Close(); }
  Machine(Machine&& other) noexcept : handle_(other.handle_) { other.handle_ = 0; }
  Machine& operator=(Machine&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  // The document of a request. Throws Error, and what `progress` throws.
  std::string Request(const std::string& json, const std::vector<Secret>& secrets = {},
                      const Progress& progress = nullptr) const {
    std::vector<mira_secret> plain;
    for (const Secret& secret : secrets) plain.push_back(secret.Plain());
    Callback callback{progress, nullptr};
    Document document;
    const std::int32_t status =
        mira_request(handle_, json.data(), static_cast<std::uint32_t>(json.size()), plain.data(),
                     static_cast<std::uint32_t>(plain.size()), progress ? &Callback::Call : nullptr,
                     &callback, document.Text(), document.Size());
    if (callback.failure) std::rethrow_exception(callback.failure);
    return document.Check(status);
  }

  // A firmware call as it stands; struct_size is filled in. The document, or Error: the record and
  // the data have the answer then, too.
  std::string Call(mira_record& record, std::vector<std::uint8_t>& data,
                   const Secret* key = nullptr) const {
    record.struct_size = sizeof record;
    mira_secret plain = mira_secret();
    if (key != nullptr) plain = key->Plain();
    Document document;
    return document.Check(
        mira_call(handle_, &record, data.data(), static_cast<std::uint32_t>(data.size()),
                  key != nullptr ? &plain : nullptr, document.Text(), document.Size()));
  }

  // From any thread: ends the requests that are under way.
  void Cancel() const noexcept { mira_cancel(handle_); }
  void Close() noexcept {
    if (handle_ != 0) mira_close(handle_);
    handle_ = 0;
  }

 private:
  // Releases what the library handed out.
  class Document {
   public:
    Document() = default;
    ~Document() { mira_free(text_); }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    char** Text() { return &text_; }
    std::uint32_t* Size() { return &size_; }
    std::string Check(std::int32_t status) const {
      std::string text(text_ != nullptr ? text_ : "", size_);
      if (status != MIRA_DONE) throw Error(status, std::move(text));
      return text;
    }

   private:
    char* text_ = nullptr;
    std::uint32_t size_ = 0;
  };

  // What a callback throws waits here until the request has ended.
  struct Callback {
    const Progress& progress;
    std::exception_ptr failure;

    static std::int32_t MIRA_CALL Call(void* user, std::uint32_t done, std::uint32_t total) {
      Callback& self = *static_cast<Callback*>(user);
      try {
        return self.progress(done, total) ? 0 : 1;
      } catch (...) {
        self.failure = std::current_exception();
        return 1;
      }
    }
  };

  mira_handle handle_ = 0;
};

}  // namespace miraclient

#endif  // MIRA_CLIENT_HPP_
