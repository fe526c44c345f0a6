#ifndef MIRA_SIM_JOURNAL_H_
#define MIRA_SIM_JOURNAL_H_

// What the simulated firmware was asked and what it answered.
//
//   mira::sim::Write(std::cerr, machine.Journal());

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace mira::sim {

// One firmware call as it went by. Argument words that may be security keys are kept out of it: of
// an argument only tests on the model itself see the value (see sensitive).
struct JournalEntry {
  std::uint16_t cls = 0;
  std::uint16_t select = 0;
  std::uint32_t args[4] = {};       // 0 where `masked` says so
  bool masked[4] = {};              // the word held a security key that the firmware had handed out
  std::uint32_t record_length = 0;  // bytes of the record
  bool answered = true;             // else completion and results say nothing
  std::int32_t completion = 0;      // cbRES1 of the answer, as the caller got it
  std::uint32_t results[3] = {};    // cbRES2 to cbRES4; 0 where the call handed out a security key
  bool hands_out_key = false;
  bool injected = false;  // a fault had a part in it
};

// A method of a WMI object, or a firmware call that never reached the firmware, as it went by.
struct OperationEntry {
  std::string operation;              // "IWbemClassObject::Put"
  std::string about;                  // what it was asked for: a property, a class, a path
  std::optional<std::uint64_t> size;  // of the bytes that it moved
  std::int32_t result = 0;            // HRESULT
};

// The journal in lines of text, fit for a bug report.
void Write(std::ostream& out, const std::vector<JournalEntry>& journal);

}  // namespace mira::sim

#endif  // MIRA_SIM_JOURNAL_H_
