#include "smbios/layout.h"
#include "smbios/structures/structures.h"

// DSP0134 7.13. The note stands in place of the fields, on purpose.
constinit const mira::smbios::Layout CSystemConfig::kLayout(
    "System Configuration Options", "12", {},
    {.note = "Pending Implementation... Contact the developer!!"});
