#!/usr/bin/env bash
# Runs a Windows program under 32-bit Wine, in a prefix of the project's own.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX="${WINEPREFIX:-$root/build/wine}" WINEARCH=win32 WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
if [ ! -e "$WINEPREFIX/system.reg" ]; then
  mkdir -p "$WINEPREFIX"
  wineboot --init >/dev/null 2>&1 </dev/null
  wineserver --wait
fi
# Windows programs see Linux paths on drive Z.
if [ "${MIRA_TEST_DATA:-}" != "" ]; then export MIRA_TEST_DATA="Z:$MIRA_TEST_DATA"; fi
exec wine "$@"
