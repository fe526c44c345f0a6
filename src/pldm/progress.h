#ifndef MIRA_PLDM_PROGRESS_H_
#define MIRA_PLDM_PROGRESS_H_

// Fetching the attribute tables can take many firmware calls. A front end that wants to show how
// far it is sets a callback before CMiraIntf::Init:
//
//   mira::pldm::SetProgress(ShowProgress);

#include <cstdint>

#include "platform/api.h"

namespace mira::pldm {

// Called while a table is fetched, after each firmware call that brought bytes: the table's number,
// counted from 1, of how many; the bytes received of it, of how many. May not throw.
using Progress = void (*)(unsigned table, unsigned tables, std::uint32_t received,
                          std::uint32_t total);

// Null, as at the start: nobody is told. One callback serves the process.
MIRA_API void SetProgress(Progress progress) noexcept;

}  // namespace mira::pldm

#endif  // MIRA_PLDM_PROGRESS_H_
