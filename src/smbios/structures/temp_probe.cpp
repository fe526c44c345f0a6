#include "smbios/layout.h"
#include "smbios/structures/probe_fields.h"
#include "smbios/structures/structures.h"

constinit const mira::smbios::Layout CTempProbe::kLayout("Temperature Probe", "28",
                                                         mira::smbios::kProbeFields);
