#!/usr/bin/env bash
# Installs the Debian packages that a task needs, and nothing that is there already.
# Usage: tools/setup.sh native|windows|windows64|bench|fuzz|hosts|package|reference|report|fleet|format|tidy|clang|check ...
set -euo pipefail

declare -A packages=(
  [native]="g++ lld dmidecode cmake ninja-build git python3 python3-jsonschema googletest libcli11-dev nlohmann-json3-dev"
  [windows]="g++-mingw-w64-i686-posix cmake ninja-build git googletest libcli11-dev nlohmann-json3-dev python3 python3-jsonschema wine wine32:i386"
  [windows64]="g++-mingw-w64-x86-64-posix cmake ninja-build git googletest libcli11-dev nlohmann-json3-dev python3 python3-jsonschema wine wine64"
  [bench]="g++ cmake dmidecode ninja-build git libbenchmark-dev libcli11-dev nlohmann-json3-dev python3"
  [fuzz]="clang libclang-rt-14-dev cmake ninja-build git nlohmann-json3-dev"
  [hosts]="g++ clang lld llvm cmake ninja-build git libcli11-dev nlohmann-json3-dev mono-mcs mono-runtime libmono-system-core4.0-cil python3 npm"
  [package]="git llvm python3 cmake ninja-build"
  [reference]="doxygen python3"
  [report]="chromium fonts-ipafont-gothic nodejs"
  [fleet]="ansible-core openssh-client openssh-server python3"
  [format]="clang-format git"
  [tidy]="clang clang-tidy libclang-rt-14-dev"
  [clang]="clang libclang-rt-14-dev lld cmake ninja-build git python3 python3-jsonschema googletest libcli11-dev nlohmann-json3-dev"
  [check]="python3"
)

wanted=""
for task in "$@"; do
  [ -n "${packages[$task]:-}" ] || { echo "setup: unknown task '$task'" >&2; exit 2; }
  wanted="$wanted ${packages[$task]}"
done

# Node.js from elsewhere brings npm along, and Debian's does not go with it.
is_installed() {
  [ "$1" != nodejs ] || ! command -v node >/dev/null || return 0
  [ "$1" != npm ] || ! command -v npm >/dev/null || return 0
  [ "$(dpkg-query -W -f='${Status}' "$1" 2>/dev/null)" = "install ok installed" ]
}

missing=""
for package in $(printf '%s\n' $wanted | sort -u); do
  is_installed "$package" || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

if ! command -v apt-get >/dev/null; then
  echo "setup: this script installs Debian packages; please install by hand:$missing" >&2
  exit 1
fi
as_root=""
if [ "$(id -u)" != 0 ]; then
  command -v sudo >/dev/null || { echo "setup: run as root, or install sudo; missing:$missing" >&2; exit 1; }
  as_root="sudo"
fi
echo "setup: installing$missing"
export DEBIAN_FRONTEND=noninteractive
run() { $as_root env DEBIAN_FRONTEND=noninteractive "$@" </dev/null; }
case "$missing" in
  *:i386*) dpkg --print-foreign-architectures | grep -qx i386 || run dpkg --add-architecture i386 ;;
esac
# One suite's index may fail to download; what is needed comes from the others.
log="$(dirname "${BASH_SOURCE[0]}")/../build/setup.log"
mkdir -p "$(dirname "$log")"
run apt-get update >"$log" 2>&1 || true
# Wine's two halves must come from one suite, or they do not fit together.
release=$(. /etc/os-release && echo "${VERSION_CODENAME:-}")
if ! run apt-get install -y --no-install-recommends -o DPkg::Lock::Timeout=300 ${release:+-t "$release"} $missing >>"$log" 2>&1; then
  reason=$(grep '^E: ' "$log" | tail -n 1 || true)
  echo "setup: apt-get could not install$missing (${reason:-no reason given}; see build/setup.log)" >&2
  exit 1
fi
