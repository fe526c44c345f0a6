#!/usr/bin/env python3
"""Checks that every include keeps to the order of the rooms.

The library's rooms lie one above the other: a source includes its own room and those below it.
Prints each include that does not, and ends with status 1 when there is one.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent

# From the floor to the roof.
LIBRARY = ["platform", "bytes", "transport", "smbios", "devicepath", "buffers", "callif", "pldm", "facade"]

# Sources that exist to know every class.
KNOW_EVERYBODY = {"src/smbios/structure_factory.cpp", "src/buffers/buffer_factory.cpp"}

# The simulator's own machine for the C interface, chosen at link time.
SEAMS = {("sim/client_machine.cpp", "client")}

# What hosts and their tests include by its bare name, as the SDK has it.
HOST_HEADERS = {
    "mira_client.h": {"examples"},
    "mira_client.hpp": {"examples"},
    "mira_sim.h": {"sim"},
    "mira_sim_gtest.h": {"examples", "tests"},
}

# What the rooms outside the library may include, besides themselves; "library" is all of it, "public"
# its public headers.
OUTSIDE = {
    "support": set(),
    "sim": {"library", "support"},
    "client": {"public", "support"},
    "console": {"public", "client", "sim", "support"},
    "examples": {"public", "client", "sim"},
    "integrations": {"public", "client", "support"},
    "bench": {"library", "sim", "support", "client"},
    "fuzz": {"library", "sim", "support", "client", "console"},
    "tests": {"library", "sim", "support", "client", "console"},
}

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')


def public_headers():
    lines = (ROOT / "cmake/public_headers.txt").read_text().splitlines()
    return {line for line in lines if line and not line.startswith("#")}


def fault(source, included, public):
    """Why the source may not include that, or None."""
    room, first = source.split("/")[0], included.split("/")[0]
    if room == "src":
        if first not in LIBRARY:
            return f"the library includes {first}/"
        own = source.split("/")[1]
        if own not in LIBRARY:
            return f"the room src/{own} has no place in the order"
        if LIBRARY.index(first) > LIBRARY.index(own) and source not in KNOW_EVERYBODY:
            return f"{own}/ lies below {first}/"
        return None
    if first in LIBRARY:
        if "library" in OUTSIDE[room]:
            return None
        if "public" not in OUTSIDE[room]:
            return f"{room}/ knows nothing of the library"
        return None if included in public else "is no public header (cmake/public_headers.txt)"
    if first == room or first in OUTSIDE[room] or (source, first) in SEAMS:
        return None
    if room in HOST_HEADERS.get(included, set()):
        return None
    # An example that is several sources finds its own headers beside it.
    if room == "examples" and (ROOT / source).with_name(included).is_file():
        return None
    return f"{room}/ does not include {first}/"


def main():
    public = public_headers()
    faults = []
    for header in sorted(public):
        if not (ROOT / "src" / header).is_file():
            faults.append(f"cmake/public_headers.txt: there is no src/{header}")
    for room in ["src", *OUTSIDE]:
        for path in sorted((ROOT / room).rglob("*")):
            if path.suffix not in {".h", ".cpp"}:
                continue
            source = path.relative_to(ROOT).as_posix()
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                match = INCLUDE.match(line)
                reason = fault(source, match[1], public) if match else None
                if reason:
                    faults.append(f"{source}:{number}: \"{match[1]}\": {reason}")
                # A public header is of no use to a host without those that it includes.
                if match and source[4:] in public and room == "src" and match[1] not in public:
                    faults.append(f"{source}:{number}: \"{match[1]}\": is included by a public header and is none")
    print("\n".join(faults), end="\n" if faults else "")
    return 1 if faults else 0


sys.exit(main())
