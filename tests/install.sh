#!/usr/bin/env bash
# Installs the build, whole and by components, and has a program use the library in every way.
#   install.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
source=$(realpath "$1") build=$(realpath "$2")
work=$(mktemp -d "${TMPDIR:-/tmp}/zarnsys-install-XXXXXX")
trap 'rm -rf "$work"' EXIT
cd "$work"
die() { echo "FAILED: $*" >&2; exit 1; }

cached() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }
flags=$(cached CMAKE_CXX_FLAGS)
compiler=$(cached CMAKE_CXX_COMPILER)
settings=(-G "$(cached CMAKE_GENERATOR)" -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_CXX_FLAGS="$flags")

# by_cmake NAME OPTION...: the consumer built in the folder NAME
by_cmake() {
    { cmake -S "$source/tests/install" -B "$1" "${settings[@]}" "${@:2}" && cmake --build "$1"; } >log 2>&1 ||
        die "the consumer '$1' does not build: $(cat log)"
    "$1/consumer" 2>/dev/null || die "the consumer '$1' does not work"
}
# by_pkg_config NAME PREFIX
by_pkg_config() {
    local directory
    directory=$(dirname "$(find "$work/$2" -name zarnsysutil.pc)")
    # shellcheck disable=SC2046,SC2086 # flags are words
    "$compiler" -std=c++17 $flags "$source/tests/install/main.cpp" -o "$1" \
        $(PKG_CONFIG_PATH="$directory" pkg-config --cflags --libs zarnsysutil) \
        -Wl,-rpath,"$(dirname "$directory")" || die "the consumer '$1' does not build"
    "./$1" 2>/dev/null || die "the consumer '$1' does not work"
}

cmake --install "$build" --prefix "$work/prefix" >log
by_cmake installed -DCMAKE_PREFIX_PATH="$work/prefix"
by_cmake build-tree -DZarnSysUtil_DIR="$build"
by_cmake fetched -DHOW=fetched -DZARNSYS_SOURCE="$source"
by_cmake subdirectory -DHOW=subdirectory -DZARNSYS_SOURCE="$source" -DBUILD_SHARED_LIBS=OFF -DZARNSYS_INSTALL=ON
cmake --install subdirectory --prefix "$work/static" >log
by_cmake installed-static -DCMAKE_PREFIX_PATH="$work/static"
by_pkg_config pkg-config prefix
by_pkg_config pkg-config-static static
for consumer in subdirectory/consumer installed-static/consumer pkg-config-static; do
    ! readelf -d "$consumer" | grep -q ZarnSysUtil || die "$consumer needs a shared library of ours"
done
cmake -S "$source/tests/install/versions" -B versions "${settings[@]}" -DCMAKE_PREFIX_PATH="$work/prefix" >log 2>&1 ||
    die "versions: $(cat log)"

# Another project gets the library and what is in its name, nothing else.
foreign=$(grep -oE '^[A-Za-z_][^:]*:' fetched/CMakeCache.txt |
    grep -vE '^(HOW|Consumer_.*|_?CMAKE_.*|_?_?(ZARNSYS|FETCHCONTENT|PKG_CONFIG)_.*|ZarnSysUtil_(BINARY_DIR|SOURCE_DIR|IS_TOP_LEVEL)|(__pkg_config_.*|pkgcfg_lib)_ZARNSYS_.*|prefix_result|FIND_PACKAGE_MESSAGE_DETAILS_.*|GIT_EXECUTABLE.*):' || true)
[ -z "$foreign" ] || die "in the cache of another project: $foreign"
! grep -E '^CMAKE_INSTALL_(RPATH|[A-Z]*DIR):' fetched/CMakeCache.txt || die "these are set in the cache of another project"
cmake --install fetched --prefix "$work/nothing" >log
[ ! -e nothing ] || die "installed by another project: $(find nothing -type f)"
(cd fetched && ctest -N 2>&1) | grep -qE 'No tests|Total Tests: 0' || die "another project gets our tests"
made=$(cmake --build fetched --target help | grep -oE '(zarn-|example-|Continuous|[A-Z][A-Za-z]*Test\b)[a-z]*' | head -n 1 || true)
[ -z "$made" ] || die "another project gets the target $made"

# Each component alone; together they are all that is installed.
list() { (cd "$1" && find . ! -type d | sort); }
while read -r component expected; do
    mkdir -p "$work/components/$component"  # what was not built leaves it empty
    cmake --install "$build" --prefix "$work/components/$component" --component "$component" >log
    other=$(list "components/$component" | grep -vE "^\./($expected)" || true)
    [ -z "$other" ] || die "the component $component has $other"
done <<'END'
Runtime         lib/([^/]*/)?libZarnSysUtil\.so\..*
Development     (include/zarnsys/util/|lib/([^/]*/)?(libZarnSysUtil\.so$|cmake/|pkgconfig/)).*
Programs        (bin/|lib/([^/]*/)?zarnsysutil/libACE\.so$|lib/(systemd/system|sysusers.d|tmpfiles.d)/zarn-ingest\.(service|conf)$|share/(man/man[15]/|bash-completion/|zsh/(site-functions|vendor-completions)/_|fish/vendor_completions.d/|doc/.*/examples/(zarn-ingest|sites)\.ini$)).*
Documentation   share/doc/.*
Python          (lib|lib/[^/]*|local/lib)/python3[^/]*/.*
END
(cd components && for component in *; do list "$component"; done) | sort | diff - <(list prefix) ||
    die "the components are not what is installed"
grep -q "^ExecStart=$work/prefix/bin/zarn-ingest " "$(find prefix/lib -name zarn-ingest.service)" ||
    die "the service is not that of the prefix"

library=$(find prefix -name libZarnSysUtil.so.0)
libdir=$(realpath "$(dirname "$library")")
# A package's programs have no path to the library: the loader knows its directory.
! grep -q '^CMAKE_INSTALL_RPATH:[A-Z]*=$' "$build/CMakeCache.txt" || export LD_LIBRARY_PATH="$libdir"
prefix/bin/zarn-ingest --version >/dev/null || die "the installed program does not run"
PATH=$work/prefix/bin:$PATH bash -c '. "$1" && complete -p zarn-moon' bash \
    prefix/share/bash-completion/completions/zarn-moon >log || die "no completion of options"
# Programs may put their own calls before the system's, and include headers without their folders.
called=$(nm -D --undefined-only "$library")
for call in chmod close fchmod fcntl glob globfree mkdir nanosleep open read remove rename stat statvfs system write; do
    grep -qE " (__x)?$call(@|\$)" <<<"$called" || [ "$(getconf LONG_BIT)" = 32 ] ||
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
