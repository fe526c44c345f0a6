#ifndef MIRA_PLDM_TABLE_FETCH_H_
#define MIRA_PLDM_TABLE_FETCH_H_

// Brings the firmware's BIOS tables into memory. A record that is null afterwards means that the
// machine has none, or gave them up half-way.
//
//   std::unique_ptr<CACIInfo2Record> record;
//   FetchTables(target, key, record);
//   if (record) FetchStringData(target, key, kDisplayStrings, record);

#include <cstdint>
#include <memory>

#include "callif/one_call.h"
#include "pldm/aci_info2_record.h"

namespace mira::pldm {

// Both operations below: false when the progress callback cancelled them.

// The directory, then each table in its order, but for the string data. Throws std::out_of_range
// for a class bitmap that cannot be read. Cancelled, the record is null.
bool FetchTables(const callif::Target& target, std::uint32_t key,
                 std::unique_ptr<CACIInfo2Record>& record);

// The string data that may hold texts of that kind. Cancelled, there are none of that kind.
bool FetchStringData(const callif::Target& target, std::uint32_t key, StringKind kind,
                     std::unique_ptr<CACIInfo2Record>& record);

}  // namespace mira::pldm

#endif  // MIRA_PLDM_TABLE_FETCH_H_
