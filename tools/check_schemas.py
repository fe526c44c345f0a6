#!/usr/bin/env python3
"""Runs the console on every simulated machine and checks its documents against docs/json.

usage: tools/check_schemas.py PROGRAM [WORD ...]

With words, only command lines that hold one of them. A document may have no field that its schema does
not name, although readers of documents must allow for more: what a schema forgets is found here.
"""
import concurrent.futures
import json
import os
import pathlib
import subprocess
import sys
import tempfile

import jsonschema

FOLDER = pathlib.Path(__file__).resolve().parent.parent / "docs" / "json"
SECONDS = 300
# The machines on which all command lines run; on the others one of each document's.
THOROUGH = ("laptop", "locked")

# Per schema the command lines whose documents have it. "$FILE" is a saved table; what stands behind "<"
# goes to standard input. Each line works on a new machine.
COMMANDS = {
    "info": ["info"],
    "smbios": [
        "smbios",
        "smbios --attributes --type 17",
        "smbios --handle 0xFFFF",
        "smbios --type 0 --form=dump",
        "smbios --type 300",
        "smbios --save $OUT",
        "smbios --save $OUT --what-if",
        "smbios --file $FILE",
        "smbios --file $CUT",
        "smbios --file $NONE",
    ],
    "inventory": ["inventory", "inventory --file $FILE", "inventory --file $CUT", "inventory --file $NONE"],
    "tokens": ["tokens"],
    "call": [
        "call 0 0 --arg1 0x70",
        "call 0 0 --arg1 1",
        "call 31 0",
        "call 1 0 --arg1 0x70 --arg2 7 --key-arg 3 --password-stdin --what-if < setup1",
        "call 1 0 --arg1 0x70 --arg2 7 --what-if",
    ],
    "password.status": ["password status"],
    "password.verify": [
        "password verify --class 9 --password-stdin < setup1",
        "password verify --class 10 --password-stdin < wrong",
        "password verify --class 11",
    ],
    "password.change": [
        "password change --class 9 --new-password-stdin --yes < Fresh1",
        "password change --class 9 --new-password-stdin --what-if < Fresh1",
        "password change --class 9 --new-password-stdin < Fresh1",
        "password change --class 9 --remove --password-stdin --yes < setup1",
    ],
    "hdd.list": ["hdd list"],
    "hdd.verify": ["hdd verify 1 --password-stdin < drive1", "hdd verify 200 --password-stdin < drive1"],
    "hdd.set": [
        "hdd set 1 --new-password-stdin --yes < drive1",
        "hdd set 1 --new-password-stdin --what-if < drive1",
    ],
    "hdd.clear": ["hdd clear 1 --password-stdin --yes < drive1"],
    "tag.show": ["tag show", "tag show asset", "tag show extended --command 0", "tag show colour"],
    "tag.set": [
        "tag set asset NF-1 --yes",
        "tag set asset a-text-that-is-too-long --what-if",
        "tag set extended Desk --yes",
        "tag set service X",
        "tag set asset NF-1 --password-stdin --yes < setup1",
    ],
    "id.mac.show": ["id mac", "id mac show"],
    "id.eppid.show": ["id eppid show"],
    "id.image-server.show": ["id image-server show"],
    "id.thin-client.show": ["id thin-client show"],
    "id.mac.set": ["id mac set 02:A1:B2:C3:D4:E6 --yes", "id mac set nonsense"],
    "id.eppid.set": ["id eppid set CN0ABCDE1234567890ABA00 --yes", "id eppid set short"],
    "id.image-server.set": ["id image-server set images.example --yes"],
    "id.thin-client.set": ["id thin-client set lobby --what-if"],
    "log": ["log", "log messages", "log scan-codes", "log book"],
    "thermal": ["thermal"],
    "attr.list": ["attr list"],
    "attr.get": ["attr get WakeOnLan", "attr get BootOrder FanFloor", "attr get Nothing"],
    "attr.set": [
        "attr set FanFloor 30 --yes",
        "attr set FanFloor 30 --what-if",
        "attr set FanFloor 3000 --yes",
        "attr set Nothing 1",
    ],
    "attr.reset": ["attr reset FanFloor --yes", "attr reset --all --what-if"],
    "attr.export": ["attr export -"],
    "attr.import": ["attr import $ATTRIBUTES --yes", "attr import $ATTRIBUTES --what-if", "attr import $NONE"],
    "attr.diff": ["attr diff"],
    "boot.list": ["boot list"],
    "boot.show": ["boot show", "boot show 0", "boot show 77"],
    "boot.order": ["boot order 0 3,2,1,0 --yes", "boot order 0 3,2,1,0 --what-if", "boot order 0 3,3"],
    "boot.first": ["boot first 2 --yes", "boot first 2 --what-if", "boot first 200 --yes"],
    "boot.legacy.show": ["boot legacy show"],
    "boot.legacy.set": ["boot legacy set --ipl 1,0,2,3 --yes", "boot legacy set --ipl 1,1 --yes"],
    "boot.decode": ["boot decode $OPTION", "boot decode $NONE"],
    "boot.encode": ["boot encode PciRoot(0x0)/Pci(0x1F,0x2)", "boot encode PciRoot("],
    "battery.show": ["battery show", "battery show --battery 2", "battery show --battery 9"],
    "battery.set": [
        "battery set --mode standard --yes",
        "battery set --mode custom --start 50 --stop 80 --yes",
        "battery set --mode express --what-if",
        "battery set --start 90 --yes",
    ],
}


