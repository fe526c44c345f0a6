#include "sim/firmware/lists.h"

#include <algorithm>
#include <string>

#include "sim/firmware/fields.h"

namespace mira::sim {
namespace {

// The bytes of a list, built entry by entry.
class List {
 public:
  List& Byte(unsigned value) {
    bytes_.push_back(static_cast<std::uint8_t>(value));
    return *this;
  }
  List& Word(unsigned value) { return Byte(value & 0xFF).Byte(value >> 8 & 0xFF); }
  List& DWord(std::uint32_t value) { return Word(value & 0xFFFF).Word(value >> 16); }
  List& Text(const std::string& text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return Byte(0);
  }
  operator bytes::ByteSpan() const { return bytes_; }  // NOLINT(google-explicit-constructor)

 private:
  std::vector<std::uint8_t> bytes_;
};

}  // namespace

ListHandler::ListHandler(const Profile& profile)
    : batteries_(profile.batteries),
      buttons_(profile.tablet_buttons),
      sensors_(profile.thermal_sensors),
      log_(profile.log) {
  for (const FirmwareMessage& message : profile.messages) messages_.push_back({message});
}

void ListHandler::Keep(Fields& fields) {
  fields.Group("messages", [&] {
    NumberNames name;
    for (Message& message : messages_) {
      fields.Late(name(message.number), message.seen, message.seen_is_written);
    }
  });
}

void ListHandler::Handle(Call& call) {
  List list;
  switch (call.Select()) {
    case 5:
      for (const Battery& b : batteries_) {
        list.Word(b.number).Word(b.charge_cycles).DWord(b.design_capacity);
        list.DWord(b.full_charge_capacity);
      }
      break;
    case 14:
      return MarkAsSeen(call);
    case 16:
      for (const FirmwareMessage& m : messages_) {
        list.Word(m.number).Byte(m.severity).Byte(m.seen ? 1 : 0).Text(m.text);
      }
      break;
    case 18:
      for (const TabletButton& b : buttons_) list.Word(b.scan_code).Text(b.name);
      break;
    case 22:
      for (const ThermalSensor& s : sensors_) {
        list.Word(s.number).Word(static_cast<std::uint16_t>(s.temperature));
        list.Word(static_cast<std::uint16_t>(s.limit)).Text(s.location);
      }
      break;
    case 24:
      for (const LogEntry& e : log_) {
        list.Word(e.year);
        for (const std::uint8_t part : e.time) list.Byte(part);
        list.Byte(e.severity).Word(e.code).Text(e.text);
      }
      break;
    default:
      return call.Complete(kNotSupported);
  }
  call.AnswerData(list);
}

void ListHandler::MarkAsSeen(Call& call) {
  const auto found = std::find_if(messages_.begin(), messages_.end(), [&](const auto& message) {
    return message.number == call.Arg(1);
  });
  if (found == messages_.end()) return call.Complete(kError);
  found->seen = true;
}

}  // namespace mira::sim
