#!/usr/bin/env python3
"""Says how many lines of the parsers the fuzz targets' kept inputs reach.

usage: coverage.py PROFILE PROGRAM...

Prints a line for each group of sources and each source below the goal, and ends with status 1 when
a group is below it.
"""

import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
GOAL = 95.0

# What reads bytes or texts that somebody else made.
PARSERS = {
    "bytes": ["src/bytes/"],
    "SMBIOS table and structures": ["src/smbios/"],
    "device paths": ["src/devicepath/"],
    "replies of the firmware": ["src/buffers/"],
    "attribute tables": ["src/pldm/table_parser.cpp", "src/pldm/tables.cpp", "src/pldm/attribute_convert.cpp",
                         "src/pldm/aci_info2_buffer.cpp", "src/pldm/aci_info2_record.cpp"],
    "files of commands": ["client/smbios_file.cpp", "client/json.cpp", "client/attribute_import.cpp",
                          "client/battery_file.cpp", "client/boot_file.cpp", "client/inventory"],
    "requests": ["client/c/request_text.cpp", "client/c/raw_record.cpp"],
    "profiles and states": ["sim/profile_file.cpp", "sim/state_document.cpp", "sim/profile_fields.cpp"],
}


def main():
    profile, *programs = sys.argv[1:]
    objects = [programs[0]] + [word for program in programs[1:] for word in ("-object", program)]
    report = subprocess.run(["llvm-cov", "export", "-summary-only", f"-instr-profile={profile}", *objects],
                            check=True, stdout=subprocess.PIPE, text=True).stdout
    files = {}
    for entry in json.loads(report)["data"][0]["files"]:
        # Sources are named from the root on, behind the build folder.
        name = entry["filename"].removeprefix(str(ROOT) + "/").removeprefix("build/coverage/")
        files[name] = entry["summary"]["lines"]
    failed = False
    for group, places in PARSERS.items():
        found = {name: lines for name, lines in files.items()
                 if name.endswith(".cpp") and any(name.startswith(place) for place in places)}
        count = sum(lines["count"] for lines in found.values())
        covered = sum(lines["covered"] for lines in found.values())
        percent = 100.0 * covered / count if count else 0.0
        failed = failed or percent < GOAL
        print(f"{percent:5.1f} %  {covered:6} of {count:6} lines  {group}")
        for name, lines in sorted(found.items()):
            if lines["percent"] < GOAL:
                print(f"    {lines['percent']:5.1f} %  {name}: {lines['count'] - lines['covered']} lines missing")
    sys.exit(1 if failed else 0)


main()
