#ifndef MIRA_CLIENT_SESSION_H_
#define MIRA_CLIENT_SESSION_H_

// One machine, as the operations of the client layer use it. Starts the library when it is first
// needed. One thread at a time, the one that made it.
//
//   Session session;
//   for (const Token& token : ReadTokens(session)) ...

#include <cstddef>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "client/error.h"
#include "facade/mira_intf.h"

namespace mira::client {

class Snapshot;

// How far a long operation is. False cancels it.
using Progress = std::function<bool(const std::string& what, std::size_t done, std::size_t total)>;

class Session {
 public:
  enum class Texts { kNone, kAll };

  explicit Session(Progress progress = nullptr) : progress_(std::move(progress)) {}
  // The face says so where the machine under the library is a simulated one.
  void SetSimulated(std::string profile) { profile_ = std::move(profile); }
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // The time of day in UTC as RFC 3339 writes it, "2026-04-09T23:05:00Z". Without a clock of the
  // face's own it is the system's.
  void SetClock(std::function<std::string()> clock) { clock_ = std::move(clock); }
  std::string Now() const;

  // What programs remember of machines from run to run. A face may keep it in a file; without one
  // it lives as long as the session.
  struct Memory {
    std::function<Json()> load;
    std::function<void(const Json&)> save;
  };
  void SetMemory(Memory memory) { memory_ = std::move(memory); }
  Json Recall() const { return memory_.load ? memory_.load() : remembered_; }
  void Remember(const Json& what) {
    remembered_ = what;
    if (memory_.save) memory_.save(what);
  }
  // Differs from one start of the machine to the next; empty where nobody knows.
  void SetStartName(std::function<std::string()> start) { start_name_ = std::move(start); }
  std::string StartName() const { return start_name_ ? start_name_() : ""; }

  bool IsSimulated() const { return !profile_.empty(); }
  const std::string& Profile() const { return profile_; }

  // Runs Init once, and gives its status; the facade is there whatever it said.
  Status Start();
  // The same, with the attribute tables loaded and their texts; starts anew where that was not
  // done.
  Status Open(bool attributes, bool texts);
  CMiraIntf& Mira();
  // The started facade. Throws Error when Init failed.
  CMiraIntf& Ready();
  // The same with the attribute tables loaded, and their display and help texts where wanted.
  // Throws Error when the machine has no attributes, and Cancelled.
  CMiraIntf& WithAttributes(Texts texts = Texts::kNone);
  // Forgets the facade: what comes next starts anew, and sees the tables as they are now.
  void Restart();

  // The lines that Init wrote.
  const std::vector<std::string>& StartLines() const { return start_lines_; }
  // The lines that the facade has written since this was last asked, or since Init.
  std::vector<std::string> TakeDiagnostics();
  // The error of an Init that failed.
  Error StartError() const;

  // The snapshot that stands for the machine; null where the machine itself is asked.
  const Snapshot* Kept() const { return kept_; }
  // While an object of this class lives, the session's values come from a snapshot, and nothing is
  // started.
  class Offline {
   public:
    Offline(Session& session, const Snapshot& snapshot)
        : session_(session), before_(session.kept_) {
      session_.kept_ = &snapshot;
    }
    ~Offline() { session_.kept_ = before_; }
    Offline(const Offline&) = delete;
    Offline& operator=(const Offline&) = delete;

   private:
    Session& session_;
    const Snapshot* before_;
  };

  // Reports how far it is. False when nobody wants the rest.
  bool Continues(const std::string& what, std::size_t done, std::size_t total) const;
  // The same. Throws Cancelled then.
  void Report(const std::string& what, std::size_t done, std::size_t total) const;
  // The same between two firmware calls whose number is not known: 0 of 0.
  void CheckCancelled() const;

  // While an object of this class lives, calls may change something: of one without an answer
  // nobody knows whether it did.
  class Changing {
   public:
    explicit Changing(Session& session) : session_(session) { ++session_.changing_; }
    ~Changing() { --session_.changing_; }
    Changing(const Changing&) = delete;
    Changing& operator=(const Changing&) = delete;

   private:
    Session& session_;
  };
  bool IsChanging() const { return changing_ != 0; }

  // Nothing is cancelled while an object of this class lives: what is written is read back, too.
  class Uninterrupted {
   public:
    explicit Uninterrupted(Session& session) : session_(session) { ++session_.uninterrupted_; }
    ~Uninterrupted() { --session_.uninterrupted_; }
    Uninterrupted(const Uninterrupted&) = delete;
    Uninterrupted& operator=(const Uninterrupted&) = delete;

   private:
    Session& session_;
  };

 private:
  Progress progress_;
  std::string profile_;  // of the simulated machine
  std::function<std::string()> clock_;
  Memory memory_;
  Json remembered_;
  std::function<std::string()> start_name_;
  std::ostringstream diagnostics_;
  std::unique_ptr<CMiraIntf> mira_;
  Status status_ = STATUS_FAILURE;
  bool has_attributes_ = false;
  bool has_texts_ = false;
  std::vector<std::string> start_lines_;
  int uninterrupted_ = 0;
  int changing_ = 0;
  const Snapshot* kept_ = nullptr;
};

}  // namespace mira::client

#endif  // MIRA_CLIENT_SESSION_H_
