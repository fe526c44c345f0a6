#ifndef MIRA_CONSOLE_STRUCTURES_H_
#define MIRA_CONSOLE_STRUCTURES_H_

#include <cstdint>
#include <string>
#include <vector>

#include "smbios/table.h"

namespace mira::console {

// An SMBIOS table and its structures, apart from the facade: reading it needs neither rights nor a
// calling interface.
class Structures {
 public:
  // `table` is in the form of the firmware table service. One that is empty or malformed gives what
  // could be read of it.
  explicit Structures(std::vector<std::uint8_t> table);

  const std::vector<std::uint8_t>& Table() const { return table_; }
  const smbios::Registry& Objects() const { return objects_.Objects(); }
  // The first structure of a type, or null.
  CBIOSObject* Find(unsigned char type) const;
  // False when the table is malformed behind the last structure, or cut short.
  bool IsWhole() const { return is_whole_; }
  // "3.2"; empty when it is not known.
  std::string Version() const;
  // The command classes in the bitmap of the calling interface.
  std::vector<unsigned> AnnouncedClasses() const;

 private:
  std::vector<std::uint8_t> table_;
  smbios::StructureTable objects_;
  bool is_whole_ = false;
};

}  // namespace mira::console

#endif  // MIRA_CONSOLE_STRUCTURES_H_
