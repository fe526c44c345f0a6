#ifndef MIRA_BUFFERS_LEGACY_BBS_DATA_H_
#define MIRA_BUFFERS_LEGACY_BBS_DATA_H_

// The legacy (BIOS boot specification) boot priorities, class 3: select 3 reads, 5 writes.
//
//   CLegacyBBSIPLPriority data;
//   data.MaxDevices = data.Count = 8;
//   data.EntryLength = 16;
//   mira.ExecuteDACI(3, 3, data, "", PwdInfo::PWD_NONE);

#include <cstdint>
#include <vector>

#include "buffers/bios_data.h"
#include "platform/api.h"

struct MIRA_API CLegacyBBSIPLPriority : CSimpleTokenData {
  ~CLegacyBBSIPLPriority() override;

  // One 16-byte entry of the firmware's device table, in its order.
  struct DeviceEntry {
    std::uint16_t First = 0;
    std::uint16_t Second = 0;
    std::uint32_t Third = 0;
    std::uint32_t Fourth = 0;
    std::uint32_t Fifth = 0;
  };

  std::uint32_t Count = 0;        // devices to write, or to decode after a read
  std::uint32_t MaxDevices = 0;   // of the system; sizes what is read
  std::uint32_t EntryLength = 0;  // bytes of one entry of the device table; sizes what is read
  // Each array holds Count elements: filled by a read, sent by a write but for the table.
  std::vector<std::uint8_t> IPLPriority;
  std::vector<DeviceEntry> DeviceTable;
  std::vector<std::uint8_t> BCVPriority;
};

#endif  // MIRA_BUFFERS_LEGACY_BBS_DATA_H_
