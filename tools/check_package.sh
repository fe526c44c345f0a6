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
  shared=OFF
  [ "$arch" != x86-shared ] || shared=ON
  cmake -S "$sdk/examples" -B "$place/$arch" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$place/toolchain-$arch.cmake" \
    -DCMAKE_PREFIX_PATH="$sdk" -DMiraIntf_SHARED_RUNTIME=$shared >"$place/$arch.log" || { cat "$place/$arch.log"; exit 1; }
  cmake --build "$place/$arch" >"$place/$arch.log" || { cat "$place/$arch.log"; exit 1; }
  [ "$shared" = OFF ] || cp "$sdk"/x86-shared/bin/lib*.dll "$place/$arch/"
  ctest --test-dir "$place/$arch" --output-on-failure </dev/null
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
