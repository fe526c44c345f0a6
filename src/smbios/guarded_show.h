#ifndef MIRA_SMBIOS_GUARDED_SHOW_H_
#define MIRA_SMBIOS_GUARDED_SHOW_H_

#include <ostream>

namespace mira::smbios {

// Calls `show`, which writes to `os`. Hosts call the dump of an object directly, and an exception
// that crossed into their module would end the process: a lack of memory, or what the stream throws
// by itself, is left in the stream's badbit instead.
template <typename Show>
void GuardedShow(std::ostream& os, Show show) noexcept {
  try {
    show();
  } catch (...) {
    try {
      os.setstate(std::ios_base::badbit);
    } catch (...) {
      // A stream that throws has set its bit before.
    }
  }
}

}  // namespace mira::smbios

#endif  // MIRA_SMBIOS_GUARDED_SHOW_H_
