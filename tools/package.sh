#!/usr/bin/env bash
# Puts the SDK together from what the Windows presets have built: build/package/miraintf-VERSION.zip, and
# the debug symbols beside it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
version=$(sed -n 's/^project(MiraIntf VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
seconds=$(git log -1 --format=%ct)
# Programs that are stripped name this time and not that of the day.
export SOURCE_DATE_EPOCH="$seconds"
name="miraintf-$version"
folder="build/package/$name"
symbols="build/package/$name-symbols"
rm -rf build/package
mkdir -p "$folder"
for preset in windows windows64; do cmake --install "build/$preset" --prefix "$folder" >/dev/null; done

# C hosts of other compilers link with a .lib.
for folder_and_machine in x86:i386 x64:i386:x86-64; do
  arch=${folder_and_machine%%:*}
  machine=${folder_and_machine#*:}
  [ -e client/c/miraclient.def ] || continue
  llvm-dlltool -m "$machine" -D miraclient.dll -d client/c/miraclient.def -l "$folder/$arch/lib/miraclient.lib"
done

for arch in x86 x86-shared x64; do
  prefix=i686-w64-mingw32
  [ "$arch" != x64 ] || prefix=x86_64-w64-mingw32
  while read -r file; do
    part="$symbols/$arch/${file#"$folder/$arch/"}.debug"
    mkdir -p "$(dirname "$part")"
    "$prefix-objcopy" --only-keep-debug "$file" "$part"
    "$prefix-strip" "$file"
    "$prefix-objcopy" --add-gnu-debuglink="$part" "$file"
  done < <(find "$folder/$arch" \( -name '*.dll' -o -name '*.exe' \) ! -name 'lib*' | sort)
  find "$folder/$arch/lib" -name '*.a' ! -name '*.dll.a' -exec "$prefix-strip" --strip-debug -D {} +
done
tools/sbom.py "$folder" "$version" "$seconds"
tools/zip_folder.py "$folder.zip" "$folder" "$seconds"
tools/zip_folder.py "$symbols.zip" "$symbols" "$seconds"
rm -rf "$folder" "$symbols"
echo "$folder.zip"
