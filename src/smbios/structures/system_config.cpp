#include "smbios/structures/structures.h"

namespace {

void ShowNote(const mira::smbios::StructureView&, std::string& out) {
  out += "Pending Implementation... Contact the developer!!\n";
}

}  // namespace

constinit const mira::smbios::Layout CSystemConfig::kLayout("System Configuration Options", "12",
                                                            {}, {.show = ShowNote});
