#!/usr/bin/env bash
# Runs the examples of the C interface as hosts that other compilers and runtimes built:
# Usage: tools/check_hosts.sh [HOST]
#   C           clang for the MSVC target, linked by lld-link, without a C library; under Wine
#   JavaScript  a 32-bit Node.js for Windows, under Wine
#   C, C++      the system's compilers, on the Linux build
#   Python, C#  ctypes and Mono, on the Linux build
# Needs build/windows and build/hosts (see ./dev hosts).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD
work=build/hosts/work
windows_library="Z:$root/build/windows/bin/sim/miraclient.dll"
linux_library="$root/build/hosts/bin/sim/libmiraclient.so"
# The tours expect this machine.
export MIRA_SIM=locked
# Where a Linux program finds the library.
beside="-Wl,-rpath,\$ORIGIN/../bin/sim"
failed=""

# Runs a host and keeps what it says; it counts as failed unless it ends with 0.
host() {
  local name=$1; shift
  local log="$work/$name.log"
  if "$@" >"$log" 2>&1 </dev/null; then
    echo "hosts: $name: ok"
  else
    echo "hosts: $name: FAILED"
    tail -n 20 "$log"
    failed="$failed $name"
  fi
}

mkdir -p "$work"

c_windows() {
  local target=(--target=i686-pc-windows-msvc)
  llvm-dlltool -m i386 -d client/c/miraclient.def -l "$work/miraclient.lib"
  llvm-dlltool -m i386 -k -d tests/hosts/kernel32.def -l "$work/kernel32.lib"
  local source
  for source in examples/c/tour.c tests/hosts/freestanding.c; do
    clang "${target[@]}" -std=c99 -Wall -Wextra -Werror -O1 -ffreestanding -fno-stack-protector \
      -isystem tests/hosts/include -Iclient/c -c "$source" -o "$work/$(basename "$source" .c).obj"
  done
  lld-link /nologo /machine:x86 /subsystem:console /entry:mainCRTStartup /nodefaultlib /safeseh:no \
    /out:"$work/tour.exe" "$work/tour.obj" "$work/freestanding.obj" "$work/miraclient.lib" "$work/kernel32.lib"
  # A DLL is found beside its program.
  cp build/windows/bin/sim/miraclient.dll "$work/"
  tools/wine.sh "$work/tour.exe"
}

javascript_windows() {
  local modules=build/hosts/npm
  mkdir -p "$modules"
  [ -e "$modules/node_modules/node-win-x86/bin/node.exe" ] &&
    [ -e "$modules/node_modules/@koromix/koffi-win32-ia32" ] ||
    npm install --prefix "$modules" --no-save --no-package-lock --no-audit --no-fund --ignore-scripts --force \
      node-win-x86@22 koffi@3 @koromix/koffi-win32-ia32@3
  NODE_SKIP_PLATFORM_CHECK=1 NODE_PATH="Z:$root/$modules/node_modules" \
    tools/wine.sh "$modules/node_modules/node-win-x86/bin/node.exe" "Z:$root/examples/javascript/tour.js" \
    "$windows_library"
}

c_linux() {
  cc -std=c99 -Wall -Wextra -Werror -pedantic -Iclient/c examples/c/tour.c -o "$work/tour_c" "$linux_library" "$beside"
  "$work/tour_c"
}

cpp_linux() {
  local compiler standard
  for compiler in g++ clang++; do
    for standard in c++11 c++20; do
      "$compiler" -std="$standard" -Wall -Wextra -Werror -pedantic -Iclient/c examples/cpp/tour.cpp \
        -o "$work/tour_cpp" "$linux_library" "$beside" -pthread
      "$work/tour_cpp"
    done
  done
}

python_linux() {
  PYTHONDONTWRITEBYTECODE=1 python3 examples/python/tour.py "$linux_library"
}

csharp_linux() {
  mcs -warnaserror -out:"$work/Tour.exe" examples/csharp/*.cs
  LD_LIBRARY_PATH=$(dirname "$linux_library") mono "$work/Tour.exe"
}

exports() {
  [ "$(nm -D --defined-only "$linux_library" | awk '{print $3}' | LC_ALL=C sort)" = \
    "$({ sed -n 's/^  \(mira_.*\)/\1/p' client/c/miraclient.def; echo mira_sim_control; } | LC_ALL=C sort)" ]
}

if [ $# -gt 0 ]; then
  "$1"
  exit
fi
# Each in a shell of its own, which its first failing command ends.
for name in exports c_linux cpp_linux python_linux csharp_linux c_windows javascript_windows; do
  host "$name" tools/check_hosts.sh "$name"
done
[ -z "$failed" ] || { echo "hosts: failed:$failed" >&2; exit 1; }
