#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// Vendor structure (DSP0134 6.1.2); widths by the fields' meaning, as no machine with one was at
// hand
constexpr Field kFields[] = {
    {0x04, "Video Processor Die Temperature", "VideoProcDieTemp", Kind::kWord},
};

}  // namespace

constinit const mira::smbios::Layout CVideoProcTemp::kLayout("Video Processor Temperature", "176",
                                                             kFields);
