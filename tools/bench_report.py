#!/usr/bin/env python3
"""Runs the benchmarks and reports what they say as ratios, each from one run on one machine.

    bench_report.py PROGRAMS              PROGRAMS: the folder with the built benchmarks
    bench_report.py PROGRAMS --against OTHER   the same of another commit's, and how much has changed

Times are processor time, the least of several repetitions, since the machine may be shared.
"""

import argparse
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import time

KINDS = ("mixed", "chain")
SIZES = (200, 2000, 20000, 60000)
RECORDS = (44, 4096)
BUFFERS = (4096, 32768, 262144)
LOADS = (60, 600, 5000, 20000, 60000)
LOOKUPS = (600, 5000, 60000)


def run(program, arguments):
    """The benchmarks' least processor time in ns each, by name."""
    command = [program, *arguments, "--benchmark_format=json"]
    output = subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    least = {}
    for entry in json.loads(output.stdout)["benchmarks"]:
        if entry["run_type"] != "iteration" or entry.get("error_occurred"):
            continue
        # Small numbers are in ns, since no benchmark here asks for another unit.
        name = entry["run_name"]
        least[name] = min(least.get(name, float("inf")), entry["cpu_time"])
    return least


def measure(folders, seconds, repetitions):
    """One dictionary per folder. The folders take turns, so that none has the quieter machine."""
    results = [{} for _ in folders]
    names = sorted({p.name for folder in folders for p in folder.glob("bench_*_bench")})
    for _ in range(repetitions):
        for folder, result in zip(folders, results):
            for name in names:
                if not (folder / name).exists():
                    continue
                for key, value in run(folder / name, [f"--benchmark_min_time={seconds}"]).items():
                    result[key] = min(result.get(key, float("inf")), value)
    return results


