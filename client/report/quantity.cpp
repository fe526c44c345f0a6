#include "client/report/quantity.h"

#include <cstdint>
#include <iterator>

#include "bytes/text.h"

namespace mira::client {
namespace {

// With one decimal where the number is no whole one.
std::string Quotient(std::uint64_t value, std::uint64_t unit) {
  const std::uint64_t tenths = value / unit * 10 + (value % unit * 10 + unit / 2) / unit;
  const std::string decimal = tenths % 10 == 0 ? "" : "." + std::to_string(tenths % 10);
  return std::to_string(tenths / 10) + decimal;
}

// In the largest of the units, each 1024 of the one before, that the size reaches.
std::string InUnits(const Json& value, std::size_t unit) {
  constexpr const char* kUnits[] = {" bytes", " KiB", " MiB", " GiB", " TiB"};
  constexpr std::uint64_t kStep = 1024;
  const auto number = ToNumber(value);
  if (!number) return Plain(value);
  std::uint64_t divisor = 1;
  while (*number / divisor >= kStep && unit + 1 < std::size(kUnits)) {
    divisor *= kStep;
    ++unit;
  }
  return Quotient(*number, divisor) + kUnits[unit];
}

std::string InThousands(const Json& value, const char* unit, const char* thousand) {
  constexpr std::uint64_t kThousand = 1000;
  const auto number = ToNumber(value);
  if (!number) return Plain(value);
  return *number < kThousand ? std::to_string(*number) + unit
                             : Quotient(*number, kThousand) + thousand;
}

}  // namespace

std::string Plain(const Json& value) { return std::string(bytes::Trimmed(Readable(value), " ")); }

std::string InBytes(const Json& value) { return InUnits(value, 0); }
std::string InKiB(const Json& value) { return InUnits(value, 1); }
std::string InMiB(const Json& value) { return InUnits(value, 2); }
std::string InMHz(const Json& value) { return InThousands(value, " MHz", " GHz"); }
std::string InMillivolts(const Json& value) { return InThousands(value, " mV", " V"); }
std::string InMilliwattHours(const Json& value) { return InThousands(value, " mWh", " Wh"); }
std::string InTransfers(const Json& value) { return Plain(value) + " MT/s"; }
std::string InRackUnits(const Json& value) { return Plain(value) + " U"; }
std::string InPercent(const Json& value) { return Plain(value) + " %"; }

}  // namespace mira::client
