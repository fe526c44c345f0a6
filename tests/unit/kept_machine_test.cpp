// Machines whose state lies in a file: several programs at a time, programs that are killed, files
// that cannot be used.

#include "sim/kept_machine.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "sim/kept_file.h"
#include "tests/support/byte_builder.h"
#include "tests/support/checked_cursors.h"

#if !defined(_WIN32)
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#endif

namespace mira {
namespace {

constexpr std::uint16_t kFirstLocation = 0x100;
constexpr std::uint16_t kTokens = 32;

[[maybe_unused]] sim::Profile ManyTokens() {
  sim::Profile profile;
  profile.tokens.clear();
  for (std::uint16_t i = 0; i < kTokens; ++i) {
    profile.tokens.push_back({i, static_cast<std::uint16_t>(kFirstLocation + i), 0});
  }
  return profile;
}

// A folder that is gone at the end.
class Folder {
 public:
  Folder()
      : path_(std::filesystem::temp_directory_path() / ("kept machines " + sim::UniqueText())) {}
  ~Folder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }
  std::filesystem::path File() const { return path_ / "laptop.machine"; }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// A call on the firmware as a program makes it, with argument words alone.
std::uint32_t Call(sim::Machine& machine, sim::KeptMachine& kept, std::uint16_t cls,
                   std::uint16_t select, const std::vector<std::uint32_t>& args) {
  test::ByteBuilder record;
  record.U16(cls).U16(select);
  for (std::size_t i = 0; i < 4; ++i) record.U32(i < args.size() ? args[i] : 0);
  for (int i = 0; i < 5; ++i) record.U32(0);
  record.U32(44);
  std::vector<std::uint8_t> array = record.Done();
  sim::Faults none;
  kept.Transact([&] { machine.GetFirmware().Execute(array, none); });
  test::CheckedReader in(array, 20);
  EXPECT_EQ(in.U32(), 0u);
  return in.U32();
}

std::string Content(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

TEST(KeptMachine, IsOneMachineForAllWhoHaveIt) {
  const Folder folder;
  sim::Machine first;
  sim::Machine second;
  sim::KeptMachine kept_first(first, folder.File());
  EXPECT_FALSE(std::filesystem::exists(folder.File())) << "a new machine needs no file";
  sim::KeptMachine kept_second(second, folder.File());
  Call(first, kept_first, 1, 0, {0x70, 7});
  EXPECT_EQ(Call(second, kept_second, 0, 0, {0x70}), 7u);
  Call(second, kept_second, 1, 0, {0x71, 8});
  Call(first, kept_first, 1, 0, {0x72, 9});
  EXPECT_EQ(Call(second, kept_second, 0, 0, {0x72}), 9u);
  EXPECT_EQ(Call(first, kept_first, 0, 0, {0x71}), 8u) << "nobody's change is lost";

  const std::string before = Content(folder.File());
  Call(first, kept_first, 0, 0, {0x70});
  Call(first, kept_first, 1, 0, {0x70, 7});
  EXPECT_EQ(Content(folder.File()), before) << "what changes nothing writes nothing";

  second.Reboot();
  EXPECT_EQ(Call(first, kept_first, 0, 1, {0x70}), 7u) << "in force since the other's restart";
  sim::KeptMachine::Reset(folder.File());
  EXPECT_EQ(Call(first, kept_first, 0, 0, {0x70}), 1u) << "renewed by another program";
  EXPECT_EQ(Call(second, kept_second, 0, 0, {0x71}), 0u);
}

TEST(KeptMachine, TellsWhatIsWrongWithItsFile) {
  const Folder folder;
  {
    sim::Machine machine;
    sim::KeptMachine kept(machine, folder.File());
    Call(machine, kept, 1, 0, {0x70, 7});
    // Another program spoils it: the call fails and the machine stays as it was.
    std::ofstream(folder.File(), std::ios::binary) << "{\n\"stamp\": 1\n";
    EXPECT_THROW(Call(machine, kept, 1, 0, {0x70, 8}), sim::StateError);
    EXPECT_NE(kept.Problem(), "");
    EXPECT_EQ(Content(folder.File()), "{\n\"stamp\": 1\n") << "nobody's file is overwritten";
    // No file is a new machine, one without content is damaged.
    std::ofstream(folder.File(), std::ios::binary | std::ios::trunc).close();
    EXPECT_THROW(Call(machine, kept, 1, 0, {0x70, 8}), sim::StateError);
    EXPECT_EQ(std::filesystem::file_size(folder.File()), 0u);
  }
  sim::Machine machine;
  EXPECT_THROW(sim::KeptMachine(machine, folder.File()), sim::StateError);
  sim::KeptMachine::Reset(folder.File());
  sim::KeptMachine kept(machine, folder.File());
  Call(machine, kept, 1, 0, {0x70, 7});
  sim::Machine other(*sim::FindProfile("locked"));
  EXPECT_THROW(sim::KeptMachine(other, folder.File()), sim::StateError) << "another machine's";

  // Where nothing can be written, nothing is changed.
  std::filesystem::remove(folder.File());
  std::filesystem::create_directories(folder.File() / "in the way");
  EXPECT_THROW(Call(machine, kept, 1, 0, {0x70, 9}), sim::StateError);
}

// A call with the faults of the machine; whether it came through.
bool Arrives(sim::Machine& machine, sim::KeptMachine& kept, std::uint16_t cls, std::uint16_t select,
             std::int32_t completion = 0) {
  test::ByteBuilder record;
  record.U16(cls).U16(select).U32(0x70);
  for (int i = 0; i < 8; ++i) record.U32(0);
  record.U32(44);
  std::vector<std::uint8_t> array = record.Done();
  std::optional<std::int32_t> lost;
  kept.Transact([&] { lost = machine.GetFirmware().Execute(array, machine.GetFaults()); });
  test::CheckedReader in(array, 20);
  if (!lost) {
    EXPECT_EQ(in.U32(), static_cast<std::uint32_t>(completion));
  }
  return !lost;
}

TEST(KeptMachine, SharesItsFaultsAndItsPowerWithRunningPrograms) {
  const Folder folder;
  sim::Machine first;
  sim::Machine second;
  sim::KeptMachine kept_first(first, folder.File());
  sim::KeptMachine kept_second(second, folder.File());
  EXPECT_TRUE(Arrives(first, kept_first, 0, 0));
  kept_second.GetFaults().Add({.operation = "firmware 0/0", .nth = 2, .completion = -6});
  EXPECT_TRUE(Arrives(first, kept_first, 0, 0));
  EXPECT_TRUE(Arrives(second, kept_second, 0, 0, -6)) << "the second of all programs";
  EXPECT_TRUE(Arrives(first, kept_first, 0, 0));

  kept_second.GetFaults().Add({.operation = "firmware", .loss = sim::Loss::kPower});
  EXPECT_FALSE(Arrives(first, kept_first, 0, 0));
  EXPECT_FALSE(Arrives(second, kept_second, 0, 0));
  EXPECT_EQ(kept_second.GetFaults().Clear(), 2u);
  EXPECT_FALSE(Arrives(second, kept_second, 0, 0)) << "the fault is gone, and so is the power";
  second.Reboot();
  EXPECT_TRUE(Arrives(first, kept_first, 0, 0));
}

TEST(KeptMachine, FailsItsCallsWhileItsFaultsCannotBeUsed) {
  const Folder folder;
  sim::Machine machine;
  sim::KeptMachine kept(machine, folder.File());
  const std::filesystem::path file = folder.path() / "laptop.faults";
  for (const char* const damage : {"", "{", "{\"schemaVersion\": 1, \"faults\": 3}"}) {
    SCOPED_TRACE(damage);
    std::ofstream(file, std::ios::binary) << damage;
    EXPECT_FALSE(Arrives(machine, kept, 1, 0));
    EXPECT_TRUE(machine.GetFaults().IsCut());
    EXPECT_NE(kept.Problem().find("faults cannot be used"), std::string::npos) << kept.Problem();
    EXPECT_EQ(Content(file), damage) << "nobody's file is overwritten";
    kept.GetFaults().Clear();
    EXPECT_TRUE(Arrives(machine, kept, 0, 0));
    EXPECT_EQ(kept.Problem(), "");
  }
  // Counting the call is not possible.
  kept.GetFaults().Add({.operation = "firmware 0/0", .nth = 2, .completion = -6});
  const std::filesystem::path lock = folder.path() / "laptop.faults.lock";
  std::filesystem::remove(lock);
  std::filesystem::create_directory(lock);
  EXPECT_FALSE(Arrives(machine, kept, 0, 0));
  EXPECT_NE(kept.Problem(), "");
}

TEST(KeptMachine, NotesCallsAsTheyWereAnswered) {
  using sim::Loss;
  using sim::Moment;
  struct Case {
    sim::Fault fault;
    std::optional<std::int32_t> completion;  // none: there was no answer
  };
  const std::string kRead = "firmware 0/0";
  const Case cases[] = {
      {{.operation = kRead, .result = -1}, std::nullopt},
      {{.operation = kRead, .loss = Loss::kConnection}, std::nullopt},
      {{.operation = kRead, .loss = Loss::kPower, .moment = Moment::kWithin}, std::nullopt},
      {{.operation = kRead, .loss = Loss::kPower, .moment = Moment::kAfter}, 0},
      {{.operation = kRead, .overwrite_at = 20, .overwrite = {0xFA, 0xFF, 0xFF, 0xFF}}, -6},
      {{.operation = kRead, .truncate = 22}, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    const Folder folder;
    sim::Machine machine;
    machine.GetFaults().Add(c.fault);
    sim::KeptMachine kept(machine, folder.File());
    test::ByteBuilder record;
    record.U16(0).U16(0).U32(0x70);
    for (int i = 0; i < 8; ++i) record.U32(0);
    std::vector<std::uint8_t> array = record.U32(44).Done();
    kept.Transact([&] { machine.GetFirmware().Execute(array, machine.GetFaults()); });
    ASSERT_EQ(machine.Journal().size(), 1u);
    const sim::JournalEntry& entry = machine.Journal().back();
    EXPECT_TRUE(entry.injected);
    EXPECT_EQ(entry.args[0], 0x70u);
    EXPECT_EQ(entry.answered, c.completion.has_value());
    if (c.completion) {
      EXPECT_EQ(entry.completion, *c.completion);
    }
  }
}

#if !defined(_WIN32)

// A program of its own that does `work`, and says whether it went well.
template <typename Work>
pid_t Start(Work work) {
  const pid_t child = fork();
  if (child != 0) return child;
  try {
    work();
    _exit(0);
  } catch (...) {
    _exit(1);
  }
}

int StatusOf(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return status;
}

TEST(KeptMachine, LosesNoUpdateOfProgramsThatRunTogether) {
  const Folder folder;
  constexpr std::uint16_t kPrograms = 4;
  std::vector<pid_t> programs;
  for (std::uint16_t program = 0; program < kPrograms; ++program) {
    programs.push_back(Start([&] {
      sim::Machine machine(ManyTokens());
      sim::KeptMachine kept(machine, folder.File());
      for (std::uint16_t i = program; i < kTokens; i = static_cast<std::uint16_t>(i + kPrograms)) {
        Call(machine, kept, 1, 0, {kFirstLocation + std::uint32_t{i}, i + 1u});
      }
    }));
  }
  for (const pid_t program : programs) EXPECT_EQ(StatusOf(program), 0);
  sim::Machine machine(ManyTokens());
  sim::KeptMachine kept(machine, folder.File());
  for (std::uint16_t i = 0; i < kTokens; ++i) {
    EXPECT_EQ(Call(machine, kept, 0, 0, {kFirstLocation + std::uint32_t{i}}), i + 1u);
  }
  struct stat status {};
  ASSERT_EQ(stat(folder.File().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST(KeptMachine, IsOldOrNewAfterAProgramWasKilled) {
  const char* const wanted = std::getenv("MIRA_TEST_KILLS");
  const int kills = wanted != nullptr ? std::atoi(wanted) : 200;
  const Folder folder;
  sim::Machine machine;
  sim::KeptMachine kept(machine, folder.File());
  const auto value = [&] { return Call(machine, kept, 0, 0, {0x70}); };
  std::uint32_t last = value();
  for (int i = 0; i < kills; ++i) {
    const pid_t program = Start([&] {
      for (;;) Call(machine, kept, 1, 0, {0x70, Call(machine, kept, 0, 0, {0x70}) % 0xFFFF + 1});
    });
    // Once it has written, at any moment of its next call.
    const std::string before = Content(folder.File());
    for (int wait = 0; wait < 10000 && Content(folder.File()) == before; ++wait) usleep(1000);
    usleep(static_cast<useconds_t>(i * 7919 % 20000));
    kill(program, SIGKILL);
    EXPECT_TRUE(WIFSIGNALED(StatusOf(program)));
    const std::uint32_t now = value();
    EXPECT_GT(now, last);
    last = now;
  }
  // What the last one left behind goes with the next program.
  const auto files = [&] {
    std::filesystem::directory_iterator begin(folder.path());
    return std::distance(begin, {});
  };
  sim::Machine next;
  const sim::KeptMachine cleaned(next, folder.File());
  EXPECT_EQ(files(), 2) << "the machine and its lock";
}

#endif

}  // namespace
}  // namespace mira
