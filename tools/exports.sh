#!/usr/bin/env bash
# Writes down what the DLL exports, for tests/api/exports.txt. Look at the difference before you commit it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
{
  echo "# The symbols that miraintf.dll exports, one a line. Made by tools/exports.sh."
  i686-w64-mingw32-objdump -p build/windows/bin/miraintf.dll |
    sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/p' | awk '/\[ *[0-9]+\]/ {print $NF}' | c++filt | LC_ALL=C sort -u
} >tests/api/exports.txt
