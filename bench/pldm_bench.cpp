// What loading attribute tables from memory and looking attributes up costs, and what memory an
// attribute takes. Beside it the least that a program can do: walk the raw tables from their start.

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "bytes/reader.h"
#include "pldm/table_parser.h"

namespace {

std::atomic<std::size_t> allocated{0};
constexpr std::size_t kHeapOverhead = 16;  // what the heap adds to a block, about

// Through variables, so that the compiler pairs new and delete, and neither with malloc and free.
void* (*volatile take)(std::size_t) = std::malloc;
void (*volatile give_back)(void*) = std::free;

}  // namespace

void* operator new(std::size_t size) {
  allocated += size + kHeapOverhead;
  if (void* const block = take(size)) return block;
  throw std::bad_alloc();
}
void operator delete(void* block) noexcept { give_back(block); }
void operator delete(void* block, std::size_t) noexcept { give_back(block); }

namespace {

using mira::pldm::Tables;

// Tables in which most attributes are enumerations, as firmware has them.
class TableSet {
 public:
  explicit TableSet(std::int64_t count) {
    constexpr unsigned kValues = 64;
    for (unsigned i = 0; i < kValues; ++i) AddString(i, "PossibleValue" + std::to_string(i));
    for (unsigned i = 0; i < count; ++i) {
      const unsigned handle = i + kValues;
      AddString(handle, Name(i));
      Add(attributes_, handle, 2);
      Add(values_, handle, 2);
      if (i % 4 == 3) {
        Add(attributes_, 3, 1);
        Add(attributes_, handle, 2);
        for (const std::uint64_t bound : {0u, 100000u}) Add(attributes_, bound, 8);
        Add(attributes_, 1, 4);
        Add(attributes_, 7, 8);
        Add(values_, 3, 1);
        Add(values_, i, 8);
      } else {
        Add(attributes_, 0, 1);
        Add(attributes_, handle, 2);
        Add(attributes_, 4, 1);
        for (unsigned k = 0; k < 4; ++k) Add(attributes_, (i + k) % kValues, 2);
        Add(attributes_, 1, 1);
        Add(attributes_, 0, 1);
        Add(values_, 0, 1);
        Add(values_, 1, 1);
        Add(values_, i % 4, 1);
      }
    }
    for (auto* const table : {&strings_, &attributes_, &values_}) Add(*table, 0, 8);
  }

  static std::string Name(unsigned i) { return "BiosSetupAttribute" + std::to_string(i); }
  static std::uint16_t Handle(unsigned i) { return static_cast<std::uint16_t>(i + 64); }

  void Load(Tables& tables) const {
    mira::pldm::ParseStringTable(strings_, tables);
    mira::pldm::ParseAttributeTable(attributes_, tables);
    mira::pldm::ParseValueTable(values_, tables);
  }

  // Takes each entry's number and length and nothing more; ends at the string of that name.
  std::uint64_t WalkStrings(std::string_view name) const {
    std::uint64_t sum = 0;
    mira::bytes::Reader in(strings_);
    while (in.Left() > kPad) {
      const std::uint16_t handle = in.U16();
      const mira::bytes::ByteSpan text = in.Take(in.U16());
      sum += handle;
      if (mira::bytes::AsText(text) == name) break;
    }
    return in.Ok() ? sum : 0;
  }
  std::uint64_t WalkAttributes() const {
    std::uint64_t sum = 0;
    mira::bytes::Reader in(attributes_);
    while (in.Left() > kPad) {
      sum += in.U16();
      const bool is_integer = in.U8() == 3;
      in.U16();
      if (is_integer) {
        in.Take(28);
      } else {
        in.Take(std::size_t{2} * in.U8());
        in.Take(in.U8());
      }
    }
    return in.Ok() ? sum : 0;
  }
  std::uint64_t WalkValues() const {
    std::uint64_t sum = 0;
    mira::bytes::Reader in(values_);
    while (in.Left() > kPad) {
      sum += in.U16();
      const bool is_integer = in.U8() == 3;
      in.Take(is_integer ? 8 : in.U8());
    }
    return in.Ok() ? sum : 0;
  }

 private:
  static constexpr std::size_t kPad = 8;  // behind each table
  static void Add(std::vector<std::uint8_t>& table, std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i) table.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
  void AddString(unsigned handle, std::string_view text) {
    Add(strings_, handle, 2);
    Add(strings_, text.size(), 2);
    strings_.insert(strings_.end(), text.begin(), text.end());
  }

  std::vector<std::uint8_t> strings_;
  std::vector<std::uint8_t> attributes_;
  std::vector<std::uint8_t> values_;
};

void BM_Load(benchmark::State& state) {
  const TableSet set(state.range(0));
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::size_t before = allocated;
    Tables tables;
    set.Load(tables);
    bytes = allocated - before;
    benchmark::DoNotOptimize(tables);
  }
  state.counters["bytes_per_attribute"] =
      static_cast<double>(bytes) / static_cast<double>(state.range(0));
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}

void BM_LoadWalk(benchmark::State& state) {
  const TableSet set(state.range(0));
  for (auto _ : state) {
    const std::uint64_t sum = set.WalkStrings("") + set.WalkAttributes() + set.WalkValues();
    if (sum == 0) state.SkipWithError("the walk ended early");
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Each look-up is of another attribute, in no order that the cache could foresee.
template <typename LookUp>
void Measure(benchmark::State& state, LookUp look_up) {
  Tables tables;
  TableSet(state.range(0)).Load(tables);
  std::vector<std::string> names;
  for (unsigned i = 0; i < state.range(0); ++i) names.push_back(TableSet::Name(i));
  unsigned i = 0;
  for (auto _ : state) {
    i = (i + 2741) % static_cast<unsigned>(state.range(0));
    benchmark::DoNotOptimize(look_up(tables, i, names[i]));
  }
}

void BM_LookUpByHandle(benchmark::State& state) {
  Measure(state, [](const Tables& tables, unsigned i, const std::string&) {
    return tables.FindAttribute(TableSet::Handle(i));
  });
}

void BM_LookUpByName(benchmark::State& state) {
  Measure(state, [](const Tables& tables, unsigned, const std::string& name) {
    return tables.FindAttribute(tables.HandleOf(name).value_or(0));
  });
}

// Of the name in the string table alone.
void BM_LookUpWalk(benchmark::State& state) {
  const TableSet set(state.range(0));
  unsigned i = 0;
  for (auto _ : state) {
    i = (i + 2741) % static_cast<unsigned>(state.range(0));
    benchmark::DoNotOptimize(set.WalkStrings(TableSet::Name(i)));
  }
}

BENCHMARK(BM_Load)->Arg(60)->Arg(600)->Arg(5000)->Arg(20000)->Arg(60000)->Complexity();
BENCHMARK(BM_LoadWalk)->Arg(60)->Arg(600)->Arg(5000)->Arg(20000)->Arg(60000);
BENCHMARK(BM_LookUpByHandle)->Arg(600)->Arg(5000)->Arg(60000);
BENCHMARK(BM_LookUpByName)->Arg(600)->Arg(5000)->Arg(60000);
BENCHMARK(BM_LookUpWalk)->Arg(600)->Arg(5000)->Arg(60000);

}  // namespace
