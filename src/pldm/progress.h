#ifndef MIRA_PLDM_PROGRESS_H_
#define MIRA_PLDM_PROGRESS_H_

// Fetching the attribute tables can take many firmware calls. A front end that wants to show how
// far it is, or to end it, sets a callback before CMiraIntf::Init:
//
//   mira::pldm::SetProgress(Ask, &window);
//   mira.Init(true, true, true);

#include <cstdint>

#include "platform/api.h"

namespace mira::pldm {

enum class ProgressAnswer : int { kContinue = 0, kCancel = 1 };

// Called while a table is fetched, after each firmware call that brought bytes, on the thread that
// called the library: the table's number, counted from 1, of how many; the bytes received of it, of
// how many. May not throw and may not call the library.
//
// After kCancel no further call is made and what was fetched is dropped. Init then succeeds without
// tables: IsPLDMSupported is false, and the step "attribute tables" of CMiraIntf::GetStartUp is
// cancelled; the next Init that asks for them fetches them anew. Display and help texts are fetched
// by the first read of an attribute: cancelled, that read gives STATUS_FAILURE with the same step
// cancelled, the tables stay, and the next read fetches the texts anew.
using ProgressCallback = ProgressAnswer (*)(void* context, unsigned table, unsigned tables,
                                            std::uint32_t received, std::uint32_t total);

// The callback gets `context` as it stands here. Null, as at the start: nobody is told. One
// callback serves the process.
MIRA_API void SetProgress(ProgressCallback callback, void* context) noexcept;

// The same for who only wants to be told.
using Progress = void (*)(unsigned table, unsigned tables, std::uint32_t received,
                          std::uint32_t total);
MIRA_API void SetProgress(Progress progress) noexcept;

}  // namespace mira::pldm

#endif  // MIRA_PLDM_PROGRESS_H_
