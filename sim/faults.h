#ifndef MIRA_SIM_FAULTS_H_
#define MIRA_SIM_FAULTS_H_

// Faults that the simulated machine injects on demand: a service that fails at its n-th call, a
// completion code of the firmware's, a corrupted reply, a call that takes its time, a connection or
// the power that is lost.
//
//   machine.GetFaults().Add({.operation = "CoInitializeEx", .nth = 2, .result = E_FAIL});
//   machine.GetFaults().Add({.operation = "firmware 11/0", .completion = -1});

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace mira::sim {

enum class Loss { kNothing, kConnection, kPower };
// Of a firmware call: before it is executed, in the middle of its write, or before its reply.
enum class Moment { kBefore, kWithin, kAfter };

// What a call through a lost connection gives (RPC_E_DISCONNECTED), and a new connection to a
// machine that is off (RPC_S_SERVER_UNAVAILABLE).
inline constexpr std::int32_t kConnectionLost = static_cast<std::int32_t>(0x80010108U);
inline constexpr std::int32_t kServerUnavailable = static_cast<std::int32_t>(0x800706BAU);

struct Fault {
  // A service of platform::ServiceTable under its own name ("CoInitializeEx"), a method of an
  // object
  // ("IWbemClassObject::Put"), or a firmware call: "firmware", or "firmware CLASS/SELECT" in
  // decimal.
  std::string operation;
  // Which call fails, counted from 1 from the moment the fault is added; 0: every call.
  int nth = 1;
  // What a failing service returns: an HRESULT, or for services that return something else that
  // value. Services that hand out memory give null, whatever stands here. A firmware call is not
  // executed, and the method that carries it returns the HRESULT.
  std::optional<std::int32_t> result = std::nullopt;
  // For firmware calls: answers this completion code (cbRES1) without executing the command.
  std::optional<std::int32_t> completion = std::nullopt;
  // For firmware calls: changes the bytes of the reply; the span is the whole transfer array.
  std::function<void(std::vector<std::uint8_t>& reply)> corrupt = nullptr;
  // How long the call takes.
  std::chrono::milliseconds delay{0};
  // For firmware calls: how many bytes of the reply come through.
  std::optional<std::uint32_t> truncate = std::nullopt;
  // For firmware calls: bytes written over the reply, from an offset on.
  std::uint32_t overwrite_at = 0;
  std::vector<std::uint8_t> overwrite = {};
  // A connection is lost until the program connects anew, in firmware calls and in methods that
  // need it; the power, in firmware calls, until the machine restarts.
  Loss loss = Loss::kNothing;
  Moment moment = Moment::kBefore;
};

// Faults beyond one program's own.
class FaultSource {
 public:
  virtual ~FaultSource() = default;
  // Counts a call of the operation and gives the faults that it hits.
  virtual std::vector<Fault> Hit(std::string_view operation) = 0;
};

// Whether a method can only be called while there is a connection.
bool NeedsConnection(std::string_view operation);

class Faults {
 public:
  // Throws std::invalid_argument for an operation that does not exist, or that cannot fail so.
  void Add(Fault fault);
  // The same check without adding.
  static void Check(const Fault& fault);
  // Whether there is something that a call would notice.
  static bool DoesSomething(const Fault& fault);
  // The name of an operation that may be given as CLASS/SELECT alone.
  static std::string NameOf(const std::string& operation);
  // Where further faults come from; null: from nowhere.
  void SetSource(FaultSource* source) { source_ = source; }
  // All of them, but for the firmware calls of single commands.
  static std::span<const std::string_view> Operations();
  void Clear();
  // Called with the name of every operation that is called; null: nobody is.
  void OnCall(std::function<void(std::string_view operation)> observer) {
    on_call_ = std::move(observer);
  }
  // How often an operation was called since the machine was made.
  int Calls(std::string_view operation) const;
  // The same of every operation that was called.
  const std::map<std::string, int, std::less<>>& AllCalls() const { return calls_; }

  // Counts a call of the operation and gives the faults that it hits, after their delays.
  std::vector<Fault> Hit(std::string_view operation);
  // The same for operations that only fail: the value to return, if any.
  std::optional<std::int32_t> Fails(std::string_view operation);

  // Whether a fault has cut this program's connection.
  bool IsCut() const { return is_cut_; }
  void Cut() { is_cut_ = true; }
  void Reconnect() { is_cut_ = false; }

 private:
  struct Armed {
    Fault fault;
    int calls = 0;
  };
  std::vector<Armed> armed_;
  std::map<std::string, int, std::less<>> calls_;
  std::function<void(std::string_view)> on_call_;
  FaultSource* source_ = nullptr;
  bool is_cut_ = false;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FAULTS_H_
