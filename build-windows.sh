#!/usr/bin/env bash
# Makes dist/Skylantern-<version>-windows.zip on Debian: installs what is missing, builds the libraries and the program
# with mingw-w64, and packs them with the documents, the data and the licences of what is linked in.
#
#   ./build-windows.sh [--tests] [--bench] [--site ADDRESS]
#
# --tests         builds the tests too and runs them with wine, then the packed program beside the stand-ins
# --bench         also measures tick and flush under wine, as a ratio to the Linux build
# --site ADDRESS  the data site that the program fetches from, such as https://data.example.org/downloads/
set -euo pipefail
cd "$(dirname "$0")"

tests=OFF bench=OFF site=
while [ $# -gt 0 ]; do
    case $1 in
        --tests) tests=ON ;;
        --bench) bench=ON ;;
        --site) site=${2:?"--site needs an address"}; shift ;;
        -h | --help) sed -n '2,9p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
        *) echo "unknown option $1, see --help" >&2; exit 2 ;;
    esac
    shift
done

largest_mb=12
build=build/windows
tools/install_packages.sh
tools/install_packages.sh g++-mingw-w64-x86-64-posix libz-mingw-w64-dev libmsgsl-dev nlohmann-json3-dev googletest \
    dpkg-dev xz-utils autoconf automake libtool zip
[ $tests$bench = OFFOFF ] || tools/install_packages.sh wine wine64
SKYLANTERN_WINDOWS_LIBRARIES=$(tools/build_windows_dependencies.sh)
export SKYLANTERN_WINDOWS_LIBRARIES

cmake --preset windows -DSKYLANTERN_TESTS=$tests -DSKYLANTERN_BENCH=$bench "-DSKYLANTERN_SITE_BASE=$site" >/dev/null
cmake --build --preset windows | tail -n 1
# The data are enciphered by a program of this system; of the build that the tests use as well.
cmake --preset debug >/dev/null
cmake --build --preset debug --target datakit | tail -n 1
datakit=$PWD/build/debug/datakit

version=$(sed -n 's/^project(.* VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
name=Skylantern-$version-windows
stage=$build/stage/Skylantern
rm -rf "$build/stage"
mkdir -p "$stage/docs" "$stage/input" "$stage/licences" dist
x86_64-w64-mingw32-strip -o "$stage/Skylantern.exe" "$build/Skylantern.exe"
cp -r docs/. "$stage/docs/"
for data in dbase AIG-regcodes; do "$datakit" encipher input/sources/$data.xml "$stage/input/$data.enc"; done
cp input/sources/airports_msfs.xml input/sources/airports_msfs_names.xml "$stage/input/"
cp input/SimConnect.cfg.example LICENSE "$stage/"
cp "$SKYLANTERN_WINDOWS_LIBRARIES"/licences/*.txt "$stage/licences/"
# The compiler's runtime is linked in as well.
for package in g++-mingw-w64-x86-64-posix mingw-w64-x86-64-dev; do
    cp "/usr/share/doc/$package/copyright" "$stage/licences/$package.txt"
done

size=$(stat -c %s "$stage/Skylantern.exe")
if [ "$size" -ge $((largest_mb * 1000000)) ]; then
    echo "Skylantern.exe has $size bytes, more than $largest_mb MB" >&2
    exit 1
fi
rm -f "dist/$name.zip"
(cd "$build/stage" && zip -qr -X "$OLDPWD/dist/$name.zip" Skylantern)
printf '%s  %d bytes\n' Skylantern.exe "$size" "dist/$name.zip" "$(stat -c %s "dist/$name.zip")"

if [ $tests$bench != OFFOFF ]; then
    WINEPREFIX=${WINEPREFIX:-$PWD/$build/wine}
    export WINEPREFIX WINEDEBUG=-all
    mkdir -p "$WINEPREFIX"
    wineboot -i >/dev/null 2>&1
fi
if [ $tests = ON ]; then
    # The desktop of wine must begin on the screen that the windows of the tests are to open on.
    (cd $build && xvfb-run -a bash -c \
        'wineserver -k; wineboot -i >/dev/null 2>&1; ctest --output-on-failure --timeout 240 -j 2')
    cmake --build --preset debug --target simulator realtraffic | tail -n 1
    env -u WINEPREFIX python3 tests/e2e/windows.py "dist/$name.zip" build/debug
fi
if [ $bench = ON ]; then
    cmake --preset release -DSKYLANTERN_BENCH=ON >/dev/null
    cmake --build --preset release --target skylantern_bench | tail -n 1
    python3 bench/windows.py build/release/bench/skylantern_bench $build/bench/skylantern_bench.exe
fi
