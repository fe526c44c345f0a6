#ifndef MIRA_BUFFERS_RECEIVED_DATA_H_
#define MIRA_BUFFERS_RECEIVED_DATA_H_

// Reads whose answer is as long as the firmware says (class 17, and class 7 where room is asked
// for): the bytes, and for class 17 the entries that they hold.
//
//   CThermalSensors sensors;
//   mira.ExecuteDACI(17, 22, sensors, "", PwdInfo::PWD_NONE);
//   for (const CThermalSensors::Entry& sensor : sensors.Entries) ...
//
// The first argument word names the answer's place, so a request's own arguments are Arg2 to Arg4.
// A plain CSimpleTokenData is accepted as well and receives the four result words only.
//
// Of the firmware it is assumed that an answer is a list of entries, one behind the other, with
// little-endian numbers in the order of the fields below and texts ended by a NUL. An entry that
// the answer's end cuts off is left out. Data holds the bytes whatever they are.

#include <cstdint>
#include <string>
#include <vector>

#include "buffers/bios_data.h"
#include "platform/api.h"

struct MIRA_API CReceivedData : CSimpleTokenData {
  ~CReceivedData() override;

  std::vector<std::uint8_t> Data;
};

// Select 5: how the batteries age.
struct MIRA_API CExtBatteryLife : CReceivedData {
  ~CExtBatteryLife() override;

  struct Entry {
    std::uint16_t Battery = 0;
    std::uint16_t ChargeCycles = 0;
    std::uint32_t DesignCapacity = 0;      // mWh
    std::uint32_t FullChargeCapacity = 0;  // mWh
  };
  std::vector<Entry> Entries;
};

// How much a message or a log entry matters. Other numbers have no name.
enum EntrySeverity : std::uint8_t {
  ENTRY_INFORMATION = 0,
  ENTRY_WARNING = 1,
  ENTRY_ERROR = 2,
};

// Select 16: the firmware's messages to the user. Select 14 takes a message's number in Arg1 and
// marks it as seen.
struct MIRA_API CFirmwareMessages : CReceivedData {
  ~CFirmwareMessages() override;

  struct Entry {
    std::uint16_t Number = 0;
    std::uint8_t Severity = 0;  // EntrySeverity
    std::uint8_t Seen = 0;      // 1: marked as seen
    std::string Text;
  };
  std::vector<Entry> Entries;
};

// Select 18: the keyboard scan codes that a tablet's buttons send.
struct MIRA_API CTabletScanCodes : CReceivedData {
  ~CTabletScanCodes() override;

  struct Entry {
    std::uint16_t ScanCode = 0;
    std::string Button;
  };
  std::vector<Entry> Entries;
};

// Select 22: the thermal sensors.
struct MIRA_API CThermalSensors : CReceivedData {
  ~CThermalSensors() override;

  struct Entry {
    std::uint16_t Number = 0;
    std::int16_t Temperature = 0;  // tenths of a degree Celsius, as the limit
    std::int16_t Limit = 0;        // from here on the firmware slows the machine down
    std::string Location;
  };
  std::vector<Entry> Entries;
};

// Select 24: the log, oldest entry first.
struct MIRA_API CLogEntries : CReceivedData {
  ~CLogEntries() override;

  struct Entry {
    std::uint16_t Year = 0;
    std::uint8_t Month = 0;
    std::uint8_t Day = 0;
    std::uint8_t Hour = 0;
    std::uint8_t Minute = 0;
    std::uint8_t Second = 0;
    std::uint8_t Severity = 0;  // EntrySeverity
    std::uint16_t Code = 0;
    std::string Text;
  };
  std::vector<Entry> Entries;
};

#endif  // MIRA_BUFFERS_RECEIVED_DATA_H_
