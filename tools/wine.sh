#!/usr/bin/env bash
# Runs a Windows program under 32-bit Wine, in a prefix of the project's own.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX="$root/build/wine" WINEARCH=win32 WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
# The mark is set last, so that a set-up that was interrupted is done again; the lock keeps two
# programs that start together from doing it both.
ready="$WINEPREFIX/.ready"
if [ ! -e "$ready" ]; then
  mkdir -p "$WINEPREFIX"
  (
    flock 9
    [ ! -e "$ready" ] || exit 0
    if ! timeout 300 wineboot --init >/dev/null 2>&1 </dev/null 9>&-; then
      echo "wine: the prefix build/wine could not be set up; './dev clean' and try again" >&2
      exit 1
    fi
    wineserver --wait 9>&-
    touch "$ready"
  ) 9>"$root/build/wine.lock"
fi
# Windows programs see Linux paths on drive Z.
case "${MIRA_TEST_DATA:-}" in
  /*) export MIRA_TEST_DATA="Z:$MIRA_TEST_DATA" ;;
esac
exec wine "$@"
