#include "smbios/layout.h"
#include "smbios/structures/probe_fields.h"
#include "smbios/structures/structures.h"

constinit const mira::smbios::Layout CElecCurrentProbe::kLayout("Electrical Current Probe", "29",
                                                                mira::smbios::kProbeFields);
