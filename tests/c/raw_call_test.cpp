// Records as they stand.

#include <gtest/gtest.h>

#include <cstddef>

#include "tests/support/client_library.h"

namespace mira::test {
namespace {

constexpr std::uint32_t kArea = 44;  // where the data begin in the record
constexpr std::uint32_t kLogo = 0x4F474F4C;

mira_record Record(std::uint16_t cls, std::uint16_t select) {
  mira_record record = {};
  record.struct_size = sizeof record;
  record.cls = cls;
  record.select = select;
  return record;
}

// A block of class 2: read where `write` is empty, with 28 bytes of room.
mira_record Block(std::vector<std::uint8_t>& data, const std::string& write) {
  mira_record record = Record(2, 1);
  record.arg[0] = kArea;
  record.arg_flags = 1;
  record.arg[1] = kLogo;
  record.arg[2] = static_cast<std::uint32_t>(write.size());
  record.key_arg = write.empty() ? 0 : 4;
  data.assign(write.begin(), write.end());
  if (write.empty()) {
    data.assign(32, 0);
    data[0] = 28;
  }
  return record;
}

std::string Text(const std::vector<std::uint8_t>& data) {
  return std::string(data.begin() + 4, data.begin() + 4 + data[0]);
}

TEST(RawRecord, LiesInMemoryAsEveryHostDeclaresIt) {
  EXPECT_EQ(sizeof(mira_record), 48u);
  EXPECT_EQ(offsetof(mira_record, select), 6u);
  EXPECT_EQ(offsetof(mira_record, arg), 8u);
  EXPECT_EQ(offsetof(mira_record, arg_flags), 24u);
  EXPECT_EQ(offsetof(mira_record, completion), 32u);
  EXPECT_EQ(offsetof(mira_record, result), 36u);
}

TEST(RawRecord, BringsTheFirmwaresWords) {
  const OpenMachine machine;
  mira_record record = Record(0, 0);
  record.arg[0] = 0x0078;
  std::vector<std::uint8_t> none;
  const Answer answer = Call(machine.Handle(), record, none);
  EXPECT_EQ(answer.status, MIRA_DONE) << answer.text;
  EXPECT_EQ(record.completion, 0);
  EXPECT_EQ(record.result[0], 2u);
  EXPECT_EQ(answer.document.at("results"), nlohmann::json({0, 2, 0, 0}));

  record.arg[0] = 0x1234;
  const Answer refused = Call(machine.Handle(), record, none);
  EXPECT_EQ(refused.status, MIRA_REFUSED) << refused.text;
  EXPECT_EQ(record.completion, -1);
  EXPECT_EQ(refused.document.at("error").at("completion"), -1);
  EXPECT_EQ(refused.document.at("results").at(0), -1);
}

TEST(RawRecord, CarriesItsDataThereAndBack) {
  const OpenMachine machine;
  std::vector<std::uint8_t> data;
  mira_record read = Block(data, "");
  EXPECT_EQ(Call(machine.Handle(), read, data).status, MIRA_DONE);
  EXPECT_EQ(Text(data), "Northfield");
  mira_record write = Block(data, "Southgate");
  EXPECT_EQ(Call(machine.Handle(), write, data).status, MIRA_DONE);
  read = Block(data, "");
  EXPECT_EQ(Call(machine.Handle(), read, data).status, MIRA_DONE);
  EXPECT_EQ(Text(data), "Southgate");

  // Without the flag the word is no offset.
  read = Block(data, "");
  read.arg_flags = 0;
  EXPECT_EQ(Call(machine.Handle(), read, data).status, MIRA_REFUSED);
  EXPECT_EQ(read.completion, -5);
}

TEST(RawRecord, PutsTheKeyIntoItsWord) {
  const OpenMachine machine("locked");
  struct Case {
    Secret key;
    std::int32_t status;
    const char* error;
  };
  const Case cases[] = {
      {{}, MIRA_PASSWORD, "password-needed"},
      {{"password", "wrong77"}, MIRA_PASSWORD, "password-wrong"},
      {{"password", "setup1"}, MIRA_DONE, ""},
      {{"class10", "system1"}, MIRA_DONE, ""},
      {{"class10", "setup1"}, MIRA_PASSWORD, "password-wrong"},
      {{"setup", "setup1"}, MIRA_USAGE, "unknown-secret"},
  };
  for (const Case& c : cases) {
    std::vector<std::uint8_t> data;
    mira_record write = Block(data, "Southgate");
    const Answer answer = Call(machine.Handle(), write, data, c.key);
    EXPECT_EQ(answer.status, c.status) << answer.text;
    EXPECT_EQ(answer.Error(), c.error);
    EXPECT_EQ(write.arg[3], 0u) << "the key does not come back";
  }
  // A write of the machine's owner alone: without a place for the key it is refused by the
  // firmware.
  std::vector<std::uint8_t> data;
  mira_record write = Block(data, "Westbank");
  write.key_arg = 0;
  EXPECT_EQ(Call(machine.Handle(), write, data).status, MIRA_PASSWORD);
  EXPECT_EQ(write.completion, -7);
}

TEST(RawRecord, IsCheckedBeforeItIsSent) {
  const OpenMachine machine;
  std::vector<std::uint8_t> data;
  const auto status = [&](auto change) {
    mira_record record = Record(0, 0);
    record.arg[0] = 0x0078;
    change(record);
    return Call(machine.Handle(), record, data).status;
  };
  EXPECT_EQ(status([](mira_record&) {}), MIRA_DONE);
  EXPECT_EQ(status([](mira_record& r) { r.struct_size = 0; }), MIRA_USAGE);
  EXPECT_EQ(status([](mira_record& r) { r.struct_size = 47; }), MIRA_USAGE);
  EXPECT_EQ(status([](mira_record& r) { r.struct_size = 49; }), MIRA_NOT_SUPPORTED);
  EXPECT_EQ(status([](mira_record& r) { r.key_arg = 5; }), MIRA_USAGE);
  EXPECT_EQ(status([](mira_record& r) { r.cls = 31; }), MIRA_NOT_SUPPORTED);
  data.resize(4096 - 44);
  EXPECT_EQ(status([](mira_record&) {}), MIRA_DONE) << "as much as the firmware's buffer takes";
  data.resize(4096 - 43);
  EXPECT_EQ(status([](mira_record&) {}), MIRA_USAGE);

  mira_record record = Record(0, 0);
  EXPECT_EQ(Client().call(machine.Handle(), nullptr, nullptr, 0, nullptr, nullptr, nullptr),
            MIRA_USAGE);
  EXPECT_EQ(Client().call(machine.Handle(), &record, nullptr, 4, nullptr, nullptr, nullptr),
            MIRA_USAGE);
}

TEST(RawRecord, IsNotSentWhereTheMachineHasNoCallingInterface) {
  for (const char* const profile : {"no-calling-interface", "standard-user"}) {
    const OpenMachine machine(profile);
    mira_record record = Record(0, 0);
    std::vector<std::uint8_t> none;
    const Answer answer = Call(machine.Handle(), record, none);
    EXPECT_TRUE(answer.status == MIRA_NOT_SUPPORTED || answer.status == MIRA_ADMINISTRATOR_NEEDED)
        << answer.text;
  }
}

}  // namespace
}  // namespace mira::test
