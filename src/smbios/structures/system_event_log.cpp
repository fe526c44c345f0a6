#include "smbios/layout.h"
#include "smbios/structures/structures.h"

// DSP0134 7.16. The note stands in place of the fields, on purpose.
constinit const mira::smbios::Layout CSystemEventLog::kLayout(
    "System Event Log", "15", {},
    {.note = "Yet to complete this structure... contact the developer!!"});
