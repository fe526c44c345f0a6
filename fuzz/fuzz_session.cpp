// A whole session against a firmware whose replies are the input. The first byte chooses what is
// asked; then, for each firmware call, comes a byte that says what becomes of its reply:
//
//   0  it stays as the simulated firmware gives it
//   1  16-bit length, bytes: written over it from its first byte
//   2  16-bit offset, 8-bit length, bytes: written over it
//   3  32-bit completion code
//   4  16-bit length to which it is cut
//
// When the input is used up the replies stay as they are.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

#include "bytes/reader.h"
#include "fuzz/support/discard.h"
#include "fuzz/support/rows.h"
#include "fuzz/support/session.h"
#include "sim/machine.h"

namespace {

using mira::bytes::Reader;
using mira::client::Json;
using mira::fuzz::kSessionRows;

void ChangeReply(Reader& in, std::vector<std::uint8_t>& reply) {
  switch (in.U8() % 5) {
    case 1: {
      const auto bytes = in.Take(std::min<std::size_t>(in.U16(), in.Left()));
      std::copy_n(bytes.begin(), std::min(bytes.size(), reply.size()), reply.begin());
      break;
    }
    case 2: {
      const std::size_t offset = in.U16() % (reply.size() + 1);
      const auto bytes = in.Take(std::min<std::size_t>(in.U8(), in.Left()));
      std::copy_n(bytes.begin(), std::min(bytes.size(), reply.size() - offset),
                  reply.begin() + static_cast<std::ptrdiff_t>(offset));
      break;
    }
    case 3: {
      // Behind class, select and the four argument words.
      constexpr std::ptrdiff_t kCompletion = 20;
      const auto code = in.Take(std::min<std::size_t>(4, in.Left()));
      if (std::ssize(reply) >= kCompletion + 4) {
        std::copy(code.begin(), code.end(), reply.begin() + kCompletion);
      }
      break;
    }
    case 4:
      reply.resize(std::min<std::size_t>(in.U16(), reply.size()));
      break;
    default:
      break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const mira::fuzz::SilentStreams silent;
  auto in = Reader::Lenient({data, size});
  const auto& row = kSessionRows[in.U8() % std::size(kSessionRows)];
  mira::sim::Machine machine;
  machine.GetFaults().Add({.operation = "firmware", .nth = 0, .corrupt = [&in](auto& reply) {
                             if (in.Left() > 0) ChangeReply(in, reply);
                           }});
  const mira::sim::Session in_force(machine);
  mira::fuzz::RunCommand(row.command, Json::parse(row.arguments), "secret");
  return 0;
}
