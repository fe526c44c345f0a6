// Runs a target on every file of the folders that are named, without a fuzzer: what a compiler
// without one can do. Ends with status 1 where an input takes memory out of proportion, or where
// there is none.
//
//   replay_smbios_table fuzz/corpus/fuzz_smbios_table

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/support/memory.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

std::vector<std::filesystem::path> Inputs(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) continue;
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      if (entry.is_regular_file()) files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<std::uint8_t> ReadInput(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

int main(int argc, char** argv) {
  const auto files = Inputs(argc, argv);
  if (files.empty()) {
    std::fprintf(stderr, "%s: no inputs\n", argv[0]);
    return 1;
  }
  LLVMFuzzerTestOneInput(nullptr, 0);  // what is made once is not counted
  int greedy = 0;
  for (const auto& file : files) {
    const auto input = ReadInput(file);
    const mira::fuzz::MemoryWatch watch;
    LLVMFuzzerTestOneInput(input.data(), input.size());
    const std::size_t allowed = mira::fuzz::kBase + mira::fuzz::kPerByte * input.size();
    if (watch.Peak() <= allowed) continue;
    std::fprintf(stderr, "%s: %zu bytes of memory for %zu bytes of input, allowed %zu\n",
                 file.string().c_str(), watch.Peak(), input.size(), allowed);
    ++greedy;
  }
  std::printf("%zu inputs, %d take too much memory\n", files.size(), greedy);
  return greedy == 0 ? 0 : 1;
}
