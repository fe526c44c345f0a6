#include "smbios/structures/structures.h"

namespace {

using mira::smbios::Field;
using mira::smbios::Kind;

// DSP0134 7.9
constexpr Field kFields[] = {
    {"Internal Reference Designator", "IntRefDesignator", Kind::kString},
    {"Internal Connector Type", "IntConnectorType", Kind::kByte},
    {"External Reference Designator", "ExtRefDesignator", Kind::kString},
    {"External Connector Type", "ExtConnectorType", Kind::kByte},
    {"Port Type", "PortType", Kind::kByte},
};

}  // namespace

constinit const mira::smbios::Layout CPortConnectorInfo::kLayout("Port Connector Information", "8",
                                                                 kFields);
