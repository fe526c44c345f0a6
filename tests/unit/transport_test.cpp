// The transport below the facade: records, secrets in what is released.

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "buffers/hdd_pwd_buffer.h"
#include "facade/mira_intf.h"
#include "sim/machine.h"
#include "transport/smbios_ci.h"

namespace mira {
namespace {

TEST(Record, RemembersItsSizeWhateverTheFirmwareWrites) {
  transport::RecordPtr record = transport::MakeRecord(5, 6, 60);
  EXPECT_EQ(transport::RecordBytes(record).size(), 60u);
  record->cbLength = 0xFFFFFFFF;
  EXPECT_EQ(transport::RecordBytes(record).size(), 60u);
  EXPECT_EQ(transport::MakeRecord(1, 2, 0)->cbLength, 44u);
  EXPECT_TRUE(transport::RecordBytes(transport::RecordPtr()).empty());
}

TEST(Record, MarksOffsets) {
  transport::RecordPtr record = transport::MakeRecord(0, 0, 44);
  transport::SetArgOffset(*record, 2, 44);
  transport::SetArgOffset(*record, 4, 50);
  transport::SetArgOffset(*record, 5, 99);
  transport::SetArg(*record, 0, 99);
  EXPECT_EQ(record->cbArg1, 0u);
  EXPECT_EQ(record->cbArg2, 44u);
  EXPECT_EQ(record->cbArg4, 50u);
  EXPECT_EQ(record->cbArgKinds, 0x01000100u);
}

TEST(Secrets, AreWipedBeforeTheirMemoryIsReleased) {
  const std::string secret = "Vault-Passphrase";
  sim::Profile profile;
  profile.class9.text = secret;
  profile.drives[0].password = secret;
  sim::Machine machine(profile);
  int released = 0;
  int leaked = 0;
  machine.OnRelease([&](bytes::ByteSpan block) {
    ++released;
    const bytes::ByteSpan wanted = bytes::AsBytes(secret);
    if (std::search(block.begin(), block.end(), wanted.begin(), wanted.end()) != block.end()) {
      ++leaked;
    }
  });
  const sim::Session session(machine);
  std::ostringstream diagnostics;
  CMiraIntf mira(diagnostics);
  ASSERT_EQ(mira.Init(false, false, false), STATUS_SUCCESS);
  EXPECT_NE(mira.ValidatePwd(secret, PwdInfo::PWD_CLASS9), 0xFFFFFFFFu);
  CHDDPwd drive;
  drive.HDDHandle = 1;
  drive.Password = secret;
  drive.AdminPassword = secret;
  EXPECT_EQ(mira.ExecuteDACI(10, 13, drive, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  EXPECT_GT(released, 0);
  EXPECT_EQ(leaked, 0);
  EXPECT_EQ(diagnostics.str(), "");
}

}  // namespace
}  // namespace mira
