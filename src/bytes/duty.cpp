#include "bytes/duty.h"

#ifdef MIRA_CHECKED

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace mira::bytes {
namespace {

NeglectHandler handler_in_force = [](const Place& made) {
  std::fprintf(stderr, "A cursor was never asked whether all went well; it was made at %s:%u.\n",
               made.file_name(), static_cast<unsigned>(made.line()));
  std::abort();
};

}  // namespace

NeglectHandler SetNeglectHandler(NeglectHandler handler) {
  return std::exchange(handler_in_force, handler);
}

void ReportNeglect(const Place& made) { handler_in_force(made); }

}  // namespace mira::bytes

#endif
