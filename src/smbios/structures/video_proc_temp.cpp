#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure
constexpr Field kFields[] = {
    {"Video Processor Die Temperature", "VideoProcDieTemp", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CVideoProcTemp::kLayout("Video Processor Temperature", "176",
                                                             kFields);
