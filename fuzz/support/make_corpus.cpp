// Writes the inputs that the simulated machine gives into the folders of the targets: the tables of
// every profile, what its firmware answers, its files.
//
//   make_corpus fuzz/corpus

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bytes/writer.h"
#include "client/json.h"
#include "client/smbios_file.h"
#include "fuzz/support/discard.h"
#include "fuzz/support/prompted_commands.h"
#include "fuzz/support/rows.h"
#include "fuzz/support/session.h"
#include "sim/machine.h"
#include "sim/profile_file.h"
#include "sim/smbios_tables.h"
#include "transport/smbios_ci.h"

namespace {

using mira::bytes::ByteSpan;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kFirmwareHeader = 8;  // in front of a table, in the service's form

class Corpus {
 public:
  explicit Corpus(std::filesystem::path folder) : folder_(std::move(folder)) {}

  void Add(const std::string& target, const std::string& name, const Bytes& input) {
    // Profiles share most of what they are made of.
    if (!added_.insert(input).second) return;
    const auto folder = folder_ / ("fuzz_" + target);
    std::filesystem::create_directories(folder);
    std::ofstream out(folder / ("made_" + name), std::ios::binary);
    out.write(reinterpret_cast<const char*>(input.data()),
              static_cast<std::streamsize>(input.size()));
  }

