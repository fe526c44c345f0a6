// What reading, publishing and showing structures costs, and that it grows with their number alone.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <sstream>
#include <vector>

#include "sim/smbios_builder.h"
#include "smbios/table.h"

namespace {

using mira::sim::SmbiosTable;
using mira::sim::Structure;
using mira::smbios::StructureTable;

// Structures of eight common types in turn.
std::vector<std::uint8_t> MixedTable(std::int64_t count) {
  SmbiosTable table(3, 2);
  for (std::int64_t i = 0; i < count; ++i) {
    const auto handle = static_cast<std::uint16_t>(i);
    switch (i % 4) {
      case 0:
        table.Add(Structure(17, handle)
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
        table.Add(Structure(8, handle).Str("J1").Byte(0).Str("USB 1").Byte(18).Byte(16));
        break;
      case 2:
        table.Add(Structure(9, handle)
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
        table.Add(Structure(26, handle)
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
std::vector<std::uint8_t> ChainTable(std::int64_t count) {
  SmbiosTable table(3, 2);
  for (std::int64_t i = 0; i < count; ++i) {
    table.Add(Structure(21, static_cast<std::uint16_t>(i)).Byte(7).Byte(4).Byte(2));
  }
  return table.Finish();
}

using MakeTable = std::vector<std::uint8_t> (*)(std::int64_t);

void Done(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}

void BM_Walk(benchmark::State& state, MakeTable make) {
  const std::vector<std::uint8_t> table = make(state.range(0));
  for (auto _ : state) {
    StructureTable structures;
    benchmark::DoNotOptimize(structures.Parse(table));
  }
  Done(state);
}

void BM_Attributes(benchmark::State& state, MakeTable make) {
  StructureTable structures;
  structures.Parse(make(state.range(0)));
  for (auto _ : state) {
    AttributeMap attributes;
    for (const auto& [type, head] : structures.Objects()) head->GetAttributes(attributes);
    benchmark::DoNotOptimize(attributes);
  }
  Done(state);
}

void BM_Dump(benchmark::State& state, MakeTable make) {
  StructureTable structures;
  structures.Parse(make(state.range(0)));
  for (auto _ : state) {
    std::ostringstream out;
    for (const auto& [type, head] : structures.Objects()) head->Display(out);
    benchmark::DoNotOptimize(out);
  }
  Done(state);
}

BENCHMARK_CAPTURE(BM_Walk, mixed, MixedTable)->Range(200, 20000)->Complexity();
BENCHMARK_CAPTURE(BM_Walk, chain, ChainTable)->Range(200, 20000)->Complexity();
BENCHMARK_CAPTURE(BM_Attributes, mixed, MixedTable)->Range(200, 20000)->Complexity();
BENCHMARK_CAPTURE(BM_Attributes, chain, ChainTable)->Range(200, 20000)->Complexity();
BENCHMARK_CAPTURE(BM_Dump, mixed, MixedTable)->Range(200, 20000)->Complexity();
BENCHMARK_CAPTURE(BM_Dump, chain, ChainTable)->Range(200, 20000)->Complexity();

}  // namespace
