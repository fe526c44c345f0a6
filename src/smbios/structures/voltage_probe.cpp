#include "smbios/layout.h"
#include "smbios/structures/probe_fields.h"
#include "smbios/structures/structures.h"

constinit const mira::smbios::Layout CVoltageProbe::kLayout("Voltage Probe", "26",
                                                            mira::smbios::kProbeFields);
