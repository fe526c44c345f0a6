#include "buffers/buffer_factory.h"

#include <iostream>
#include <new>

#include "buffers/asset_svc_tag_buffer.h"
#include "buffers/aux_mac_buffer.h"
#include "buffers/battery_info_get_buffer.h"
#include "buffers/battery_info_set_buffer.h"
#include "buffers/c17_buffer.h"
#include "buffers/eppid_buffer.h"
#include "buffers/generic_buffer.h"
#include "buffers/hdd_pwd_buffer.h"
#include "buffers/image_server_data_buffer.h"
#include "buffers/legacy_bbs_buffer.h"
#include "buffers/log_entry_buffer.h"
#include "buffers/ownership_tag_buffer.h"
#include "buffers/pba_buffer.h"
#include "buffers/skyport_buffer.h"
#include "buffers/tag_ex_buffer.h"
#include "buffers/thin_client_info_buffer.h"
#include "buffers/uefi_boot_buffer.h"
#include "pldm/aci_info2_buffer.h"

namespace {

using Maker = CBuffer* (*)(std::uint16_t cls, std::uint16_t select, std::uint32_t size);

template <typename T>
CBuffer* Make(std::uint16_t cls, std::uint16_t select, std::uint32_t size) {
  return new (std::nothrow) T(cls, select, size);
}

CBuffer* MakeNone(std::uint16_t, std::uint16_t, std::uint32_t) { return nullptr; }

CBuffer* MakeNoPbaDatabase(std::uint16_t, std::uint16_t, std::uint32_t) {
  std::cout << "PBA DB Handler is not implemented... Contact the developer!!" << std::endl;
  return nullptr;
}

constexpr std::uint16_t kAny = 0xFFFF;
constexpr Maker kPlain = Make<CBuffer>;
constexpr CommandTraits kProbed = {CommandTraits::kProbe};
constexpr CommandTraits kAfterLegacyInfo = {CommandTraits::kLegacyBootInfo};
constexpr CommandTraits kUnprompted = {CommandTraits::kNone, false};

// Everything there is to say about a command stands in its row. The first row that holds the pair
// counts; a pair in no row has no buffer.
struct Row {
  std::uint16_t first_class;
  std::uint16_t last_class;
  std::uint16_t first_select;
  std::uint16_t last_select;
  Maker make;
  CommandTraits traits = {};
};

constexpr Row kRows[] = {
    {0, 1, 0, kAny, kPlain},
    {2, 2, 0, 0, kPlain},
    {2, 2, 1, 1, Make<CGenericBuffer>},
    {3, 3, 0, 2, kPlain},
    {3, 3, 3, 3, Make<CLegacyBBSBuffer>, kAfterLegacyInfo},
    {3, 3, 4, 4, MakeNone, kAfterLegacyInfo},
    {3, 3, 5, 5, Make<CLegacyBBSBuffer>},
    {3, 3, 7, 8, kPlain},
    {3, 3, 9, 9, Make<CUEFIBootBuffer>, kProbed},
    {3, 3, 10, 10, kPlain},
    {3, 3, 11, 11, Make<CUEFIBootBuffer>, kProbed},
    {3, 3, 12, 12, Make<CUEFIBootBuffer>},
    {3, 3, 13, 13, kPlain},
    {4, 4, 0, kAny, kPlain},
    {5, 5, 3, 3, Make<CACIInfo2Buffer>},
    {5, 5, 4, 6, Make<CACIInfo2Buffer>, kUnprompted},
    {6, 6, 0, 0, kPlain},
    {6, 6, 4, 4, kPlain},
    {6, 6, 5, 5, Make<CGenericBuffer>},
    {6, 6, 6, kAny, kPlain},
    {7, 7, 4, 4, kPlain},
    {7, 7, 5, 9, Make<CSkyportBuffer>},
    {8, 8, 0, 17, kPlain},
    {8, 8, 18, 18, Make<CBatteryInfoGetBuffer>},
    {8, 8, 19, 19, Make<CBatteryInfoSetBuffer>},
    {9, 9, 4, 5, Make<CPBABuffer>},
    {9, 9, 0, kAny, kPlain},
    {10, 10, 4, 5, Make<CPBABuffer>},
    {10, 10, 7, 9, Make<CPBABuffer>},
    {10, 10, 11, 11, Make<CHDDPwdBuffer>},
    {10, 10, 13, 14, Make<CHDDPwdBuffer>},
    {10, 10, 15, 18, Make<CPBABuffer>},
    {10, 10, 21, 24, MakeNoPbaDatabase},
    {10, 10, 28, 28, Make<CHDDPwdBuffer>, kUnprompted},
    {10, 10, 30, 31, Make<CHDDPwdBuffer>, kUnprompted},
    {10, 10, 0, kAny, kPlain},
    {11, 11, 0, 3, Make<CAssetSvcTagBuffer>},
    {11, 11, 4, 5, Make<CImageServerDataBuffer>},
    {11, 11, 6, 7, Make<CAuxMACBuffer>},
    {11, 11, 8, 8, Make<CTagEx>, kProbed},
    {11, 11, 9, 9, Make<CTagEx>},
    {12, 12, 4, 5, Make<CPBABuffer>},
    {12, 12, 0, kAny, kPlain},
    {16, 16, 0, kAny, kPlain},
    {17, 17, 4, 4, MakeNone},
    {17, 17, 5, 5, Make<C17Buffer>, kProbed},
    {17, 17, 14, 14, Make<C17Buffer>},
    {17, 17, 15, 15, MakeNone},
    {17, 17, 16, 16, Make<C17Buffer>, kProbed},
    {17, 17, 18, 18, Make<C17Buffer>, kProbed},
    {17, 17, 22, 22, Make<C17Buffer>, kProbed},
    {17, 17, 24, 24, Make<CLogEntryBuffer>, kProbed},
    {17, 17, 0, kAny, kPlain},
    {18, 19, 0, kAny, kPlain},
    {20, 20, 0, kAny, Make<COwnershipTagBuffer>},
    {21, 21, 1, 2, Make<CEPPIDBuffer>},
    {22, 22, 0, kAny, kPlain},
    {23, 23, 0, kAny, Make<COwnershipTagBuffer>},
    {26, 26, 1, 1, Make<CThinClientInfoBuffer>},
    {28, 28, 2, 2, kPlain},
    {30, 30, 0, kAny, kPlain},
};

const Row* FindRow(std::uint16_t cls, std::uint16_t select) {
  for (const Row& row : kRows) {
    if (cls >= row.first_class && cls <= row.last_class && select >= row.first_select &&
        select <= row.last_select) {
      return &row;
    }
  }
  return nullptr;
}

}  // namespace

CBuffer* CreateBuffer(std::uint16_t cls, std::uint16_t select, std::uint32_t bufSize) {
  const Row* const row = FindRow(cls, select);
  return row != nullptr ? row->make(cls, select, bufSize) : nullptr;
}

CommandTraits TraitsOf(std::uint16_t cls, std::uint16_t select) noexcept {
  const Row* const row = FindRow(cls, select);
  return row != nullptr ? row->traits : CommandTraits();
}
