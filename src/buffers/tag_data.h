#ifndef MIRA_BUFFERS_TAG_DATA_H_
#define MIRA_BUFFERS_TAG_DATA_H_

#include <string>

#include "buffers/bios_data.h"
#include "platform/api.h"

// A text kept by the firmware, to read or to write: asset and service tag (class 11, selects 0 to
// 3), extended tag (class 11, selects 8 and 9), ownership tag (classes 20 and 23).
//
//   CTagData data;
//   mira.ExecuteDACI(11, 0, data, "", PwdInfo::PWD_NONE);
//   std::cout << data.Tag;
struct MIRA_API CTagData : CSimpleTokenData {
  ~CTagData() override;

  std::string Tag;
};

// The thin client's text (class 26): Arg1 is 0 to read it, anything else to write it.
using CThinClientInfo = CTagData;

#endif  // MIRA_BUFFERS_TAG_DATA_H_