def process(folder, command):
    """Processor time in ms, peak memory in MiB, and ms from the start to the first output."""
    begin = time.monotonic()
    child = subprocess.Popen([folder / "bench_process", "watch", *command], stdin=subprocess.DEVNULL,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    child.stdout.read1(1)
    first = time.monotonic() - begin
    told = child.communicate()[1]
    if child.returncode != 0:
        raise SystemExit(f"bench_report: {command} failed")
    spent, memory = told.split()[-2:]
    return float(spent), int(memory) / 1024, first * 1e3


def least(folder, command, times):
    return tuple(map(min, zip(*(process(folder, command) for _ in range(times)))))


def number(value):
    return f"{value:,.0f}" if value >= 100 else f"{value:.3g}"


def table(head, rows):
    print("| " + " | ".join(head) + " |")
    print("| --- |" + " ---: |" * (len(head) - 1))
    for row in rows:
        print("| " + " | ".join(cell if isinstance(cell, str) else number(cell) for cell in row) + " |")
    print()


def title(text):
    print(f"## {text}\n")


def structures(times, peak):
    title("Structures")
    print("ns for each structure, and how many times what it costs to copy what is read or given: the table's bytes,")
    print("the map of attributes, the dump's text.\n")
    rows = []
    for kind in KINDS:
        for size in SIZES:
            row = [f"{kind}, {size:,}"]
            for what, copy in (("Walk", "WalkCopy"), ("Attributes", "AttributesCopy"), ("DumpAlone", "DumpCopy")):
                spent = times[f"BM_{what}/{kind}/{size}"]
                row += [spent / size, spent / times[f"BM_{copy}/{kind}/{size}"]]
            rows.append(row + [times[f"BM_Dump/{kind}/{size}"] / size])
    table(["table", "walk", "× copy", "attributes", "× copy", "dump", "× copy", "into a string stream"], rows)
    rows = [[what, *(peak("smbios", f"{what}/mixed/{size}") for size in SIZES)]
            for what in ("Walk", "Attributes", "DumpAlone", "Dump")]
    table(["peak memory, MiB", *(f"{size:,}" for size in SIZES)], rows)


def calls(times, peak):
    title("Calls")
    print("ns in the library alone, and how many times that of the array, made and filled byte by byte, and of the")
    print("stores of its bytes alone.\n")
    rows = []
    for record in RECORDS:
        for buffer in BUFFERS:
            key = f"/{record}/{buffer}"
            own = times["BM_Call" + key] - times["BM_Method" + key]
            rows.append([f"{record} bytes in {buffer // 1024} KiB", own, own / times["BM_Array" + key],
                         own / times["BM_Stores" + key], times["BM_Wipe" + key] / own,
                         peak("call", "Call" + key)])
    table(["record", "ns", "× array", "× stores", "part that wipes the reply", "peak memory, MiB"], rows)


def attributes(times, peak):
    title("BIOS attributes")
    print("ns for each attribute loaded, and for a look-up, and how many times (or which part of) a walk of the raw")
    print("tables.\n")
    rows = [[f"{size:,}", times[f"BM_Load/{size}"] / size, times[f"BM_Load/{size}"] / times[f"BM_LoadWalk/{size}"],
             peak("pldm", f"Load/{size}")] for size in LOADS]
    table(["attributes", "load", "× walk", "peak memory, MiB"], rows)
    rows = []
    for size in LOOKUPS:
        walk = times[f"BM_LookUpWalk/{size}"]
        row = [f"{size:,}"]
        for how in ("Handle", "Name"):
            spent = times[f"BM_LookUpBy{how}/{size}"]
            row += [spent, f"1/{number(walk / spent)}"]
        rows.append(row)
    table(["look-up among", "by handle", "of a walk", "by name", "of a walk"], rows)


def paths(times, peak):
    title("Device paths")
    rows = [["text of a path with six nodes", 1e9 / times["WritePath"], peak("device_path", "WritePath")],
            ["path from its text", 1e9 / times["ReadPath"], peak("device_path", "ReadPath")],
            ["load option of a list of 1,024", 1024e9 / times["DecodeOptions/1024"],
             peak("device_path", "DecodeOptions/1024")]]
    table(["", "a second", "peak memory, MiB"], rows)


def processes(folder, console, times):
    title("Whole processes")
    helper = str(folder / "bench_process")
    dmidecode = shutil.which("dmidecode", path="/usr/sbin:/usr/bin:/sbin:/bin")
    rows = []
    with tempfile.TemporaryDirectory() as scratch:
        for kind in KINDS:
            for size in SIZES:
                file = os.path.join(scratch, "pc.bin")
                subprocess.run([helper, "table", kind, str(size), file], check=True)
                own, other, copy = (least(folder, command, times) for command in
                                    ([helper, "dump", file], [dmidecode, "--from-dump", file], [helper, "copy", file]))
                rows.append([f"dump of {size:,}, {kind}", own[0], own[0] / other[0], own[0] / copy[0], own[1], other[1]])
    table(["", "ms", "× dmidecode", "× copy of the table", "peak memory, MiB", "dmidecode's"], rows)
    rows = []
    commands = [["a process that does nothing", [helper, "none"]]]
    if console is not None:
        commands += [["mira " + " ".join(words), [str(console), *words]] for words in
                     (["--version"], ["--help"], ["--sim", "smbios"], ["--sim", "attr", "list"])]
    with tempfile.TemporaryDirectory() as scratch:
        # A machine of its own, which nobody has changed.
        os.environ["MIRA_SIM_STATE"] = scratch
        for name, command in commands:
            spent, memory, first = least(folder, command, 4 * times)
            rows.append([name, first, spent, memory])
    table(["start", "ms to the first output", "ms of processor time", "peak memory, MiB"], rows)


def changes(new, old):
    title("Changes")
    rows = [[name, old[name], new[name], f"{new[name] / old[name]:.2f}"] for name in new if name in old]
    table(["benchmark", "before, ns", "now, ns", "now / before"], rows)
    only = sorted(set(new) - set(old))
    if only:
        print("Not in the other commit: " + ", ".join(only) + "\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("--against", type=pathlib.Path, help="the folder of another commit's benchmarks")
    parser.add_argument("--console", type=pathlib.Path, help="the program mira")
    parser.add_argument("--seconds", default="0.02", help="for each benchmark and repetition")
    parser.add_argument("--repetitions", type=int, default=3)
    arguments = parser.parse_args()
    folder = arguments.programs
    if arguments.against is not None:
        new, old = measure([folder, arguments.against], arguments.seconds, arguments.repetitions)
        changes(new, old)
        return
    times = measure([folder], arguments.seconds, arguments.repetitions)[0]

    def peak(program, name):
        """MiB of a process that runs this benchmark alone."""
        command = [str(folder / f"bench_{program}_bench"), f"--benchmark_filter={name}$", "--benchmark_min_time=0.001"]
        return process(folder, command)[1]

    structures(times, peak)
    calls(times, peak)
    attributes(times, peak)
    paths(times, peak)
    processes(folder, arguments.console, arguments.repetitions)


if __name__ == "__main__":
    main()
