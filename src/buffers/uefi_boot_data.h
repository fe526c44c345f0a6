#ifndef MIRA_BUFFERS_UEFI_BOOT_DATA_H_
#define MIRA_BUFFERS_UEFI_BOOT_DATA_H_

// The firmware's boot lists, and the load options and boot order of one list. devicepath/records.h
// has the records of the paths' nodes, devicepath/text.h writes paths as text.
//
//   CUEFILOList options;
//   options.ListEnum = list.Items[0].Enum;
//   options.IsUEFI = true;
//   mira.ExecuteDACI(3, 11, options, "", PwdInfo::PWD_NONE);
//   for (const auto& option : options.Options) ...

#include <cstdint>
#include <string>
#include <vector>

#include "buffers/bios_data.h"
#include "devicepath/records.h"
#include "platform/api.h"

// Reads the boot lists: class 3, select 9.
struct MIRA_API CUEFIBootList : CSimpleTokenData {
  ~CUEFIBootList() override;

  struct Item {
    std::uint8_t Enum = 0;
    std::u16string Name;
  };
  std::uint32_t Count = 0;
  std::vector<Item> Items;
  // After a read: whether the answer held all that it announced. It may be cut before its first
  // list, so that no items alone do not mean that the firmware has none.
  bool IsComplete = false;
};

// Reads the load options and boot order of one list (class 3, select 11); writes its boot order
// (select 12). A write sends the first Count numbers of BootOrder.
struct MIRA_API CUEFILOList : CSimpleTokenData, mira::devicepath::NodeRecords {
  CUEFILOList() = default;
  CUEFILOList(const CUEFILOList&) = delete;
  CUEFILOList& operator=(const CUEFILOList&) = delete;
  ~CUEFILOList() override;

  struct LoadOption {
    std::uint16_t Index = 0;      // the option's number
    std::uint32_t EntrySize = 0;  // bytes of the load option as transferred
    std::uint32_t Attributes = 0;
    std::uint16_t FilePathListLength = 0;
    std::u16string Description;
    // The first instance of the first path; of a legacy list, one LegacyFilePathList.
    DevicePath FilePath;
    // The whole EFI_LOAD_OPTION as transferred. mira::devicepath::DecodeLoadOption() takes out of
    // it what the fields above leave out: further instances and paths, and the optional data.
    Bytes Option;
  };

  std::uint32_t ListEnum = 0;  // which list, as CUEFIBootList names it
  std::uint32_t Count = 0;
  bool IsUEFI = false;  // set by the caller: the list's entries hold device paths, not legacy ones
  std::vector<std::uint16_t> BootOrder;
  std::vector<LoadOption> Options;
  // After a read: whether the answer held all the options that it announced.
  bool IsComplete = false;
};

#endif  // MIRA_BUFFERS_UEFI_BOOT_DATA_H_
