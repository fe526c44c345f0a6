#include "buffers/entry_list.h"

namespace mira::buffers {

void ReadEntry(bytes::Reader& in, CExtBatteryLife::Entry& entry) {
  entry.Battery = in.U16();
  entry.ChargeCycles = in.U16();
  entry.DesignCapacity = in.U32();
  entry.FullChargeCapacity = in.U32();
}

void ReadEntry(bytes::Reader& in, CFirmwareMessages::Entry& entry) {
  entry.Number = in.U16();
  entry.Severity = in.U8();
  entry.Seen = in.U8();
  entry.Text = in.CString();
}

void ReadEntry(bytes::Reader& in, CTabletScanCodes::Entry& entry) {
  entry.ScanCode = in.U16();
  entry.Button = in.CString();
}

void ReadEntry(bytes::Reader& in, CThermalSensors::Entry& entry) {
  entry.Number = in.U16();
  entry.Temperature = static_cast<std::int16_t>(in.U16());
  entry.Limit = static_cast<std::int16_t>(in.U16());
  entry.Location = in.CString();
}

void ReadEntry(bytes::Reader& in, CLogEntries::Entry& entry) {
  entry.Year = in.U16();
  entry.Month = in.U8();
  entry.Day = in.U8();
  entry.Hour = in.U8();
  entry.Minute = in.U8();
  entry.Second = in.U8();
  entry.Severity = in.U8();
  entry.Code = in.U16();
  entry.Text = in.CString();
}

}  // namespace mira::buffers
