#ifndef MIRA_CONSOLE_FIRMWARE_LIST_H_
#define MIRA_CONSOLE_FIRMWARE_LIST_H_

// What the commands share that show one of class 17's lists.

#include <cstdint>

#include "buffers/received_data.h"
#include "console/command.h"
#include "console/passwords.h"

namespace mira::console {

// A list as a program and as a person see it.
struct ListText {
  Json list = Json::array();
  Rows table;
};

// The list, as the request is filled by it. Throws CommandError.
template <typename Request>
Request ReadList(CMiraIntf& mira, std::uint16_t select, const char* target) {
  constexpr std::uint16_t kClass = 17;
  Request request;
  const Status status = mira.ExecuteDACI(kClass, select, request, "", PwdInfo::PWD_NONE);
  ThrowUnlessDone(status, request.Res1, {}, target);
  return request;
}

inline ExitStatus ShowList(Context& context, const char* key, const ListText& text) {
  if (context.IsJson()) {
    context.Print({{key, text.list}});
  } else if (text.list.empty()) {
    context.Out() << "(none)\n";
  } else {
    WriteTable(context.Out(), text.table);
  }
  return kDone;
}

}  // namespace mira::console

#endif  // MIRA_CONSOLE_FIRMWARE_LIST_H_
