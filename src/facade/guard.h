#ifndef MIRA_FACADE_GUARD_H_
#define MIRA_FACADE_GUARD_H_

// What no facade operation lets out: exceptions. For the sources of CMiraIntf only.

#include <exception>
#include <ostream>

#include "facade/mira_intf.h"
#include "transport/com_error.h"
#include "transport/operation_log.h"

template <typename Result, typename Operation>
Result CMiraIntf::Guard(const char* what, Result failed, Operation operation) {
  try {
    return operation();
  } catch (const mira::transport::ComError&) {
    throw;
  } catch (const std::exception& error) {
    mira::transport::OperationLog::Get().Interrupt();
    m_Diag << what << " failed: " << error.what() << std::endl;
  }
  return failed;
}

#endif  // MIRA_FACADE_GUARD_H_
