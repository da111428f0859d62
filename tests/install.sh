#!/usr/bin/env bash
# Installs the build and uses it from outside, by CMake and by pkg-config.
#   install.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
source=$(realpath "$1") build=$(realpath "$2")
work=$(mktemp -d "${TMPDIR:-/tmp}/zarnsys-install-XXXXXX")
trap 'rm -rf "$work"' EXIT
cd "$work"
die() { echo "FAILED: $*" >&2; exit 1; }

cmake --install "$build" --prefix "$work/prefix" >log
flags=$(sed -n 's/^CMAKE_CXX_FLAGS:STRING=//p' "$build/CMakeCache.txt")
generator=$(sed -n 's/^CMAKE_GENERATOR:INTERNAL=//p' "$build/CMakeCache.txt")
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$build/CMakeCache.txt")
library=$(find prefix -name libZarnSysUtil.so.0)
[ -n "$library" ] || die "no libZarnSysUtil.so.0 installed"
libdir=$(realpath "$(dirname "$library")")

cmake -S "$source/tests/install" -B cmake -G "$generator" -DCMAKE_PREFIX_PATH="$work/prefix" \
    -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags" >log
cmake --build cmake >log || die "the consumer does not build: $(cat log)"
cmake/consumer 2>/dev/null || die "the consumer built by CMake does not work"

# shellcheck disable=SC2046,SC2086 # flags are words
"$compiler" -std=c++17 $flags "$source/tests/install/main.cpp" -o consumer \
    $(PKG_CONFIG_PATH="$libdir/pkgconfig" pkg-config --cflags --libs zarnsysutil) -Wl,-rpath,"$libdir"
./consumer 2>/dev/null || die "the consumer built by pkg-config does not work"

# A package's programs have no path to the library: the loader knows its directory.
[ -n "$(sed -n 's/^CMAKE_INSTALL_RPATH:STRING=//p' "$build/CMakeCache.txt")" ] || export LD_LIBRARY_PATH="$libdir"
prefix/bin/zarn-ingest --version >/dev/null || die "the installed program does not run"
# Programs may put their own calls before the system's, and include headers without their folders.
called=$(nm -D --undefined-only "$library")
for call in chmod close fchmod fcntl glob globfree mkdir nanosleep open read remove rename stat statvfs system write; do
    grep -qE " $call(@|\$)" <<<"$called" || [ "$(getconf LONG_BIT)" = 32 ] ||
        die "the library does not call $call by this name"
done
for header in prefix/include/zarnsys/util/*.h; do
    # shellcheck disable=SC2046 # flags are words
    "$compiler" -std=c++17 -fsyntax-only -include "$(basename "$header")" -iquote prefix/include/zarnsys/util \
        $(pkg-config --cflags ACE cfitsio) -x c++ - </dev/null || die "$header needs its folder"
done
leaks=$(nm -DC --defined-only "$library" | cut -d' ' -f3- |
    grep -vE '^(vtable for |typeinfo (name )?for )?(FileIO|GenConfig|WexoLogConfig|WexoProperties|WexoTime|ZarnMoonVal|ZarnSys|ZarnSysEx|ZarnSysFits|adj_time|altit|atan_circ|computeMoonGrid|computeMoonParam|computeSkyGrid|flmoon|getTelescopeCoord|lpmoon|lpsun|lst|lun_age|lunskybright|subtend|telescopePlace)\b|^ZARNSYSUTIL_0$' || true)
[ -z "$leaks" ] || die "symbols beyond the public interface: $leaks"
# Sanitizers record paths of their own.
[[ $flags == *-fsanitize=* ]] || ! grep -rlF "$source" prefix/bin "$libdir"/*.so* || die "build paths in these"
for file in FileIO Utils StringUtils WexoTime; do
    grep -qaE "@\(#\) \\\$Id: $file\.cpp,v [0-9]+\.[0-9]+\.[0-9]+ [0-9]{4}/[0-9]{2}/[0-9]{2} \\\$" "$library" ||
        die "no identification of $file.cpp"
done
