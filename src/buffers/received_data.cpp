#include "buffers/received_data.h"

CReceivedData::~CReceivedData() = default;
CExtBatteryLife::~CExtBatteryLife() = default;
CFirmwareMessages::~CFirmwareMessages() = default;
CTabletScanCodes::~CTabletScanCodes() = default;
CThermalSensors::~CThermalSensors() = default;
CLogEntries::~CLogEntries() = default;
