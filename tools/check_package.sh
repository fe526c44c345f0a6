#!/usr/bin/env bash
# Uses the SDK's archive as somebody does who has nothing else: unpacks it in an empty folder, looks at its
# documents, and builds and runs its examples under Wine for each architecture.
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
version=$(sed -n 's/^project(MiraIntf VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt")
archive="$root/build/package/miraintf-$version.zip"
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
python3 -m zipfile -e "$archive" "$place"
sdk="$place/miraintf-$version"

"$root/tools/check_links.py" "$sdk"

# The simulator's builds have one function more than the product's, and the product's have nothing of it.
exports() {
  "$1-objdump" -p "$2" | sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/s/^\t\[[^]]*\][^ ]* *\(.*\)/\1/p' | sed 's/.* //' | LC_ALL=C sort
}
same_exports() {
  local prefix=$1 product=$2 simulator=$3
  [ "$(exports "$prefix" "$product" | wc -l)" -gt 5 ] || { echo "no exports are found in $product"; exit 1; }
  diff <({ exports "$prefix" "$product"; echo mira_sim_control; } | LC_ALL=C sort) <(exports "$prefix" "$simulator") ||
    { echo "$simulator exports something else"; exit 1; }
  ! grep -q "mira_sim_control\|MIRA_SIM" "$product" || { echo "$product holds the simulator's control"; exit 1; }
}

# The same programs beside the product's DLLs: they work on this PC, whatever MIRA_SIM says.
product_hosts() {
  local arch=$1 folder="$place/$1-product" host log status
  shift
  mkdir "$folder"
  cp "$sdk/${arch%-shared}/bin/miraclient.dll" "$sdk/$arch/bin/"*.dll "$folder/"
  for host in tour_c tour_cpp example_host sta_host; do
    cp "$place/$arch/$host.exe" "$folder/"
    log="$folder/$host.log"
    status=0
    MIRA_SIM=lapdog "$@" "$folder/$host.exe" >"$log" 2>&1 </dev/null || status=$?
    case "$host:$status" in
      tour_c:1 | tour_cpp:1 | example_host:1 | sta_host:77) ;;
      *:0) ;;
      *) echo "$arch: $host ended with $status on the product"; cat "$log"; exit 1 ;;
    esac
    ! grep -q lapdog "$log" || { echo "$arch: $host: the product looks at MIRA_SIM"; exit 1; }
  done
  grep -q "open: done" "$folder/tour_c.log" || { cat "$folder/tour_c.log"; exit 1; }
  grep -q "the host has its apartment" "$folder/sta_host.log" || { cat "$folder/sta_host.log"; exit 1; }
}
for arch in x86 x86-shared x64; do
  prefix=i686-w64-mingw32
  runner="$root/tools/wine.sh"
  [ "$arch" != x64 ] || { prefix=x86_64-w64-mingw32; runner="$root/tools/wine.sh;--64"; }
  cat >"$place/toolchain-$arch.cmake" <<TOOLCHAIN
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER $prefix-gcc-posix)
set(CMAKE_CXX_COMPILER $prefix-g++-posix)
set(CMAKE_CROSSCOMPILING_EMULATOR "$runner")
TOOLCHAIN
  same_exports "$prefix" "$sdk/$arch/bin/miraintf.dll" "$sdk/$arch/sim/miraintf.dll"
  [ "$arch" = x86-shared ] ||
    same_exports "$prefix" "$sdk/$arch/bin/miraclient.dll" "$sdk/$arch/sim/miraclient.dll"
  shared=OFF
  gtest=/usr/src/googletest
  [ "$arch" != x86-shared ] || { shared=ON; gtest=; }
  cmake -S "$sdk/examples" -B "$place/$arch" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$place/toolchain-$arch.cmake" \
    -DCMAKE_PREFIX_PATH="$sdk" -DMiraIntf_SHARED_RUNTIME=$shared -DMIRA_GTEST_SOURCE=$gtest >"$place/$arch.log" || { cat "$place/$arch.log"; exit 1; }
  cmake --build "$place/$arch" >"$place/$arch.log" || { cat "$place/$arch.log"; exit 1; }
  [ "$shared" = OFF ] || cp "$sdk"/x86-shared/bin/lib*.dll "$place/$arch/"
  ctest --test-dir "$place/$arch" --output-on-failure </dev/null
  # shellcheck disable=SC2086 # the runner is a program with its arguments
  product_hosts "$arch" ${runner//;/ }
done

# A compiler that does not fit is refused, and says why.
cat >"$place/refused.cmake" <<'PROBE'
set(WIN32 TRUE)
set(CMAKE_SIZEOF_VOID_P 4)
set(CMAKE_CXX_COMPILER_LOADED TRUE)
set(CMAKE_CXX_COMPILER_ID Clang)
set(MiraIntf_FIND_COMPONENTS cpp)
set(MiraIntf_FIND_REQUIRED_cpp TRUE)
function(add_library)
endfunction()
function(set_target_properties)
endfunction()
function(set_property)
endfunction()
include(${CONFIG})
if(MiraIntf_FOUND OR NOT MiraIntf_NOT_FOUND_MESSAGE MATCHES "the compiler is Clang")
  message(FATAL_ERROR "a compiler that does not fit is not refused")
endif()
PROBE
cmake -DCONFIG="$sdk/lib/cmake/MiraIntf/MiraIntfConfig.cmake" -P "$place/refused.cmake"
echo "the archive can be used on its own"
