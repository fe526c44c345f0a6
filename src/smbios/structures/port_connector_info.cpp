#include "smbios/layout.h"
#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.9
constexpr Field kFields[] = {
    {0x04, "Internal Reference Designator", "IntRefDesignator", Kind::kString},
    {0x05, "Internal Connector Type", "IntConnectorType", Kind::kByte},
    {0x06, "External Reference Designator", "ExtRefDesignator", Kind::kString},
    {0x07, "External Connector Type", "ExtConnectorType", Kind::kByte},
    {0x08, "Port Type", "PortType", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CPortConnectorInfo::kLayout("Port Connector Information", "8",
                                                                 kFields);
