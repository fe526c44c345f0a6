// Boot lists, boot order, legacy priorities and data blocks: from the host to the simulated
// firmware and back.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "buffers/generic_data.h"
#include "buffers/legacy_bbs_data.h"
#include "buffers/uefi_boot_data.h"
#include "bytes/utf16.h"
#include "devicepath/text.h"
#include "sim/firmware/data_block.h"
#include "tests/support/host.h"

namespace mira {
namespace {

using test::Host;

using Order = std::vector<std::uint16_t>;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t kLegacyList = 0;
constexpr std::uint8_t kUefiList = 1;

sim::Profile Laptop(const char* name = "laptop") { return *sim::FindProfile(name); }

// "class/select completion length" of each firmware call.
std::vector<std::string> Calls(Host& host) {
  std::vector<std::string> calls;
  for (const sim::JournalEntry& entry : host.machine().Journal()) {
    calls.push_back(std::to_string(entry.cls) + "/" + std::to_string(entry.select) + " " +
                    std::to_string(entry.completion) + " " + std::to_string(entry.record_length));
  }
  host.machine().GetFirmware().ClearJournal();
  return calls;
}

Status ReadList(Host& host, std::uint32_t list, CUEFILOList& data) {
  data.ListEnum = list;
  data.IsUEFI = list == kUefiList;
  return host->ExecuteDACI(3, 11, data, "", PwdInfo::PWD_NONE);
}

Order OrderOf(Host& host, std::uint32_t list) {
  CUEFILOList data;
  EXPECT_EQ(ReadList(host, list, data), STATUS_SUCCESS);
  return data.BootOrder;
}

Status WriteOrder(Host& host, std::uint32_t list, const Order& order,
                  const std::string& password = "", std::int32_t* completion = nullptr) {
  CUEFILOList data;
  data.ListEnum = list;
  data.BootOrder = order;
  data.Count = static_cast<std::uint32_t>(order.size());
  data.KeyArgIndex = 3;
  const Status status = host->ExecuteDACI(3, 12, data, password, PwdInfo::PWD_CLASS9);
  if (completion != nullptr) *completion = data.Res1;
  return status;
}

// What is tried first by the order in force.
std::uint32_t First(Host& host, std::uint32_t list) {
  CSimpleTokenData data;
  data.Arg1 = list;
  EXPECT_EQ(host->ExecuteDACI(3, 10, data, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  return data.Res2;
}

TEST(Boot, ListsAreReadInTwoCalls) {
  Host host(Laptop());
  CUEFIBootList data;
  EXPECT_EQ(host->ExecuteDACI(3, 9, data, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  ASSERT_EQ(data.Count, 2u);
  ASSERT_EQ(data.Items.size(), 2u);
  EXPECT_EQ(data.Items[0].Enum, 0);
  EXPECT_EQ(data.Items[0].Name, u"Legacy Boot");
  EXPECT_EQ(data.Items[1].Enum, 1);
  EXPECT_EQ(data.Items[1].Name, u"UEFI Boot");
  // A count, two numbers, names of 12 and 10 characters with their NULs.
  EXPECT_EQ(Calls(host), (std::vector<std::string>{"3/9 -6 48", "3/9 0 95"}));
}

struct PathCase {
  std::uint16_t number;
  const char* description;
  std::string path;
};

const std::vector<PathCase>& LaptopPaths() {
  static const std::string nic = "PciRoot(0x0)/Pci(0x1F,0x6)/MAC(024E46004711,0x1)/";
  static const std::vector<PathCase> cases = {
      {0x0003, "USB ディスク 💾", "PciRoot(0x0)/Pci(0x14,0x0)/USB(0x3,0x0)/USB(0x1,0x0)"},
      {0x0000, "Windows Boot Manager",
       "PciRoot(0x0)/Pci(0x1D,0x0)/Pci(0x0,0x0)/NVMe(0x1,8C-E3-8E-04-00-AA-1B-2C)/"
       "HD(1,GPT,66DE947B-FDB2-4525-B752-30D66BB2B960,0x800,0x100000)/"
       "\\EFI\\Microsoft\\Boot\\bootmgfw.efi"},
      {0x0001, "Datenträger für Sicherung – резерв",
       "PciRoot(0x0)/Pci(0x1F,0x2)/Sata(0x0,0xFFFF,0x0)/"
       "HD(2,GPT,C359E798-596A-42B6-B6F6-ECA290429D99,0x2800,0x35000)/\\EFI\\BOOT\\BOOTX64.EFI"},
      {0x0004, "Optical drive",
       "PciRoot(0x0)/Pci(0x1F,0x2)/Sata(0x1,0xFFFF,0x0)/CDROM(0x1,0x2D,0x1680)"},
      {0x0010, "Network IPv4", nic + "IPv4(0.0.0.0,0x0,DHCP,0.0.0.0,0.0.0.0,0.0.0.0)"},
      {0x0011, "Network IPv6",
       nic + "IPv6(2001:0DB8:0000:0000:0000:0000:0000:0001,UDP,StatelessAutoConfigure,"
             "FE80:0000:0000:0000:004E:46FF:FE00:4711,0x40,"
             "0000:0000:0000:0000:0000:0000:0000:0000)"},
      {0x0012, "HTTP Boot",
       nic + "IPv4(192.0.2.1,TCP,Static,192.0.2.40,192.0.2.254,255.255.255.0)/"
             "Uri(http://boot.example/images/install.efi)"},
      {0x0080, "Diagnostics",
       "Fv(64074AFE-340A-4BE6-94BA-91B5B4D0F71E)/FvFile(A7D8D9A6-6AB0-4AEB-AD9D-163E59A7A380)"},
      {0x0081, "Recovery image",
       "VenHw(1428F772-B64A-441E-B8C3-9EBDD7F893C7,0200)/"
       "VenMsg(BC7838D2-0F82-4D60-8316-C068EE79D25B)/"
       "VenMedia(5023B95C-DB26-429B-A648-BD47664C8012,4E46)"},
  };
  return cases;
}

TEST(Boot, OptionsComeWithTheirPaths) {
  Host host(Laptop());
  CUEFILOList data;
  EXPECT_EQ(ReadList(host, kUefiList, data), STATUS_SUCCESS);
  const auto calls = Calls(host);
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(calls[0], "3/11 -6 48");
  EXPECT_EQ(data.Count, 9u);
  ASSERT_EQ(data.Options.size(), 9u);
  EXPECT_EQ(data.BootOrder,
            (Order{0x0003, 0x0000, 0x0001, 0x0004, 0x0010, 0x0011, 0x0012, 0x0080, 0x0081}));
  for (const PathCase& c : LaptopPaths()) {
    SCOPED_TRACE(c.description);
    const auto option = std::find_if(data.Options.begin(), data.Options.end(),
                                     [&c](const auto& o) { return o.Index == c.number; });
    ASSERT_NE(option, data.Options.end());
    EXPECT_EQ(bytes::Utf8(option->Description), c.description);
    EXPECT_EQ(devicepath::DevicePathToText(option->FilePath), c.path) << "the first instance";
    EXPECT_EQ(devicepath::DevicePathFromText(c.path).has_value(), true);
  }
  EXPECT_EQ(data.Options[0].Index, 0x0000);
  EXPECT_EQ(data.Options[0].Attributes, 1u);
  EXPECT_EQ(data.Options[0].EntrySize, data.Options[0].Option.size());

  CUEFILOList unknown;
  EXPECT_EQ(ReadList(host, 7, unknown), STATUS_FAILURE);
  EXPECT_EQ(unknown.Res1, -1);
}

TEST(Boot, LegacyOptionsAreDevices) {
  Host host(Laptop());
  CUEFILOList data;
  EXPECT_EQ(ReadList(host, kLegacyList, data), STATUS_SUCCESS);
  ASSERT_EQ(data.Options.size(), 4u);
  ASSERT_EQ(data.Options[3].FilePath.size(), 1u);
  const auto* const device =
      dynamic_cast<const CUEFILOList::LegacyFilePathList*>(data.Options[3].FilePath.front().get());
  ASSERT_NE(device, nullptr);
  EXPECT_EQ(device->Type, 5);
  EXPECT_EQ(device->SubType, 1);
  EXPECT_EQ(device->DeviceType, 6);
  EXPECT_EQ(device->StatusFlag, 0x0100);
  EXPECT_EQ(device->Description, "Network adapter, slot 1F.6");
}

TEST(Boot, OrderIsKeptAndFollowedFromTheNextStartOn) {
  Host host(Laptop());
  const Order delivered = {1, 0, 2, 3};
  EXPECT_EQ(OrderOf(host, kLegacyList), delivered);
  Calls(host);
  EXPECT_EQ(WriteOrder(host, kLegacyList, {2, 3, 1, 0}), STATUS_SUCCESS);
  EXPECT_EQ(Calls(host), std::vector<std::string>{"3/12 0 52"}) << "one call, four numbers";
  EXPECT_EQ(OrderOf(host, kLegacyList), (Order{2, 3, 1, 0}));
  EXPECT_EQ(First(host, kLegacyList), 1u);
  host.machine().Reboot();
  EXPECT_EQ(OrderOf(host, kLegacyList), (Order{2, 3, 1, 0}));
  EXPECT_EQ(First(host, kLegacyList), 3u) << "option 2 is not active";
  EXPECT_EQ(OrderOf(host, kUefiList).size(), 9u) << "the other list is untouched";

  CSimpleTokenData restore;
  restore.Arg1 = kLegacyList;
  EXPECT_EQ(host->ExecuteDACI(3, 13, restore, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  EXPECT_EQ(OrderOf(host, kLegacyList), delivered);
}

TEST(Boot, FirmwareRefusesWrongOrders) {
  struct Case {
    const char* what;
    std::uint32_t list;
    Order order;
  };
  const Case cases[] = {
      {"doubled", kLegacyList, {0, 1, 2, 2}}, {"missing", kLegacyList, {0, 1, 2}},
      {"unknown", kLegacyList, {0, 1, 2, 4}}, {"one too many", kLegacyList, {0, 1, 2, 3, 3}},
      {"nothing", kLegacyList, {}},           {"other list", kUefiList, {0, 1, 2, 3}},
      {"unknown list", 200, {0, 1, 2, 3}},
  };
  Host host(Laptop());
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    std::int32_t completion = 0;
    EXPECT_EQ(WriteOrder(host, c.list, c.order, "", &completion), STATUS_FAILURE);
    EXPECT_EQ(completion, -1);
  }
  EXPECT_EQ(OrderOf(host, kLegacyList), (Order{1, 0, 2, 3}));
}

TEST(Boot, OrderWantsAKeyWhereAPasswordIsInstalled) {
  Host host(Laptop("locked"));
  std::int32_t completion = 0;
  EXPECT_EQ(WriteOrder(host, kLegacyList, {3, 2, 1, 0}, "", &completion), STATUS_FAILURE);
  EXPECT_EQ(completion, -7);
  EXPECT_EQ(WriteOrder(host, kLegacyList, {3, 2, 1, 0}, "wrong"), STATUS_SECURITY_KEY_FAILED);
  EXPECT_EQ(OrderOf(host, kLegacyList), (Order{1, 0, 2, 3}));
  EXPECT_EQ(WriteOrder(host, kLegacyList, {3, 2, 1, 0}, "setup1"), STATUS_SUCCESS);
  EXPECT_TRUE(host.machine().Journal().back().masked[2]);
  EXPECT_EQ(OrderOf(host, kLegacyList), (Order{3, 2, 1, 0}));
}

TEST(Boot, ChoicesForTheNextStartHoldOnce) {
  struct Call {
    std::uint16_t select;
    std::uint32_t arg1;
    std::uint32_t arg2;
    Status status;
    std::uint32_t result2;
    std::uint32_t result3;
    bool reboots;
  };
  const Call calls[] = {
      {0, 0, 0, STATUS_SUCCESS, 1, 1, false}, {8, 0, 0, STATUS_FAILURE, 0, 0, false},
      {7, 0, 9, STATUS_FAILURE, 0, 0, false}, {7, 0, 3, STATUS_SUCCESS, 0, 0, false},
      {8, 0, 0, STATUS_SUCCESS, 0, 3, true},  {0, 0, 0, STATUS_SUCCESS, 1, 0, true},
      {0, 0, 0, STATUS_SUCCESS, 1, 1, false}, {1, 2, 0, STATUS_FAILURE, 0, 0, false},
      {1, 0, 0, STATUS_SUCCESS, 0, 0, false}, {0, 0, 0, STATUS_SUCCESS, 0, 1, true},
      {0, 0, 0, STATUS_SUCCESS, 0, 0, false},
  };
  Host host(Laptop());
  int step = 0;
  for (const Call& c : calls) {
    SCOPED_TRACE(++step);
    CSimpleTokenData data;
    data.Arg1 = c.arg1;
    data.Arg2 = c.arg2;
    EXPECT_EQ(host->ExecuteDACI(3, c.select, data, "", PwdInfo::PWD_NONE), c.status);
    EXPECT_EQ(data.Res2, c.result2);
    EXPECT_EQ(data.Res3, c.result3);
    if (c.reboots) host.machine().Reboot();
  }
}

// Whatever a reply holds, decoding it ends, and inside its bytes.
TEST(Boot, DamagedRepliesAreDecodedAsFarAsTheyGo) {
  sim::Profile profile = Laptop();
  profile.buffer_size = 2048;
  Host host(profile);
  for (std::size_t at = 44; at < 420; ++at) {
    for (const std::uint8_t value : Bytes{0x00, 0xFF}) {
      const auto damage = [at, value](Bytes& reply) { reply[at] = value; };
      host.machine().GetFaults().Add({.operation = "firmware 3/11", .nth = 2, .corrupt = damage});
      CUEFILOList data;
      EXPECT_EQ(ReadList(host, kUefiList, data), STATUS_SUCCESS);
      EXPECT_EQ(data.Count, data.Options.size());
      EXPECT_LE(data.Options.size(), 9u);
      host.machine().GetFaults().Clear();
    }
  }
}

TEST(LegacyPriorities, AreReadBehindTheirSizes) {
  Host host(Laptop());
  CLegacyBBSIPLPriority data;
  data.MaxDevices = 8;
  data.EntryLength = 16;
  data.Count = 4;
  EXPECT_EQ(host->ExecuteDACI(3, 3, data, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  EXPECT_EQ(Calls(host), (std::vector<std::string>{"3/2 0 44", "3/3 0 200"}));
  EXPECT_EQ(data.IPLPriority, (Bytes{1, 0, 2, 3}));
  EXPECT_EQ(data.BCVPriority, (Bytes{1, 2, 0, 3}));
  ASSERT_EQ(data.DeviceTable.size(), 4u);
  const auto& network = data.DeviceTable[3];
  EXPECT_EQ(network.First, 6);
  EXPECT_EQ(network.Second, 0x0100);
  EXPECT_EQ(network.Third, 0xC8000003u);
  EXPECT_EQ(network.Fourth, 0xC8000040u);
  EXPECT_EQ(network.Fifth, 0x1F06u);

  CSimpleTokenData sizes;
  EXPECT_EQ(host->ExecuteDACI(3, 2, sizes, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
  EXPECT_EQ((Order{static_cast<std::uint16_t>(sizes.Res2), static_cast<std::uint16_t>(sizes.Res3),
                   static_cast<std::uint16_t>(sizes.Res4)}),
            (Order{8, 16, 4}));

  CLegacyBBSIPLPriority tight;
  tight.MaxDevices = 3;
  tight.EntryLength = 16;
  EXPECT_EQ(host->ExecuteDACI(3, 3, tight, "", PwdInfo::PWD_NONE), STATUS_FAILURE);
  EXPECT_EQ(tight.Res1, -6);
  // Sizes beyond the transfer buffer make no record. What precedes the read was asked all the same.
  Calls(host);
  CLegacyBBSIPLPriority huge;
  huge.MaxDevices = 0x10000001;
  huge.EntryLength = 16;
  EXPECT_EQ(host->ExecuteDACI(3, 3, huge, "", PwdInfo::PWD_NONE), STATUS_NOT_SUPPORTED);
  EXPECT_EQ(Calls(host), std::vector<std::string>{"3/2 0 44"});
}

TEST(LegacyPriorities, AreWrittenAsPermutations) {
  struct Case {
    const char* what;
    const char* machine;
    Bytes ipl;
    Bytes bcv;
    const char* password;
    Status status;
    std::int32_t completion;
  };
  const Case cases[] = {
      {"right", "laptop", {3, 2, 1, 0}, {0, 1, 2, 3}, "", STATUS_SUCCESS, 0},
      {"doubled", "laptop", {3, 3, 1, 0}, {0, 1, 2, 3}, "", STATUS_FAILURE, -1},
      {"unknown", "laptop", {3, 2, 1, 0}, {0, 1, 2, 4}, "", STATUS_FAILURE, -1},
      {"too few", "laptop", {2, 1, 0}, {0, 1, 2}, "", STATUS_FAILURE, -5},
      {"too many", "laptop", {0, 1, 2, 3, 4}, {0, 1, 2, 3, 4}, "", STATUS_FAILURE, -5},
      {"no key", "locked", {3, 2, 1, 0}, {0, 1, 2, 3}, "", STATUS_FAILURE, -7},
      {"key", "locked", {3, 2, 1, 0}, {0, 1, 2, 3}, "setup1", STATUS_SUCCESS, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Host host(Laptop(c.machine));
    CLegacyBBSIPLPriority data;
    data.Count = static_cast<std::uint32_t>(c.ipl.size());
    data.IPLPriority = c.ipl;
    data.BCVPriority = c.bcv;
    data.KeyArgIndex = 3;
    EXPECT_EQ(host->ExecuteDACI(3, 5, data, c.password, PwdInfo::PWD_CLASS9), c.status);
    EXPECT_EQ(data.Res1, c.completion);
    EXPECT_EQ(host.machine().Journal().back().record_length, 44 + 2 * c.ipl.size());

    CLegacyBBSIPLPriority read;
    read.MaxDevices = 8;
    read.EntryLength = 16;
    read.Count = 4;
    host->ExecuteDACI(3, 3, read, "", PwdInfo::PWD_NONE);
    EXPECT_EQ(read.IPLPriority, c.status == STATUS_SUCCESS ? c.ipl : (Bytes{1, 0, 2, 3}));
    EXPECT_EQ(read.BCVPriority, c.status == STATUS_SUCCESS ? c.bcv : (Bytes{1, 2, 0, 3}));
  }
}

// A block and how it was moved.
struct Moved {
  Status status;
  std::int32_t completion;
  Bytes bytes;
};

Moved ReadBlock(Host& host, std::uint16_t cls, std::uint16_t select, const char* name,
                std::uint32_t room) {
  Bytes bytes(room);
  CGenericData data;
  data.Arg2 = sim::BlockName(name);
  data.IsRead = true;
  data.BufferArgIndex = 1;
  data.DataLength = room;
  data.Data = bytes.data();
  const Status status = host->ExecuteDACI(cls, select, data, "", PwdInfo::PWD_NONE);
  if (status == STATUS_SUCCESS) bytes.resize(std::min(data.DataLength, room));
  return {status, data.Res1, bytes};
}

Moved WriteBlock(Host& host, std::uint16_t cls, std::uint16_t select, const char* name, Bytes bytes,
                 std::uint32_t key = 0) {
  CGenericData data;
  data.Arg2 = sim::BlockName(name);
  data.Arg3 = static_cast<std::uint32_t>(bytes.size());
  data.Arg4 = key;
  data.BufferArgIndex = 1;
  data.DataLength = data.Arg3;
  data.Data = bytes.data();
  const Status status = host->ExecuteDACI(cls, select, data, "", PwdInfo::PWD_NONE);
  return {status, data.Res1, bytes};
}

TEST(DataBlocks, AreReadAndWritten) {
  struct Case {
    std::uint16_t cls;
    std::uint16_t select;
    const char* name;
    std::size_t size;
    std::size_t capacity;
  };
  for (const Case& c : {Case{2, 1, "LOGO", 10, 64}, Case{6, 5, "NOTE", 15, 32}}) {
    SCOPED_TRACE(c.name);
    Host host(Laptop());
    EXPECT_EQ(ReadBlock(host, c.cls, c.select, c.name, 100).bytes.size(), c.size);
    const Bytes block = {1, 0, 255, 4, 0};
    EXPECT_EQ(WriteBlock(host, c.cls, c.select, c.name, block).status, STATUS_SUCCESS);
    EXPECT_EQ(host.machine().Journal().back().record_length, 53u);
    EXPECT_EQ(ReadBlock(host, c.cls, c.select, c.name, 100).bytes, block);
    EXPECT_EQ(ReadBlock(host, c.cls, c.select, c.name, 5).bytes, block);
    host.machine().Reboot();
    EXPECT_EQ(ReadBlock(host, c.cls, c.select, c.name, 100).bytes, block);
    CSimpleTokenData size;
    size.Arg2 = sim::BlockName(c.name);
    EXPECT_EQ(host->ExecuteDACI(c.cls, c.select - 1, size, "", PwdInfo::PWD_NONE), STATUS_SUCCESS);
    EXPECT_EQ(size.Res2, 5u);
    EXPECT_EQ(size.Res3, c.capacity);

    EXPECT_EQ(ReadBlock(host, c.cls, c.select, c.name, 4).completion, -6);
    EXPECT_EQ(ReadBlock(host, c.cls, c.select, "NONE", 100).completion, -1);
    EXPECT_EQ(WriteBlock(host, c.cls, c.select, "NONE", block).completion, -1);
    EXPECT_EQ(WriteBlock(host, c.cls, c.select, c.name, Bytes(c.capacity + 1)).completion, -1);
    EXPECT_EQ(WriteBlock(host, c.cls, c.select, c.name, Bytes(c.capacity)).completion, 0);
  }
}

TEST(DataBlocks, WantAKeyInTheirOwnArgument) {
  Host host(Laptop("locked"));
  EXPECT_EQ(WriteBlock(host, 2, 1, "LOGO", {7}).completion, -7);
  const unsigned key = host->ValidatePwd("setup1", PwdInfo::PWD_CLASS9);
  EXPECT_EQ(WriteBlock(host, 2, 1, "LOGO", {7}, key).status, STATUS_SUCCESS);
  EXPECT_TRUE(host.machine().Journal().back().masked[3]);
  EXPECT_EQ(ReadBlock(host, 2, 1, "LOGO", 8).bytes, Bytes{7});
}

}  // namespace
}  // namespace mira