def expand(schema, schemas, top, part_of_all=False):
    """A copy without references in which objects take no field that is not named."""
    if isinstance(schema, list):
        return [expand(s, schemas, top) for s in schema]
    if not isinstance(schema, dict):
        return schema
    if "$ref" in schema:
        file, _, place = schema["$ref"].partition("#")
        target_top = schemas[file.removesuffix(".schema.json")] if file else top
        target = target_top
        for word in place.strip("/").split("/"):
            target = target[word]
        rest = {k: v for k, v in schema.items() if k != "$ref"}
        expanded = expand(target, schemas, target_top, part_of_all)
        return {"allOf": [expanded, expand(rest, schemas, top, True)]} if rest else expanded
    result = {}
    for key, value in schema.items():
        if key in ("properties", "$defs"):
            result[key] = {k: expand(v, schemas, top) for k, v in value.items() if key == "properties"}
        elif key in ("allOf", "if", "then", "else"):
            parts = value if key == "allOf" else [value]
            parts = [expand(p, schemas, top, True) for p in parts]
            result[key] = parts if key == "allOf" else parts[0]
        else:
            result[key] = expand(value, schemas, top) if key in ("items", "prefixItems", "oneOf", "anyOf") else value
    named = "properties" in schema or "allOf" in schema
    if named and not part_of_all and "additionalProperties" not in schema:
        result["unevaluatedProperties"] = False
    return result


def profiles(program):
    text = subprocess.run([program, "--help"], capture_output=True, text=True, timeout=SECONDS).stdout
    rows = text.split("Simulated machines (PROFILE):")[1].split("\n\n")[0]
    return [row.split(":")[0].strip() for row in rows.strip().splitlines()]


def run(program, profile, line, files, keep):
    words, _, text = line.partition("<")
    arguments = [files.get(word, word) for word in words.split()]
    return subprocess.run(
        [program, f"--sim={profile}", *arguments, "--json"],
        input=text.strip() + "\n", capture_output=True, text=True, timeout=SECONDS,
        env={**os.environ, "MIRA_SIM_STATE": keep})


def problems(result, validator):
    try:
        document = json.loads(result.stdout)
    except ValueError as error:
        return [f"no JSON document: {error}: {result.stdout[:200]!r} {result.stderr[:2000]!r}"]
    found = [f"{'/'.join(map(str, e.absolute_path))}: {e.message[:300]}" for e in validator.iter_errors(document)]
    if result.stderr:
        found.append(f"standard error is not empty: {result.stderr[:300]!r}")
    status = document.get("error", {}).get("code", 0)
    if status != result.returncode:
        found.append(f"exit status {result.returncode}, the document says {status}")
    return found


def main():
    program, wanted = os.path.abspath(sys.argv[1]), sys.argv[2:]
    schemas = {p.name.removesuffix(".schema.json"): json.loads(p.read_text()) for p in sorted(FOLDER.glob("*.schema.json"))}
    validators = {}
    for name, schema in schemas.items():
        jsonschema.Draft202012Validator.check_schema(schema)
        validators[name] = jsonschema.Draft202012Validator(expand(schema, schemas, schema))
    failed = [f"docs/json/{name}.schema.json: no command line is checked against it"
              for name in schemas if name not in COMMANDS and name not in OTHERS]
    lines = [(name, line) for name, some in COMMANDS.items() if name in schemas for line in some
             if not wanted or any(word in line for word in wanted)]
    succeeded = set()
    with tempfile.TemporaryDirectory() as folder:
        files = {f"${n}": os.path.join(folder, n) for n in ("FILE", "CUT", "NONE", "OUT", "ATTRIBUTES", "OPTION")}
        run(program, "laptop", "smbios --save $FILE", files, "")
        table = pathlib.Path(files["$FILE"]).read_bytes()
        pathlib.Path(files["$CUT"]).write_bytes(table[:300])
        pathlib.Path(files["$NONE"]).write_bytes(b"no table")
        pathlib.Path(files["$ATTRIBUTES"]).write_text('{"attributes": [{"name": "FanFloor", "value": 30}]}')
        pathlib.Path(files["$OPTION"]).write_bytes(LOAD_OPTION)
        firsts = {(name, COMMANDS[name][0]) for name in COMMANDS}
        jobs = [(profile, name, line) for profile in profiles(program) for name, line in lines
                if profile in THOROUGH or (name, line) in firsts]
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            results = pool.map(lambda job: run(program, job[0], job[2], files, ""), jobs)
            for (profile, name, line), result in zip(jobs, results):
                if result.returncode == 0:
                    succeeded.add(name)
                failed += [f"--sim={profile} {line}: {p}" for p in problems(result, validators[name])]
    if not wanted:
        failed += [f"{name}: no command line of it succeeded on any machine"
                   for name in COMMANDS if name in schemas and name not in succeeded]
    for problem in failed:
        print(problem)
    print(f"{len(jobs)} documents of {len(schemas)} schemas checked, {len(failed)} problems")
    return 1 if failed else 0


# Schemas of what is no command's document.
OTHERS = {"common", "profile"}

# UEFI specification 3.1.3: attributes, the length of the paths, a description, PciRoot(0x0), the path's end.
LOAD_OPTION = (
    b"\x01\0\0\0" + b"\x10\0" + "Disk\0".encode("utf-16-le") +
    b"\x02\x01\x0C\0\xD0\x41\x03\x0A\0\0\0\0" + b"\x7F\xFF\x04\0")

if __name__ == "__main__":
    sys.exit(main())
