#ifndef MIRA_SIM_FAULT_FILE_H_
#define MIRA_SIM_FAULT_FILE_H_

// Faults in a file that programs share: added by one, hit and counted in all. There is a file only
// while there are faults.
//
//   FaultFile faults("laptop.faults");
//   faults.Add({.operation = "firmware 11/0", .completion = -1});

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sim/faults.h"
#include "sim/firmware/fields.h"

namespace mira::sim {

struct SharedFault {
  std::uint32_t number = 0;  // its name in the file, from 1
  Fault fault;
  int calls = 0;  // of the operation, since the fault was added
  int hits = 0;
};
void Describe(Fields& fields, SharedFault& fault);

// Adds a fault under a number of its own. Throws StateError when there are too many.
SharedFault AddTo(std::vector<SharedFault>& faults, const Fault& fault);
// Counts a call of the operation in the faults of it, and gives those that it hits; `counted` tells
// whether there were any.
std::vector<Fault> HitOf(std::vector<SharedFault>& faults, std::string_view operation,
                         bool& counted);

class FaultFile : public FaultSource {
 public:
  explicit FaultFile(std::filesystem::path file) : file_(std::move(file)) {}

  // Gives the fault as it stands in the file. Throws StateError, as the others do, when the file
  // cannot be used, and std::invalid_argument for a fault that cannot be.
  SharedFault Add(const Fault& fault);
  std::vector<SharedFault> List() const;
  // Removes the fault of this number, or all; gives how many there were.
  std::size_t Clear(std::optional<std::uint32_t> number = std::nullopt);

  // While the file cannot be used, the connection is lost in every call that needs one.
  std::vector<Fault> Hit(std::string_view operation) override;
  // Why the file could not be used, since the last ForgetProblem; empty where it could.
  const std::string& Problem() const { return problem_; }
  void ForgetProblem() { problem_.clear(); }

 private:
  bool IsThere() const;
  std::vector<SharedFault> Read() const;
  void Write(std::vector<SharedFault>& faults) const;

  std::filesystem::path file_;
  bool was_there_ = false;
  std::string problem_;
};

}  // namespace mira::sim

#endif  // MIRA_SIM_FAULT_FILE_H_
