#!/usr/bin/env bash
# Installs the library, moves the prefix, and builds the program of README.md against it by find_package and by pkg-config,
# static and shared; runs each headless for a moment.
#   package_test.sh SOURCE-DIR BUILD-DIR WORK-DIR
# BUILD-DIR is configured and built here, with shared libraries and without tests; WORK-DIR is emptied first.
set -euo pipefail
source=$1 build=$2 work=$3
cxx=${CXX:-c++}
export CMAKE_GENERATOR=${CMAKE_GENERATOR:-Ninja}

fail() { echo "FAILED: $*" >&2; exit 1; }

mkdir -p "$build"
cmake -S "$source" -B "$build" -DKRS_TESTS=OFF -DKRS_APPS=OFF -DKRS_BENCH=OFF -DKRS_SHARED=ON >"$build/configure.log" ||
  { cat "$build/configure.log"; fail "configure"; }
cmake --build "$build" ${KRS_JOBS:+-j "$KRS_JOBS"} >"$build/build.log" || { tail -n 50 "$build/build.log"; fail "build"; }

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/moved"  # whatever remembers the first place is found out below
prefix=$work/moved

# The licence of the built-in font, the samples, and a library of each kind.
for file in share/krsdisp/fonts/LICENSE share/krsdisp/LICENSE share/krsdisp/samples/conveyor.png; do
  [ -s "$prefix/$file" ] || fail "$file is not installed"
done
pc=$(find "$prefix" -name krsdisp.pc)
[ -n "$pc" ] || fail "krsdisp.pc is not installed"
lib=$(dirname "$(dirname "$pc")")
for name in krsstd krsacq krsplat krsdispc krsdisp; do
  [ -s "$lib/lib$name.a" ] || fail "lib$name.a is not installed"
  [ -s "$lib/lib$name.so" ] || fail "lib$name.so is not installed"
done
! grep -rlF -e "$source/" -e "$build" -e "$work/first" "$lib/pkgconfig" "$lib/cmake" "$prefix/include" ||
  fail "the files above name a place of the build"

# Each header that an installed header names is installed.
missing=$(cd "$prefix/include/krsdisp" && grep -rhoE --include='*.h' '^#include "[^"]+"' . | sort -u | cut -d'"' -f2 |
  while read -r header; do [ -f "$header" ] || echo "$header"; done)
[ -z "$missing" ] || fail "headers not installed: $missing"

# The program is README.md's block of C++ that has a main.
awk '/^```cpp/ { inside = 1; block = ""; next }
     /^```/ { if (inside && block ~ /int main/) printf "%s", block; inside = 0 }
     inside { block = block $0 "\n" }' "$source/README.md" >"$work/program.cpp"
grep -q 'int main' "$work/program.cpp" || fail "README.md shows no program"

# Runs a program headless; its window stays until the program is ended. Where it finds the shared libraries is in it.
run() {
  local status=0
  env -u DISPLAY -u WAYLAND_DISPLAY timeout 2 "$1" >"$1.out" 2>&1 || status=$?
  [ $status -eq 124 ] || { cat "$1.out"; fail "$1 ended with $status instead of waiting for its operator"; }
}
uses() {
  local libraries
  libraries=$(ldd "$1")
  case "$2" in
  shared)
    for name in krsstd krsacq krsplat krsdispc krsdisp; do
      grep -qE "lib$name\.so[^ ]* => $lib/" <<<"$libraries" || { echo "$libraries"; fail "$1 does not use lib$name.so"; }
    done ;;
  static)
    ! grep -E "libkrs" <<<"$libraries" || fail "$1 uses shared libraries" ;;
  esac
}

for kind in static shared; do
  cmake -S "$source/tests/house/package_test" -B "$work/cmake_$kind" -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_PREFIX_PATH="$prefix" -DKIND=$kind -DPROGRAM="$work/program.cpp" >"$work/cmake_$kind.log" ||
    { cat "$work/cmake_$kind.log"; fail "find_package, $kind"; }
  cmake --build "$work/cmake_$kind" >>"$work/cmake_$kind.log" || { cat "$work/cmake_$kind.log"; fail "build, $kind"; }
  uses "$work/cmake_$kind/by_cmake_$kind" $kind
  run "$work/cmake_$kind/by_cmake_$kind"
done

export PKG_CONFIG_PATH=$lib/pkgconfig
[ "$(pkg-config --print-requires-private krsdisp)" = "" ] || fail "krsdisp.pc asks users of shared libraries for more"
"$cxx" -std=c++20 $(pkg-config --cflags krsdisp) -c "$work/program.cpp" -o "$work/program.o"
"$cxx" "$work/program.o" $(pkg-config --libs krsdisp) -Wl,-rpath,"$lib" -o "$work/by_pkg_shared"
uses "$work/by_pkg_shared" shared
run "$work/by_pkg_shared"
"$cxx" "$work/program.o" $(pkg-config --libs krsdisp-static) -o "$work/by_pkg_static"
uses "$work/by_pkg_static" static
run "$work/by_pkg_static"

# A prefix with the static libraries alone serves krsdisp.pc, too.
rm "$lib"/libkrs*.so*
"$cxx" "$work/program.o" $(pkg-config --static --libs krsdisp) -o "$work/by_pkg_static_only"
uses "$work/by_pkg_static_only" static
run "$work/by_pkg_static_only"
echo "Built by find_package and by pkg-config, static and shared, and ran."
