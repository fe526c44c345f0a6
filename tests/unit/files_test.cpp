// Files that are written as a whole or not at all.

#include "support/files.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace mira::support {
namespace {

namespace fs = std::filesystem;

class SafeFile : public testing::Test {
 protected:
  SafeFile() : folder_(fs::temp_directory_path() / ("mira-files-" + Name())) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~SafeFile() override { fs::remove_all(folder_); }

  static std::string Name() {
    return std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) +
           std::to_string(testing::UnitTest::GetInstance()->random_seed());
  }
  // On Windows a file that is just being replaced cannot be opened for a moment: that is waited
  // for.
  static std::string Read(const fs::path& file) {
    for (int tries = 0; tries < 10'000; ++tries) {
      std::ifstream in(file, std::ios::binary);
      if (in) return {std::istreambuf_iterator<char>(in), {}};
      std::this_thread::yield();
    }
    ADD_FAILURE() << "cannot open " << file;
    return {};
  }
  // The names in the folder: nothing may be left behind.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_)) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  const fs::path folder_;
};

TEST_F(SafeFile, IsMadeAndReplacedWhole) {
  const fs::path file = folder_ / "state.json";
  const std::string binary("\r\n\0\x1A end", 8);
  EXPECT_FALSE(WriteFileSafely(file, binary));
  EXPECT_EQ(Read(file), binary) << "no byte is changed on the way";
  EXPECT_FALSE(WriteFileSafely(file, "short"));
  EXPECT_EQ(Read(file), "short");
  EXPECT_FALSE(WriteFileSafely(file, ""));
  EXPECT_EQ(Read(file), "");
  EXPECT_EQ(Names(), std::vector<std::string>{"state.json"});
}

TEST_F(SafeFile, FailureLeavesNothingBehind) {
  EXPECT_TRUE(WriteFileSafely(folder_ / "missing" / "file", "text"));
  EXPECT_EQ(Names(), std::vector<std::string>());
  fs::create_directory(folder_ / "taken");
  const std::error_code error = WriteFileSafely(folder_ / "taken", "text");
  EXPECT_EQ(error, std::errc::is_a_directory);
  EXPECT_FALSE(error.message().empty());
  EXPECT_EQ(Names(), std::vector<std::string>{"taken"});
}

TEST_F(SafeFile, TwoWritersDoNotMix) {
  const fs::path file = folder_ / "shared";
  const std::string texts[] = {std::string(200'000, 'a'), std::string(300'000, 'b')};
  ASSERT_FALSE(WriteFileSafely(file, texts[0]));
  std::atomic<int> failures{0};
  std::vector<std::thread> writers;
  for (const std::string& text : texts) {
    writers.emplace_back([&] {
      for (int i = 0; i < 20; ++i) {
        if (WriteFileSafely(file, text)) ++failures;
      }
    });
  }
  for (int i = 0; i < 20; ++i) {
    const std::string seen = Read(file);
    EXPECT_TRUE(seen == texts[0] || seen == texts[1]) << seen.size();
  }
  for (std::thread& writer : writers) writer.join();
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(Names(), std::vector<std::string>{"shared"});
}

#if !defined(_WIN32)

TEST_F(SafeFile, HasThePermissionsThatWereAskedFor) {
  const fs::path file = folder_ / "secret";
  ASSERT_FALSE(WriteFileSafely(file, "text", FileAccess::kPrivate));
  constexpr fs::perms kOwner = fs::perms::owner_read | fs::perms::owner_write;
  EXPECT_EQ(fs::status(file).permissions(), kOwner);
  // What is there keeps its own, unless it is to be private.
  constexpr fs::perms kShared = kOwner | fs::perms::group_read;
  fs::permissions(file, kShared);
  ASSERT_FALSE(WriteFileSafely(file, "other"));
  EXPECT_EQ(fs::status(file).permissions(), kShared);
  ASSERT_FALSE(WriteFileSafely(file, "again", FileAccess::kPrivate));
  EXPECT_EQ(fs::status(file).permissions(), kOwner);
}

TEST_F(SafeFile, LinksStayLinks) {
  const fs::path file = folder_ / "file";
  const fs::path link = folder_ / "link";
  fs::create_symlink("file", link);
  ASSERT_FALSE(WriteFileSafely(link, "first")) << "the file that it names is made";
  ASSERT_FALSE(WriteFileSafely(link, "second"));
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(Read(file), "second");
  const fs::path loop = folder_ / "loop";
  fs::create_symlink("loop", loop);
  EXPECT_EQ(WriteFileSafely(loop, "text"), std::errc::too_many_symbolic_link_levels);
}

TEST_F(SafeFile, DevicesAreWrittenInto) {
  EXPECT_FALSE(WriteFileSafely("/dev/null", "text"));
  EXPECT_FALSE(fs::is_regular_file("/dev/null"));
  if (fs::exists("/dev/full")) {
    EXPECT_EQ(WriteFileSafely("/dev/full", "text"), std::errc::no_space_on_device);
  }
}

#endif

}  // namespace
}  // namespace mira::support
