#!/usr/bin/env python3
"""Packs FOLDER into ARCHIVE so that equal content gives equal bytes: names in order, one time for all.

usage: zip_folder.py ARCHIVE FOLDER SECONDS
"""
import pathlib
import sys
import time
import zipfile


def main():
    archive, folder, seconds = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), int(sys.argv[3])
    moment = time.gmtime(seconds)[:6]
    with zipfile.ZipFile(archive, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as packed:
        for path in sorted(p for p in folder.rglob("*") if p.is_file()):
            name = (pathlib.Path(folder.name) / path.relative_to(folder)).as_posix()
            entry = zipfile.ZipInfo(name, moment)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o100644 << 16
            packed.writestr(entry, path.read_bytes())


if __name__ == "__main__":
    main()
