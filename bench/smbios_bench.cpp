// What reading, publishing and showing structures costs, and that it grows with their number alone.
// Beside each: what it costs to copy the bytes that it must read or write.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "bench/tables.h"
#include "smbios/table.h"

namespace {

using mira::bench::ChainTable;
using mira::bench::MixedTable;
using mira::smbios::StructureTable;

using MakeTable = std::vector<std::uint8_t> (*)(std::int64_t);

void Done(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}

// Takes all that is written and keeps nothing.
class Sink : public std::streambuf {
 protected:
  std::streamsize xsputn(const char*, std::streamsize size) override { return size; }
  int_type overflow(int_type character) override { return character; }
};

void Show(const StructureTable& structures, std::ostream& out) {
  for (const auto& [type, head] : structures.Objects()) head->Display(out);
}

void BM_Walk(benchmark::State& state, MakeTable make) {
  const std::vector<std::uint8_t> table = make(state.range(0));
  for (auto _ : state) {
    StructureTable structures;
    benchmark::DoNotOptimize(structures.Parse(table));
  }
  Done(state);
}

void BM_WalkCopy(benchmark::State& state, MakeTable make) {
  const std::vector<std::uint8_t> table = make(state.range(0));
  for (auto _ : state) {
    const std::vector<std::uint8_t> copy = table;
    benchmark::DoNotOptimize(copy.data());
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

// The map alone, which hosts are given: its nodes and its strings.
void BM_AttributesCopy(benchmark::State& state, MakeTable make) {
  StructureTable structures;
  structures.Parse(make(state.range(0)));
  AttributeMap attributes;
  for (const auto& [type, head] : structures.Objects()) head->GetAttributes(attributes);
  for (auto _ : state) {
    const AttributeMap copy = attributes;
    benchmark::DoNotOptimize(copy);
  }
  Done(state);
}

void BM_Dump(benchmark::State& state, MakeTable make) {
  StructureTable structures;
  structures.Parse(make(state.range(0)));
  for (auto _ : state) {
    std::ostringstream out;
    Show(structures, out);
    benchmark::DoNotOptimize(out);
  }
  Done(state);
}

// Without the memory of a stream that grows.
void BM_DumpAlone(benchmark::State& state, MakeTable make) {
  StructureTable structures;
  structures.Parse(make(state.range(0)));
  Sink sink;
  std::ostream out(&sink);
  for (auto _ : state) Show(structures, out);
  Done(state);
}

void BM_DumpCopy(benchmark::State& state, MakeTable make) {
  StructureTable structures;
  structures.Parse(make(state.range(0)));
  std::ostringstream shown;
  Show(structures, shown);
  const std::string text = shown.str();
  std::string copy(text.size(), ' ');
  for (auto _ : state) {
    text.copy(copy.data(), text.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
  }
  Done(state);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  for (const int size : {200, 2000, 20000, 60000}) benchmark->Arg(size);
  benchmark->Complexity();
}
BENCHMARK_CAPTURE(BM_Walk, mixed, MixedTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Walk, chain, ChainTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_WalkCopy, mixed, MixedTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_WalkCopy, chain, ChainTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Attributes, mixed, MixedTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Attributes, chain, ChainTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_AttributesCopy, mixed, MixedTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_AttributesCopy, chain, ChainTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Dump, mixed, MixedTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_Dump, chain, ChainTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_DumpAlone, mixed, MixedTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_DumpAlone, chain, ChainTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_DumpCopy, mixed, MixedTable)->Apply(Sizes);
BENCHMARK_CAPTURE(BM_DumpCopy, chain, ChainTable)->Apply(Sizes);

}  // namespace
