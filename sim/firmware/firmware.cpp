#include "sim/firmware/firmware.h"

#include <algorithm>
#include <string>
#include <utility>

#include "sim/firmware/attributes.h"
#include "sim/firmware/batteries.h"
#include "sim/firmware/boot.h"
#include "sim/firmware/data_block.h"
#include "sim/firmware/identity.h"
#include "sim/firmware/lists.h"
#include "sim/firmware/passwords.h"
#include "sim/firmware/security.h"
#include "sim/firmware/skyport.h"
#include "sim/firmware/tokens.h"
#include "sim/node_paths.h"

namespace mira::sim {
namespace {

// Class 64 is served whether or not a bitmap of 32 classes can announce it.
constexpr std::uint16_t kUnannouncedClass = 64;

// What a fault does to a reply.
void Spoil(const Fault& fault, std::vector<std::uint8_t>& reply) {
  for (std::size_t i = 0; i < fault.overwrite.size(); ++i) {
    const std::uint64_t at = std::uint64_t{fault.overwrite_at} + i;
    if (at < reply.size()) reply[static_cast<std::size_t>(at)] = fault.overwrite[i];
  }
  if (fault.truncate) reply.resize(std::min<std::size_t>(reply.size(), *fault.truncate));
  if (fault.corrupt) fault.corrupt(reply);
}

// The answer as the caller gets it; what is cut off is none.
void NoteSpoilt(const std::vector<std::uint8_t>& reply, JournalEntry& entry) {
  constexpr std::size_t kCompletion = 20;
  bytes::Reader in(reply, kCompletion);
  const std::uint32_t completion = in.U32();
  entry.answered = in.Ok();
  if (entry.answered) entry.completion = static_cast<std::int32_t>(completion);
}

}  // namespace

Firmware::Firmware(const Profile& profile)
    : supported_classes_(profile.supported_classes),
      security_(std::make_shared<Security>(profile)) {
  const auto& security = security_;
  auto tokens = std::make_shared<TokenStore>(profile.tokens);
  SetHandler(0, std::make_unique<TokenReadHandler>(tokens));
  SetHandler(1, std::make_unique<TokenWriteHandler>(tokens, security));
  SetHandler(2, std::make_unique<DataBlockHandler>(2, 0, 1, profile.data_blocks, security));
  SetHandler(3, std::make_unique<BootHandler>(security, profile));
  SetHandler(6, std::make_unique<DataBlockHandler>(6, 4, 5, profile.data_blocks, security));
  SetHandler(5, std::make_unique<AttributeHandler>(security, profile));
  SetHandler(7, std::make_unique<SkyportHandler>());
  SetHandler(8, std::make_unique<BatteryHandler>(profile.batteries));
  SetHandler(9, std::make_unique<PasswordHandler>(security));
  SetHandler(10, std::make_unique<SystemPasswordHandler>(security, profile));
  SetHandler(11, std::make_unique<TagHandler>(security, profile));
  SetHandler(12, std::make_unique<PasswordHandler>(security));
  SetHandler(17, std::make_unique<ListHandler>(profile));
  // Two classes serve the one ownership tag.
  auto ownership_tag = std::make_shared<std::string>(profile.ownership_tag);
  SetHandler(20, std::make_unique<OwnershipTagHandler>(security, ownership_tag));
  SetHandler(21, std::make_unique<EppidHandler>(profile.eppid));
  SetHandler(23, std::make_unique<OwnershipTagHandler>(security, ownership_tag));
  SetHandler(26, std::make_unique<ThinClientHandler>(profile.thin_client));
}

Firmware::~Firmware() = default;

void Firmware::SetHandler(std::uint16_t cls, std::unique_ptr<CommandHandler> handler) {
  handlers_.at(cls) = std::move(handler);
}

void Firmware::Keep(Fields& fields) {
  fields("starts", boot_count_).Later("isOff", is_off_, false);
  fields.Group("firmware", [&] {
    for (const auto& handler : handlers_) {
      if (handler) handler->Keep(fields);
    }
  });
}

void Firmware::Reboot() { Restart(is_off_ ? Fields::Pass::kPowerLoss : Fields::Pass::kRestart); }

void Firmware::PowerLoss() { Restart(Fields::Pass::kPowerLoss); }

void Firmware::Restart(Fields::Pass pass) {
  Node nowhere;
  Fields late(pass, nowhere);
  Keep(late);
  is_off_ = false;
  ++boot_count_;
  for (const auto& handler : handlers_) {
    if (handler) handler->Reboot();
  }
}

std::int32_t Firmware::Dispatch(Call& call) {
  const std::uint16_t cls = call.Class();
  const bool announced =
      cls == kUnannouncedClass || (cls < 32 && (supported_classes_ >> cls & 1) != 0);
  if (!announced || cls >= kClasses || !handlers_[cls]) return kNotSupported;
  call.Complete(kSuccess);
  handlers_[cls]->Handle(call);
  return call.Completion();
}

Node Firmware::Tree() {
  Node tree;
  Fields fields(Fields::Pass::kSave, tree);
  fields.Whole([&] { Keep(fields); });
  return tree;
}

void Firmware::TakeTree(Node tree) {
  Fields fields(Fields::Pass::kLoad, tree);
  fields.Whole([&] { Keep(fields); });
}

void Firmware::DispatchTorn(Call& call) {
  Node before;
  Fields fields(Fields::Pass::kSave, before);
  fields.Whole([&] { Keep(fields); });
  Dispatch(call);
  TakeTree(Torn(before, Tree(), fields.PartGroups()));
}

void Firmware::Answer(Call& call, const std::vector<Fault>& hit) {
  const auto forced =
      std::find_if(hit.begin(), hit.end(), [](const Fault& f) { return f.completion.has_value(); });
  if (forced != hit.end()) {
    call.Complete(*forced->completion);
  } else {
    call.Complete(Dispatch(call));
  }
}

void Firmware::Note(const Call& call, JournalEntry& entry) {
  entry.completion = call.Completion();
  for (unsigned i = 0; i < std::size(entry.results); ++i) entry.results[i] = call.Result(i + 2);
  const std::uint32_t key = call.HandedOutKey();
  if (key == 0) return;
  if (std::find(issued_keys_.begin(), issued_keys_.end(), key) == issued_keys_.end()) {
    issued_keys_.push_back(key);
  }
  entry.results[0] = 0;
  entry.hands_out_key = true;
}

std::optional<std::int32_t> Firmware::Execute(std::vector<std::uint8_t>& array, Faults& faults) {
  if (is_off_) return kConnectionLost;
  Call call(array);
  JournalEntry entry;
  entry.cls = call.Class();
  entry.select = call.Select();
  entry.record_length = static_cast<std::uint32_t>(call.Record().size());
  for (unsigned i = 0; i < 4; ++i) {
    const std::uint32_t arg = call.Arg(i + 1);
    // Also those that another program was given, and those from before the last start.
    entry.masked[i] = security_->IsKey(arg) || std::find(issued_keys_.begin(), issued_keys_.end(),
                                                         arg) != issued_keys_.end();
    if (!entry.masked[i]) entry.args[i] = arg;
  }

  std::vector<Fault> hit = faults.Hit("firmware");
  const std::string command =
      "firmware " + std::to_string(call.Class()) + "/" + std::to_string(call.Select());
  for (Fault& fault : faults.Hit(command)) hit.push_back(std::move(fault));
  entry.injected = !hit.empty();
  const auto loss =
      std::find_if(hit.begin(), hit.end(), [](const Fault& f) { return f.loss != Loss::kNothing; });
  // What the firmware is not asked, or does not live to answer, went by all the same.
  const auto note_unanswered = [&] {
    entry.answered = false;
    journal_.push_back(entry);
  };
  const auto lose = [&] {
    if (loss->loss == Loss::kPower) is_off_ = true;
    if (loss->loss == Loss::kConnection) faults.Cut();
    return kConnectionLost;
  };
  if (loss != hit.end() && loss->moment == Moment::kBefore) {
    note_unanswered();
    return lose();
  }
  const auto failing =
      std::find_if(hit.begin(), hit.end(), [](const Fault& f) { return f.result.has_value(); });
  if (failing != hit.end()) {
    note_unanswered();
    return failing->result;
  }
  if (loss != hit.end() && loss->moment == Moment::kWithin) {
    if (call.WellFormed()) DispatchTorn(call);
    note_unanswered();
    return lose();
  }

  if (call.WellFormed()) {
    Answer(call, hit);
    Note(call, entry);
  } else {
    // A record that states more bytes than came is answered in the fixed part alone.
    bytes::Writer out(array, 20);
    out.U32(static_cast<std::uint32_t>(kBadFormat));
    static_cast<void>(out.Ok());  // what has no place for the answer goes back as it came
    entry.completion = kBadFormat;
  }
  const bool is_lost = loss != hit.end();
  if (!is_lost && !hit.empty()) {
    for (const Fault& fault : hit) Spoil(fault, array);
    NoteSpoilt(array, entry);
  }
  journal_.push_back(entry);
  if (is_lost) return lose();
  return std::nullopt;
}

void Write(std::ostream& out, const std::vector<JournalEntry>& journal) {
  for (const JournalEntry& entry : journal) {
    out << "class " << entry.cls << " select " << entry.select << std::hex << " args";
    for (unsigned i = 0; i < 4; ++i) {
      if (entry.masked[i]) {
        out << " [key]";
      } else {
        out << " 0x" << entry.args[i];
      }
    }
    out << std::dec << " length " << entry.record_length << " -> ";
    if (!entry.answered) {
      out << "no answer\n";
      continue;
    }
    out << entry.completion << std::hex;
    for (const std::uint32_t result : entry.results) out << " 0x" << result;
    out << std::dec << '\n';
  }
}

}  // namespace mira::sim
