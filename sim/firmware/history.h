#ifndef MIRA_SIM_FIRMWARE_HISTORY_H_
#define MIRA_SIM_FIRMWARE_HISTORY_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "bytes/reader.h"

namespace mira::sim {

// What has changed a machine since it was made: calls of changing commands, as they came in, and
// restarts. A machine of the same profile to which the same happens is in the same state, since
// nothing in a machine is left to chance.
class History {
 public:
  // A call's record; an empty one is a restart.
  using Event = std::vector<std::uint8_t>;

  History() = default;
  History(const History&) = delete;
  History& operator=(const History&) = delete;
  History(History&&) = default;
  History& operator=(History&&) = default;
  // Wipes the events: they may hold passwords.
  ~History();

  // Whether the call may change the machine, a wrong password included.
  static bool Changes(bytes::ByteSpan record);
  // The event that a call leaves behind, by what it ended with. Of a wrong password it keeps that
  // it was wrong, not its text; a call that was refused for another reason leaves nothing.
  static std::optional<Event> Outcome(Event record, std::int32_t completion);

  void Add(Event event) { events_.push_back(std::move(event)); }
  const std::vector<Event>& Events() const { return events_; }

  // The events as bytes, under the profile's name. Nothing can be read from the bytes of another
  // profile, or from bytes that are none.
  std::vector<std::uint8_t> Save(std::string_view profile) const;
  static std::optional<History> Load(bytes::ByteSpan saved, std::string_view profile);

 private:
  std::vector<Event> events_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FIRMWARE_HISTORY_H_
