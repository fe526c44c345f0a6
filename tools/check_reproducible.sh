#!/usr/bin/env bash
# Builds the SDK of the last commit twice, in folders of different names and without a compiler cache, and
# compares the bytes: what is shipped must not depend on where, or when, it was built.
# Usage: tools/check_reproducible.sh [FOLDER]   (the two builds stay there; without it they are removed)
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
place=${1:-$(mktemp -d)}
[ $# -gt 0 ] || trap 'rm -rf "$place"' EXIT
mkdir -p "$place"
export CCACHE_DISABLE=1

build() {
  local folder=$1
  [ -e "$folder/build/package" ] && return
  rm -rf "$folder"
  mkdir -p "$(dirname "$folder")"
  git clone --quiet --shared "$root" "$folder"
  git -C "$folder" checkout --quiet "$(git -C "$root" rev-parse HEAD)"
  (cd "$folder" && ./dev package >"$place/$(basename "$folder").log" 2>&1) ||
    { tail -n 40 "$place/$(basename "$folder").log"; exit 1; }
}
build "$place/one"
build "$place/further-down/another"

version=$(sed -n 's/^project(MiraIntf VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
differ=0
for name in "miraintf-$version.zip" "miraintf-$version-symbols.zip"; do
  cmp -s "$place/one/build/package/$name" "$place/further-down/another/build/package/$name" && continue
  differ=1
  echo "$name differs:"
  python3 - "$place/one/build/package/$name" "$place/further-down/another/build/package/$name" <<'COMPARE'
import sys
import zipfile

first, second = (zipfile.ZipFile(name) for name in sys.argv[1:])
names = sorted(set(first.namelist()) | set(second.namelist()))
for name in names:
    here, there = (archive.read(name) if name in archive.namelist() else None for archive in (first, second))
    if here is None or there is None:
        print(f"  {name}: is in one of them only")
    elif here != there:
        at = next((i for i, (a, b) in enumerate(zip(here, there)) if a != b), min(len(here), len(there)))
        print(f"  {name}: {len(here)} and {len(there)} bytes, from offset {at} on")
COMPARE
done
[ "$differ" = 0 ] || exit 1
echo "both builds give the same bytes"
