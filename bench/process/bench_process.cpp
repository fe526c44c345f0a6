// One piece of work per process, so that whole processes can be compared, and their peak memory
// read.
//
//   bench_process table mixed 20000 pc.bin    writes a file that dmidecode reads, too
//   bench_process dump pc.bin                 shows its structures; also: walk, attributes, copy
//   bench_process none                        what a process costs that does nothing
//   bench_process watch PROGRAM ARGS...       runs it; its processor time in ms and peak memory in
//   KiB
//
// tools/bench_report.py runs it.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>
#include <iostream>
#include <iterator>
#include <numeric>
#include <string>
#include <vector>

#include "bench/tables.h"
#include "bytes/writer.h"
#include "smbios/table.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using mira::smbios::StructureTable;

constexpr std::size_t kEntry = 32;  // the table's place in a file

// An entry point (DSP0134 5.2.2) and the structures, as dmidecode's own files have them.
Bytes Dump(const Bytes& firmware_table) {
  const mira::bytes::ByteSpan structures =
      mira::bytes::Slice(firmware_table, mira::smbios::kFirmwareHeaderSize);
  Bytes file(kEntry);
  mira::bytes::Writer entry(file, 0);
  entry.Bytes(mira::bytes::AsBytes("_SM3_"));
  entry.Number(0, 1);     // checksum
  entry.Number(0x18, 1);  // length
  for (const unsigned number : {3u, 2u, 0u, 1u, 0u}) entry.Number(number, 1);
  entry.Number(structures.size(), 4);
  entry.Number(kEntry, 8);
  if (!entry.Ok()) return {};
  file[5] =
      static_cast<std::uint8_t>(0x100 - std::accumulate(file.begin(), file.end(), 0u) % 0x100);
  file.insert(file.end(), structures.begin(), structures.end());
  return file;
}

// The structures of such a file behind a firmware table's header.
Bytes Load(const char* path) {
  std::ifstream in(path, std::ios::binary);
  Bytes file((std::istreambuf_iterator<char>(in)), {});
  if (file.size() < kEntry) return {};
  file.erase(file.begin(), file.begin() + kEntry - mira::smbios::kFirmwareHeaderSize);
  return file;
}

int Work(const std::string& work, const char* path) {
  const Bytes table = Load(path);
  if (work == "copy") {
    std::cout.write(reinterpret_cast<const char*>(table.data()),
                    static_cast<std::streamsize>(table.size()));
    return 0;
  }
  StructureTable structures;
  if (!structures.Parse(table)) return 1;
  if (work == "dump") {
    for (const auto& [type, head] : structures.Objects()) head->Display(std::cout);
  } else if (work == "attributes") {
    AttributeMap attributes;
    for (const auto& [type, head] : structures.Objects()) head->GetAttributes(attributes);
    if (attributes.empty()) return 1;
  }
  return std::cout.flush().good() ? 0 : 1;
}

double Milliseconds(const timeval& time) {
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
}

// A process that starts another lends it its own peak: that of an interpreter would hide most
// others.
int Watch(char** command) {
  const pid_t child = fork();
  if (child == 0) {
    execv(command[0], command);
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) return 1;
  std::cerr << Milliseconds(usage.ru_utime) + Milliseconds(usage.ru_stime) << ' ' << usage.ru_maxrss
            << '\n';
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  const std::string work = argc > 1 ? argv[1] : "none";
  if (work == "none") return 0;
  if (work == "table" && argc == 5) {
    const auto make =
        argv[2] == std::string("chain") ? mira::bench::ChainTable : mira::bench::MixedTable;
    const Bytes file = Dump(make(std::stol(argv[3])));
    std::ofstream out(argv[4], std::ios::binary);
    out.write(reinterpret_cast<const char*>(file.data()),
              static_cast<std::streamsize>(file.size()));
    return out.flush().good() ? 0 : 1;
  }
  if (work == "watch" && argc > 2) return Watch(argv + 2);
  if (argc == 3) return Work(work, argv[2]);
  std::cerr << "bench_process: see the head of its source\n";
  return 2;
}
