// Handles, threads, progress and cancellation.

#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <set>
#include <thread>

#include "tests/support/client_library.h"

#if defined(_WIN32)
#include <objbase.h>
#endif

namespace mira::test {
namespace {

constexpr char kLaptop[] = R"({"simulated": "laptop"})";
constexpr char kListAttributes[] = R"({"command": "attr.list"})";
constexpr char kShowTags[] = R"({"command": "tag.show"})";

// A progress callback made of a function.
class Progress {
 public:
  using Function = std::function<std::int32_t(std::uint32_t done, std::uint32_t total)>;
  explicit Progress(Function function) : function_(std::move(function)) {}
  static std::int32_t MIRA_CALL Call(void* user, std::uint32_t done, std::uint32_t total) {
    return static_cast<Progress*>(user)->function_(done, total);
  }
  Answer Send(mira_handle handle, const std::string& request,
              const std::vector<Secret>& secrets = {}) {
    return test::Send(handle, request, secrets, Call, this);
  }

 private:
  Function function_;
};

// Something that one thread does once and another waits for.
class Event {
 public:
  void Set() {
    const std::scoped_lock lock(mutex_);
    is_set_ = true;
    changed_.notify_all();
  }
  void Wait() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return is_set_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool is_set_ = false;
};

TEST(Handles, AreNumbersThatAreGivenOnce) {
  std::set<mira_handle> seen;
  for (int i = 0; i < 3; ++i) {
    const mira_handle first = Open(kLaptop).handle;
    const mira_handle second = Open(kLaptop).handle;
    EXPECT_TRUE(seen.insert(first).second && seen.insert(second).second);
    EXPECT_EQ(Client().close(first), MIRA_DONE);
    EXPECT_EQ(Client().close(second), MIRA_DONE);
  }
}

TEST(Handles, AreRefusedWhenTheyAreNotOpen) {
  const mira_handle closed = Open(kLaptop).handle;
  EXPECT_EQ(Client().close(closed), MIRA_DONE);
  const auto check = [](mira_handle handle) {
    EXPECT_EQ(Client().close(handle), MIRA_USAGE);
    EXPECT_EQ(Client().cancel(handle), MIRA_USAGE);
    const Answer answer = Send(handle, kShowTags);
    EXPECT_EQ(answer.status, MIRA_USAGE);
    EXPECT_EQ(answer.Error(), "bad-handle");
    mira_record record = {};
    record.struct_size = sizeof record;
    std::vector<std::uint8_t> none;
    EXPECT_EQ(Call(handle, record, none).Error(), "bad-handle");
  };
  for (const mira_handle handle : {closed, mira_handle{0}, mira_handle{0xFFFFFFFF}}) check(handle);
  const OpenMachine machine;
  for (const mira_handle handle : {closed, machine.Handle() + 1}) check(handle);
}

TEST(Handles, ShareTheProcessesMachine) {
  const mira_handle first = Open(kLaptop).handle;
  const OpenAnswer second = Open(R"({"simulated": true, "state": null})");
  EXPECT_EQ(second.status, MIRA_DONE) << "the same machine, said in another way";
  EXPECT_EQ(Open(R"({"simulated": "desktop"})").status, MIRA_BUSY);
  EXPECT_EQ(Open("{}").Error(), "another-machine");
  const char set[] = R"({"command": "tag.set", "kind": "asset", "text": "NF-1"})";
  EXPECT_EQ(Send(first, set).status, MIRA_DONE);
  const auto tag = [](mira_handle handle) {
    return Send(handle, R"({"command": "tag.show", "kind": "asset"})").document["tags"][0]["value"];
  };
  EXPECT_EQ(tag(second.handle), "NF-1");
  EXPECT_EQ(Client().close(first), MIRA_DONE);
  EXPECT_EQ(tag(second.handle), "NF-1");
  EXPECT_EQ(Client().close(second.handle), MIRA_DONE);
  // The last close ends the machine: another may be opened, and the same one is new.
  {
    const OpenMachine desktop("desktop");
    EXPECT_EQ(tag(desktop.Handle()), "NF-008120");
  }
  const OpenMachine laptop;
  EXPECT_EQ(tag(laptop.Handle()), "NF-004711");
}

TEST(Progress, IsToldOnTheCallersThread) {
  const OpenMachine machine;
  const std::thread::id caller = std::this_thread::get_id();
  int calls = 0;
  bool has_total = false;
  Progress progress([&](std::uint32_t done, std::uint32_t total) {
    ++calls;
    has_total = has_total || total != 0;
    EXPECT_LE(done, total);
    EXPECT_EQ(std::this_thread::get_id(), caller);
    return 0;
  });
  EXPECT_EQ(progress.Send(machine.Handle(), kListAttributes).status, MIRA_DONE);
  EXPECT_GT(calls, 10);
  EXPECT_TRUE(has_total);
}

// At each of the first calls in turn; then the same request succeeds.
TEST(Progress, CancelsAndLeavesNothingHalfLoaded) {
  const OpenMachine machine;
  const Answer whole = Send(machine.Handle(), R"({"command": "attr.get", "names": ["FanFloor"]})");
  std::set<std::int32_t> statuses;
  for (int at = 0; at < 40; ++at) {
    // With another machine's load in between, each round loads anew.
    const OpenMachine fresh;
    for (const char* const request :
         {R"({"command": "attr.get", "names": ["FanFloor"]})", kShowTags}) {
      int calls = 0;
      Progress progress(
          [&](std::uint32_t, std::uint32_t) { return static_cast<std::int32_t>(calls++ == at); });
      const Answer answer = progress.Send(fresh.Handle(), request);
      EXPECT_EQ(answer.status, calls > at ? MIRA_CANCELLED : MIRA_DONE) << answer.text;
      statuses.insert(answer.status);
    }
    EXPECT_EQ(Send(fresh.Handle(), R"({"command": "attr.get", "names": ["FanFloor"]})").text,
              whole.text);
  }
  EXPECT_EQ(statuses.size(), 2u);
}

// What was written before is told, and is whole.
TEST(Progress, CancelsBetweenTwoWrites) {
  const OpenMachine machine;
  const std::string set =
      R"({"command": "attr.set", "name": "FanFloor=30", "more": ["WakeOnLan=LAN"]})";
  // Nothing is loaded any more: what is reported is the reads, then the writes.
  EXPECT_EQ(Send(machine.Handle(), kListAttributes).status, MIRA_DONE);
  bool was_cut = false;
  for (int at = 0; at < 20 && !was_cut; ++at) {
    int calls = 0;
    Progress progress(
        [&](std::uint32_t, std::uint32_t) { return static_cast<std::int32_t>(calls++ == at); });
    const Answer answer = progress.Send(machine.Handle(), set);
    if (answer.status == MIRA_DONE) break;
    EXPECT_EQ(answer.status, MIRA_CANCELLED);
    if (!answer.document.contains("changes")) continue;
    const auto& changes = answer.document["changes"];
    was_cut = changes[0]["outcome"] == "changed" && changes[1]["outcome"] == "not-tried";
  }
  EXPECT_TRUE(was_cut);
}

TEST(Progress, MayNotCallBack) {
  const OpenMachine machine;
  int calls = 0;
  Progress progress([&](std::uint32_t, std::uint32_t) {
    if (calls++ != 0) return 0;
    EXPECT_EQ(Open(kLaptop).status, MIRA_BUSY);
    EXPECT_EQ(Send(machine.Handle(), kShowTags).Error(), "in-callback");
    mira_record record = {};
    record.struct_size = sizeof record;
    std::vector<std::uint8_t> none;
    EXPECT_EQ(Call(machine.Handle(), record, none).status, MIRA_BUSY);
    EXPECT_EQ(Client().close(machine.Handle()), MIRA_BUSY);
    EXPECT_STREQ(Client().status_name(MIRA_BUSY), "busy");
    return 0;
  });
  EXPECT_EQ(progress.Send(machine.Handle(), kListAttributes).status, MIRA_DONE);
  EXPECT_GT(calls, 1);
  // But it may cancel by the function, too.
  Progress cancels([&](std::uint32_t, std::uint32_t) {
    EXPECT_EQ(Client().cancel(machine.Handle()), MIRA_DONE);
    return 0;
  });
  EXPECT_EQ(cancels.Send(machine.Handle(), kListAttributes).status, MIRA_CANCELLED);
}

TEST(Cancel, EndsWhatIsUnderWayAndWhatWaits) {
  const OpenMachine machine;
  const mira_handle other = Open(kLaptop).handle;
  Event began;
  Event go_on;
  Answer first;
  std::thread runs([&] {
    Progress progress([&](std::uint32_t, std::uint32_t) {
      began.Set();
      go_on.Wait();
      return 0;
    });
    first = progress.Send(machine.Handle(), kListAttributes);
  });
  began.Wait();
  Answer waiting;
  Answer of_other;
  std::thread waits([&] { waiting = Send(machine.Handle(), kShowTags); });
  std::thread others([&] { of_other = Send(other, kShowTags); });
  // The one that waits is cancelled once it is there; until then the first one stands still.
  std::thread cancels([&] {
    while (waiting.status == -1) {
      Client().cancel(machine.Handle());
      std::this_thread::yield();
    }
  });
  waits.join();
  cancels.join();
  EXPECT_EQ(waiting.status, MIRA_CANCELLED);
  go_on.Set();
  runs.join();
  others.join();
  EXPECT_EQ(first.status, MIRA_CANCELLED);
  EXPECT_EQ(of_other.status, MIRA_DONE) << "a handle's requests are its own";
  EXPECT_EQ(Send(machine.Handle(), kShowTags).status, MIRA_DONE) << "later ones are not meant";
  EXPECT_EQ(Client().close(other), MIRA_DONE);
}

TEST(Close, CancelsAndWaits) {
  const mira_handle handle = Open(kLaptop).handle;
  Event began;
  Answer first;
  std::atomic<bool> has_ended = false;
  std::thread runs([&] {
    Progress progress([&](std::uint32_t, std::uint32_t) {
      began.Set();
      return 0;
    });
    do {
      first = progress.Send(handle, kListAttributes);
    } while (first.status == MIRA_DONE);
    has_ended = true;
  });
  began.Wait();
  EXPECT_EQ(Client().close(handle), MIRA_DONE);
  runs.join();
  EXPECT_TRUE(first.status == MIRA_CANCELLED || first.status == MIRA_USAGE) << first.text;
  // It was the last one: another machine may be opened.
  const OpenMachine desktop("desktop");
  EXPECT_EQ(Send(desktop.Handle(), kShowTags).status, MIRA_DONE);
}

// What a thread of a host did about COM before it calls.
struct Apartment {
  const char* name;
  std::int64_t flags;  // of CoInitializeEx; below 0: it was not called
};

class FromThread : public testing::TestWithParam<Apartment> {};

TEST_P(FromThread, Works) {
  std::thread([] {
#if defined(_WIN32)
    const bool has_com = GetParam().flags >= 0;
    if (has_com) CoInitializeEx(nullptr, static_cast<DWORD>(GetParam().flags));
#endif
    {
      const OpenMachine machine;
      EXPECT_EQ(Send(machine.Handle(), kShowTags).status, MIRA_DONE);
      // The same handle serves the other threads.
      std::vector<std::thread> threads;
      for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&machine, i] {
          const char* const requests[] = {kShowTags,
                                          R"({"command": "attr.get", "names": ["FanFloor"]})"};
          for (int n = 0; n < 5; ++n) {
            EXPECT_EQ(Send(machine.Handle(), requests[(i + n) % 2]).status, MIRA_DONE);
          }
        });
      }
      for (std::thread& thread : threads) thread.join();
    }
#if defined(_WIN32)
    // What the thread had, it still has.
    if (has_com) {
      EXPECT_EQ(CoInitializeEx(nullptr, static_cast<DWORD>(GetParam().flags)), S_FALSE);
      CoUninitialize();
      CoUninitialize();
    } else {
      EXPECT_EQ(CoInitializeEx(nullptr, 2), S_OK);
      CoUninitialize();
    }
#endif
  }).join();
}

#if defined(_WIN32)
constexpr Apartment kApartments[] = {{"None", -1}, {"Multithreaded", 0}, {"SingleThreaded", 2}};
#else
constexpr Apartment kApartments[] = {{"None", -1}};
#endif
INSTANTIATE_TEST_SUITE_P(OfAnyApartment, FromThread, testing::ValuesIn(kApartments),
                         [](const auto& tested) { return tested.param.name; });

// Machines are opened and closed by several threads at once: each gets one, or is told that another
// is open.
TEST(Handles, AreOpenedAndClosedByManyThreads) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      for (int n = 0; n < 10; ++n) {
        const OpenAnswer opened = Open((i + n) % 2 != 0 ? kLaptop : R"({"simulated": "desktop"})");
        if (opened.handle == 0) {
          EXPECT_EQ(opened.status, MIRA_BUSY);
          continue;
        }
        EXPECT_EQ(Send(opened.handle, kShowTags).status, MIRA_DONE);
        EXPECT_EQ(Client().close(opened.handle), MIRA_DONE);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace mira::test