 private:
  std::filesystem::path folder_;
  std::set<Bytes> added_;
};

void Append(Bytes& to, ByteSpan bytes) { to.insert(to.end(), bytes.begin(), bytes.end()); }
void AppendWord(Bytes& to, std::size_t value) {
  to.push_back(static_cast<std::uint8_t>(value & 0xFF));
  to.push_back(static_cast<std::uint8_t>(value >> 8 & 0xFF));
}
Bytes Behind(std::size_t choice, std::string_view text) {
  Bytes bytes{static_cast<std::uint8_t>(choice)};
  bytes.insert(bytes.end(), text.begin(), text.end());
  return bytes;
}
Bytes Behind(std::size_t choice, ByteSpan content) {
  return Behind(choice, mira::bytes::AsText(content));
}

// A BIOS table as the firmware gives it; empty where there is none.
Bytes ReadBiosTable(mira::sim::Machine& machine, std::uint32_t index) {
  constexpr std::size_t kArea = mira::transport::kFixedRecordSize + 4;
  constexpr std::size_t kRoom = 0xF000;
  Bytes record(kArea + kRoom);
  const auto put = [&](std::size_t at, std::uint32_t value) {
    for (unsigned i = 0; i < 4; ++i) record[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
  };
  put(0, 5 | 4 << 16);  // class, select
  put(4, mira::transport::kFixedRecordSize);
  put(12, index);
  put(36, 1);  // argument 1 is an offset
  put(40, static_cast<std::uint32_t>(record.size()));
  put(44, kRoom);
  if (machine.GetFirmware().Execute(record, machine.GetFaults())) return {};
  auto in = mira::bytes::Reader::Lenient(record, mira::transport::kFixedRecordSize);
  const std::size_t length = in.U32();
  const auto table = in.Take(std::min(length, in.Left()));
  return length <= kRoom ? Bytes(table.begin(), table.end()) : Bytes();
}

void AddBiosTables(Corpus& corpus, mira::sim::Machine& machine) {
  Bytes input;
  for (std::uint32_t index = 0; index < 4; ++index) {
    const Bytes table = ReadBiosTable(machine, index);
    if (table.empty()) return;
    if (index < 3) AppendWord(input, table.size());
    Append(input, table);
  }
  corpus.Add("pldm_tables", machine.GetProfile().name, input);
}

void AddPaths(Corpus& corpus, const mira::sim::Profile& profile) {
  constexpr std::size_t kPath = 3;  // as fuzz_device_path.cpp numbers its targets
  Bytes all;
  for (const auto& list : profile.boot_lists) {
    for (const auto& option : list.options) Append(all, option.path);
  }
  if (!all.empty()) corpus.Add("device_path", "paths_" + profile.name, Behind(kPath, all));
}

void AddFiles(Corpus& corpus, mira::sim::Machine& machine) {
  const auto& profile = machine.GetProfile();
  const Bytes table = mira::sim::BuildFirmwareTable(profile);
  std::size_t choice = 0;
  for (const auto& command : mira::fuzz::kFileCommands) {
    const std::string name = std::string(command.name) + "_" + profile.name;
    if (std::string_view(command.file_argument) == "file" &&
        (std::string_view(command.name) == "smbios" ||
         std::string_view(command.name) == "inventory")) {
      corpus.Add("input_files", name, Behind(choice, table));
      corpus.Add("input_files", name + "_dump", Behind(choice, mira::client::ToDump(table)));
    }
    ++choice;
  }
  corpus.Add("input_files", "profile_" + profile.name,
             Behind(choice, mira::sim::WriteProfile(profile)));
  const auto state = machine.SaveState();
  corpus.Add("input_files", "state_" + profile.name, Behind(choice + 1, std::string_view(state)));
  corpus.Add("smbios_table", profile.name, Bytes(table.begin() + kFirmwareHeader, table.end()));
}

using Replies = std::map<std::pair<std::uint16_t, std::uint16_t>, Bytes>;

// Every reply as it comes, written down in the form that the target reads.
void AddSessions(Corpus& corpus, const mira::sim::Profile& profile, Replies& replies) {
  for (std::size_t row = 0; row < std::size(mira::fuzz::kSessionRows); ++row) {
    mira::sim::Machine machine(profile);
    Bytes input{static_cast<std::uint8_t>(row)};
    machine.GetFaults().Add({.operation = "firmware", .nth = 0, .corrupt = [&](auto& reply) {
                               const auto heard = mira::bytes::Slice(reply, 0, 512);
                               auto in = mira::bytes::Reader::Lenient(reply);
                               const std::uint16_t cls = in.U16();
                               replies[{cls, in.U16()}] = Bytes(heard.begin(), heard.end());
                               input.push_back(1);
                               AppendWord(input, heard.size());
                               Append(input, heard);
                             }});
    const mira::sim::Session in_force(machine);
    const auto& command = mira::fuzz::kSessionRows[row];
    mira::fuzz::RunCommand(command.command, mira::client::Json::parse(command.arguments), "secret");
    if (input.size() > 16384) input.resize(16384);
    corpus.Add("session", profile.name + "_" + std::to_string(row), input);
  }
}

// Each command's own answer, or an empty one where no session asked for it.
void AddAnswers(Corpus& corpus, const Replies& replies) {
  constexpr std::size_t kEmptyRecord = 512;
  const auto answer = [&](std::pair<std::uint16_t, std::uint16_t> command) {
    const auto found = replies.find(command);
    return found != replies.end() ? found->second : Bytes(kEmptyRecord);
  };
  std::size_t row = 0;
  std::set<std::uint16_t> classes;
  for (const auto& command : mira::fuzz::PromptedCommands(4096)) {
    // Of the commands that nobody asked for, one of each class does.
    const bool is_first = classes.insert(command.first).second;
    if (is_first || replies.contains(command)) {
      Bytes input;
      AppendWord(input, row);
      Append(input, answer(command));
      corpus.Add("buffer_display", std::to_string(row), input);
    }
    ++row;
  }
  row = 0;
  for (const auto& command : mira::fuzz::kReplyCommands) {
    corpus.Add("firmware_reply", std::to_string(row), Behind(row, answer(command)));
    ++row;
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const mira::fuzz::SilentStreams silent;
  Corpus corpus{argv[1]};
  for (const auto& profile : mira::sim::Profiles()) {
    mira::sim::Machine machine(profile);
    AddBiosTables(corpus, machine);
    AddPaths(corpus, profile);
    AddFiles(corpus, machine);
  }
  Replies replies;
  AddSessions(corpus, mira::sim::Profile(), replies);
  AddAnswers(corpus, replies);
  return 0;
}
