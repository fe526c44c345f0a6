#ifndef MIRA_BENCH_TABLES_H_
#define MIRA_BENCH_TABLES_H_

// The structure tables that benchmarks read, of any length up to 65,536 structures.

#include <cstdint>
#include <vector>

#include "sim/smbios_builder.h"

namespace mira::bench {

// Structures of four common types in turn.
inline std::vector<std::uint8_t> MixedTable(std::int64_t count) {
  sim::SmbiosTable table(3, 2);
  for (std::int64_t i = 0; i < count; ++i) {
    const auto handle = static_cast<std::uint16_t>(i);
    switch (i % 4) {
      case 0:
        table.Add(sim::Structure(17, handle)
                      .Word(1)
                      .Word(2)
                      .Word(64)
                      .Word(64)
                      .Word(8192)
                      .Byte(13)
                      .Byte(0)
                      .Str("DIMM A")
                      .Str("BANK 0")
                      .Byte(26)
                      .Word(0x80)
                      .Word(3200)
                      .Str("Maker")
                      .Str("8A3F1C02")
                      .Str("04260311")
                      .Str("LM4S8G3200")
                      .Byte(1)
                      .DWord(0)
                      .Word(3200));
        break;
      case 1:
        table.Add(sim::Structure(8, handle).Str("J1").Byte(0).Str("USB 1").Byte(18).Byte(16));
        break;
      case 2:
        table.Add(sim::Structure(9, handle)
                      .Str("Slot")
                      .Byte(1)
                      .Byte(2)
                      .Byte(3)
                      .Byte(4)
                      .Word(1)
                      .Byte(4)
                      .Byte(1)
                      .Word(0)
                      .Byte(1)
                      .Byte(0));
        break;
      default:
        table.Add(sim::Structure(26, handle)
                      .Str("Core")
                      .Byte(0x63)
                      .Word(1)
                      .Word(2)
                      .Word(3)
                      .Word(4)
                      .Word(5)
                      .DWord(0)
                      .Word(6));
        break;
    }
  }
  return table.Finish();
}

// One chain of a single type.
inline std::vector<std::uint8_t> ChainTable(std::int64_t count) {
  sim::SmbiosTable table(3, 2);
  for (std::int64_t i = 0; i < count; ++i) {
    table.Add(sim::Structure(21, static_cast<std::uint16_t>(i)).Byte(7).Byte(4).Byte(2));
  }
  return table.Finish();
}

}  // namespace mira::bench

#endif  // MIRA_BENCH_TABLES_H_
