// The DLL has a C++ runtime of its own, and so has its std::cout: what the library says there to
// developers would reach the host's standard output.

#include <iostream>

namespace mira::client::c {
namespace {

[[maybe_unused]] const bool silenced = [] {
  for (std::ostream* const stream : {&std::cout, &std::cerr, &std::clog}) stream->rdbuf(nullptr);
  return true;
}();

}  // namespace
}  // namespace mira::client::c
