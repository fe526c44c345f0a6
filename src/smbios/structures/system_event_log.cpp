#include "smbios/structures/structures.h"

namespace {

void ShowNote(const mira::smbios::StructureView&, std::string& out) {
  out += "Yet to complete this structure... contact the developer!!\n";
}

}  // namespace

constinit const mira::smbios::Layout CSystemEventLog::kLayout("System Event Log", "15", {},
                                                              {.show = ShowNote});
