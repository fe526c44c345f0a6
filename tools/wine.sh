#!/usr/bin/env bash
# Runs a Windows program under Wine, in a prefix of the project's own: a 32-bit one, or with --64 first a
# 64-bit one.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
bits=32
if [ "${1:-}" = --64 ]; then
  bits=64
  shift
fi
wine=wine
if [ "$bits" = 64 ]; then
  # Debian keeps the 64-bit loader beside the other one, which "wine" prefers.
  for wine in /usr/lib/wine/wine64 "$(command -v wine64 || true)" wine; do
    [ -x "$wine" ] && export WINELOADER="$wine" && break
  done
fi
name=wine
[ "$bits" = 32 ] || name=wine64
export WINEPREFIX="$root/build/$name" WINEARCH="win$bits" WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
# The mark is set last, so that a set-up that was interrupted is done again; the lock keeps two
# programs that start together from doing it both.
ready="$WINEPREFIX/.ready"
if [ ! -e "$ready" ]; then
  mkdir -p "$WINEPREFIX"
  (
    flock 9
    [ ! -e "$ready" ] || exit 0
    if ! timeout 300 "$wine" wineboot --init >/dev/null 2>&1 </dev/null 9>&-; then
      echo "wine: the prefix build/$name could not be set up; './dev clean' and try again" >&2
      exit 1
    fi
    wineserver --wait 9>&-
    touch "$ready"
  ) 9>"$root/build/$name.lock"
fi
# Windows programs see Linux paths on drive Z.
case "${MIRA_TEST_DATA:-}" in
  /*) export MIRA_TEST_DATA="Z:$MIRA_TEST_DATA" ;;
esac
exec "$wine" "$@"
