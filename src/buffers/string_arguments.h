#ifndef MIRA_BUFFERS_STRING_ARGUMENTS_H_
#define MIRA_BUFFERS_STRING_ARGUMENTS_H_

// NUL-terminated strings laid one after another behind the fixed part of a record, each with its
// offset in an argument word.
//
//   StringArguments strings({{2, data.Password}, {3, data.NewPassword}});
//   SMBiosCI* record = NewRecord(strings.RecordLength());
//   if (record == nullptr || !strings.Write(*record, Record())) return nullptr;

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "bytes/writer.h"
#include "transport/smbios_ci.h"

namespace mira::buffers {

class StringArguments {
 public:
  struct Entry {
    unsigned argument;  // 1 to 4
    std::string_view text;
  };
  StringArguments(std::initializer_list<Entry> entries) : entries_(entries) {}
  void Add(unsigned argument, std::string_view text) { entries_.push_back({argument, text}); }

  std::uint64_t RecordLength() const {
    std::uint64_t length = transport::kFixedRecordSize;
    for (const Entry& entry : entries_) length += entry.text.size() + 1;
    return length;
  }

  // Into a record of that length. False when it is shorter.
  [[nodiscard]] bool Write(SMBiosCI& record, bytes::MutableByteSpan bytes) const {
    bytes::Writer out(bytes, transport::kFixedRecordSize);
    for (const Entry& entry : entries_) {
      transport::SetArgOffset(record, entry.argument, static_cast<std::uint32_t>(out.Offset()));
      out.Text(entry.text);
    }
    return out.Ok();
  }

 private:
  std::vector<Entry> entries_;
};

}  // namespace mira::buffers

#endif  // MIRA_BUFFERS_STRING_ARGUMENTS_H_
