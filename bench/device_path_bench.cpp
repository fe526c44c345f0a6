// What decoding a list of load options and writing and reading their paths costs, and that it grows
// with their number alone.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "buffers/buffer_factory.h"
#include "buffers/uefi_boot_data.h"
#include "bytes/writer.h"
#include "devicepath/text.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr char kPath[] =
    "PciRoot(0x0)/Pci(0x1D,0x0)/Pci(0x0,0x0)/NVMe(0x1,00-00-00-00-00-00-00-00)/"
    "HD(1,GPT,66DE947B-FDB2-4525-B752-30D66BB2B960,0x800,0x100000)/\\EFI\\Boot\\bootx64.efi";

void Append(std::uint64_t value, std::size_t width, Bytes& bytes) {
  bytes.resize(bytes.size() + width);
  mira::bytes::Writer(bytes, bytes.size() - width).Number(value, width);
}

// As many load options with the same path, in their order.
Bytes List(std::uint32_t count) {
  const Bytes path = *mira::devicepath::DevicePathFromText(kPath);
  Bytes list;
  Append(count, 4, list);
  for (std::uint32_t i = 0; i < count; ++i) Append(i, 2, list);
  for (std::uint32_t i = 0; i < count; ++i) {
    Append(i, 2, list);
    Append(8 + path.size(), 4, list);
    Append(1, 4, list);
    Append(path.size(), 2, list);
    Append(0, 2, list);  // no description
    list.insert(list.end(), path.begin(), path.end());
  }
  return list;
}

void DecodeOptions(benchmark::State& state) {
  const Bytes list = List(static_cast<std::uint32_t>(state.range(0)));
  const std::unique_ptr<CBuffer> buffer(CreateBuffer(3, 11, 1024 * 1024));
  CUEFILOList options;
  options.IsUEFI = true;
  auto size = static_cast<std::uint32_t>(list.size());
  buffer->FillInputBuffer(0, size, options);
  mira::bytes::Writer(buffer->Record(), 48).Bytes(list);
  for (auto _ : state) {
    buffer->ParseOutputBuffer(options);
    benchmark::DoNotOptimize(options.Count);
  }
  if (options.Count != static_cast<std::uint32_t>(state.range(0))) state.SkipWithError("cut");
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetComplexityN(state.range(0));
}
BENCHMARK(DecodeOptions)->RangeMultiplier(4)->Range(4, 1024)->Complexity(benchmark::oN);

void WritePath(benchmark::State& state) {
  const Bytes path = *mira::devicepath::DevicePathFromText(kPath);
  for (auto _ : state) {
    benchmark::DoNotOptimize(mira::devicepath::DevicePathToText(mira::bytes::ByteSpan(path)));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(WritePath);

void ReadPath(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(mira::devicepath::DevicePathFromText(kPath));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(ReadPath);

}  // namespace
