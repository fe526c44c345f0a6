#!/usr/bin/env python3
"""Writes the notices and the bill of materials (SPDX 2.3) of the SDK in FOLDER.

usage: sbom.py FOLDER VERSION SECONDS

SECONDS since 1970 is the time that the bill names: the commit's, so that two builds of it agree.
"""
import datetime
import hashlib
import json
import pathlib
import subprocess
import sys
import uuid

# What is linked into the programs, by Debian's package: name, licence, where it is.
PARTS = [
    ("nlohmann-json3-dev", "JSON for Modern C++", "MIT", "miraclient.dll and mira.exe"),
    ("libcli11-dev", "CLI11", "BSD-3-Clause", "mira.exe"),
    ("g++-mingw-w64-i686-posix-runtime", "GCC runtime libraries", "GPL-3.0-or-later WITH GCC-exception-3.1", "every DLL and EXE"),
    ("mingw-w64-i686-dev", "mingw-w64 runtime and winpthreads", "ZPL-2.1 AND MIT", "every DLL and EXE"),
]


def package(name):
    """The package's version and the text of its copyright file; None where it is not installed."""
    for candidate in (name, name.removesuffix("-runtime")):
        found = subprocess.run(["dpkg-query", "-W", "-f=${Version}", candidate], capture_output=True, text=True)
        text = pathlib.Path(f"/usr/share/doc/{candidate}/copyright")
        if found.returncode == 0 and found.stdout and text.exists():
            return found.stdout, text.read_text(encoding="utf-8", errors="replace")
    sys.exit(f"the package {name} is not installed, so that its licence cannot be told")


def main():
    folder, version, seconds = pathlib.Path(sys.argv[1]), sys.argv[2], int(sys.argv[3])
    notices = ["What others have written and is part of the programs in this archive.\n"]
    packages = [{
        "SPDXID": "SPDXRef-MiraIntf", "name": "MiraIntf", "versionInfo": version,
        "downloadLocation": "NOASSERTION", "filesAnalyzed": False, "licenseConcluded": "NOASSERTION",
        "licenseDeclared": "NOASSERTION", "copyrightText": "NOASSERTION",
    }]
    relations = [{"spdxElementId": "SPDXRef-DOCUMENT", "relationshipType": "DESCRIBES",
                  "relatedSpdxElement": "SPDXRef-MiraIntf"}]
    for number, (debian, name, licence, where) in enumerate(PARTS):
        part_version, text = package(debian)
        notices.append(f"{'=' * 78}\n{name} {part_version} ({licence}), in {where}\n{'=' * 78}\n\n{text}")
        packages.append({
            "SPDXID": f"SPDXRef-Part-{number}", "name": name, "versionInfo": part_version,
            "downloadLocation": "NOASSERTION", "filesAnalyzed": False, "licenseConcluded": licence,
            "licenseDeclared": licence, "copyrightText": "NOASSERTION", "comment": f"in {where}",
        })
        relations.append({"spdxElementId": "SPDXRef-MiraIntf", "relationshipType": "STATIC_LINK",
                          "relatedSpdxElement": f"SPDXRef-Part-{number}"})
    (folder / "THIRD-PARTY-NOTICES.txt").write_text("\n".join(notices), encoding="utf-8", newline="\n")
    files = []
    for number, path in enumerate(sorted(p for p in folder.rglob("*") if p.is_file())):
        name = path.relative_to(folder).as_posix()
        files.append({
            "SPDXID": f"SPDXRef-File-{number}", "fileName": f"./{name}",
            "checksums": [{"algorithm": kind, "checksumValue": hashlib.new(kind.lower(), path.read_bytes()).hexdigest()}
                          for kind in ("SHA1", "SHA256")],
            "licenseConcluded": "NOASSERTION", "copyrightText": "NOASSERTION",
        })
        relations.append({"spdxElementId": "SPDXRef-MiraIntf", "relationshipType": "CONTAINS",
                          "relatedSpdxElement": f"SPDXRef-File-{number}"})
    content = hashlib.sha256(json.dumps(files).encode()).hexdigest()
    bill = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT",
        "name": f"miraintf-{version}", "documentNamespace": f"urn:uuid:{uuid.uuid5(uuid.NAMESPACE_OID, content)}",
        "creationInfo": {
            "created": datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ"),
            "creators": ["Tool: tools/sbom.py"],
        },
        "packages": packages, "files": files, "relationships": relations,
    }
    (folder / "sbom.spdx.json").write_text(json.dumps(bill, indent=1) + "\n", encoding="utf-8", newline="\n")


if __name__ == "__main__":
    main()
