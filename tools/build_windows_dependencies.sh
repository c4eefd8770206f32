#!/bin/bash
# Builds the libraries of the Windows program out of Debian's own source packages, static, with Debian's
# mingw-w64 compiler. They go into a cache outside the tree, keyed by their versions; when it is complete the
# script only prints its folder. apt checks the signatures of the lists and the sums of what it fetches; the
# system's list of sources stays as it is.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

triplet=x86_64-w64-mingw32
compiler=$triplet-gcc-posix
recipe=1 # to be raised when the way a library is built changes
sources=(libsodium libzip curl pugixml fmtlib)
headers=(nlohmann-json3-dev libmsgsl-dev)
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
root=${XDG_CACHE_HOME:-$HOME/.cache}/skylantern-windows
jobs=${SKYLANTERN_JOBS:-$(nproc)}

say() { echo "$*" >&2; }
fail() {
    say "$0: $*"
    exit 1
}
# Status 69: nothing is wrong here, but what has to be fetched is out of reach.
unreachable() {
    say "$0: $*"
    exit 69
}

for tool in $compiler cmake ninja autoreconf dpkg-source apt-get; do
    command -v $tool >/dev/null || fail "$tool is missing; ./build-windows.sh installs what is needed"
done

# An apt of our own, in the folders of the cache: the source packages of where the system's packages come from.
make_private_apt() {
    local apt=$root/apt
    mkdir -p "$apt/lists/partial" "$apt/archives/partial" "$apt/parts"
    apt-get indextargets --format 'deb-src $(REPO_URI) $(CODENAME) $(COMPONENT)' \
        'Created-By: Packages' 'Origin: Debian' | sort -u >"$apt/sources.list"
    [ -s "$apt/sources.list" ] || unreachable "apt knows no source of Debian"
    cat >"$apt/apt.conf" <<END
Dir::Etc::sourcelist "$apt/sources.list";
Dir::Etc::sourceparts "$apt/parts";
Dir::State::lists "$apt/lists";
Dir::Cache "$apt";
APT::Sandbox::User "root";
END
    export APT_CONFIG=$apt/apt.conf
}

# The newest version that the lists hold.
source_version() {
    apt-cache showsrc --only-source "$1" 2>/dev/null | sed -n 's/^Version: //p' | sort -V | tail -1
}
header_version() { dpkg-query -W -f '${Version}' "$1"; }

versions_of_all() {
    for name in "${sources[@]}"; do
        local version
        version=$(source_version "$name")
        [ -n "$version" ] || return 1
        echo "$name $version"
    done
    for name in "${headers[@]}"; do echo "$name $(header_version "$name")"; done
    echo "zlib $(dpkg-query -W -f '${Version}' libz-mingw-w64-dev)"
    echo "compiler $($compiler -dumpfullversion)"
    echo "recipe $recipe"
}

make_private_apt
# The lists are asked for anew once a day, so that security updates arrive; without a network the old ones do.
if [ -z "$(find "$root/apt/updated" -mtime -1 2>/dev/null)" ]; then
    apt-get update -qq >&2 && touch "$root/apt/updated" || say "The lists of sources could not be renewed"
fi
versions=$(versions_of_all) || unreachable "Debian's lists of sources are not there"
prefix=$root/$(sha256sum <<<"$versions" | cut -c 1-16)
if [ -f "$prefix/complete" ]; then
    echo "$prefix"
    exit 0
fi

say "Building the Windows libraries into $prefix"
rm -rf "$prefix"
mkdir -p "$prefix/include" "$prefix/licences"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
log=$root/build.log
: >"$log"

fetch() {
    local version
    version=$(source_version "$1")
    # What has gone from one of the archives may lie in that of the release as well.
    apt-get source -qq "$1=$version" >>"$log" 2>&1 || apt-get source -qq "$1/$release" >>"$log" 2>&1 ||
        unreachable "$1 could not be fetched, see $log"
    local folder
    folder=$(find . -maxdepth 1 -type d -name "$1-*" | head -1)
    cp "$folder/debian/copyright" "$prefix/licences/$1.txt"
    echo "$folder"
}

with_cmake() {
    local folder=$1
    shift
    { cmake -S "$folder" -B "$folder/build-windows" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$here/windows_toolchain.cmake" \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$prefix" -DBUILD_SHARED_LIBS=OFF \
        -DCMAKE_PREFIX_PATH="$prefix" "$@" &&
        cmake --build "$folder/build-windows" -j "$jobs" &&
        cmake --install "$folder/build-windows"; } >>"$log" 2>&1 || fail "$folder could not be built, see $log"
    say "  $folder"
}

build_libsodium() {
    local folder=$1
    (cd "$folder" && autoreconf -fi &&
        ./configure --host=$triplet CC=$compiler --prefix="$prefix" --disable-shared --enable-static \
            --disable-ssp CFLAGS="-O2" && make -j "$jobs" && make install) >>"$log" 2>&1 ||
        fail "$folder could not be built, see $log"
    say "  $folder"
}

folder=$(fetch libsodium)
build_libsodium "$folder"
folder=$(fetch pugixml)
with_cmake "$folder" -DPUGIXML_BUILD_TESTS=OFF
folder=$(fetch fmtlib)
with_cmake "$folder" -DFMT_TEST=OFF -DFMT_DOC=OFF
folder=$(fetch libzip)
with_cmake "$folder" -DENABLE_BZIP2=OFF -DENABLE_LZMA=OFF -DENABLE_ZSTD=OFF -DENABLE_OPENSSL=OFF \
    -DENABLE_GNUTLS=OFF -DENABLE_MBEDTLS=OFF -DENABLE_COMMONCRYPTO=OFF -DENABLE_WINDOWS_CRYPTO=OFF \
    -DBUILD_TOOLS=OFF -DBUILD_REGRESS=OFF -DBUILD_EXAMPLES=OFF -DBUILD_DOC=OFF
folder=$(fetch curl)
with_cmake "$folder" -DHTTP_ONLY=ON -DCURL_USE_SCHANNEL=ON -DCURL_USE_OPENSSL=OFF -DCURL_ZLIB=OFF \
    -DCURL_USE_LIBSSH2=OFF -DCURL_USE_LIBSSH=OFF -DUSE_LIBIDN2=OFF -DUSE_WIN32_IDN=OFF -DCURL_USE_LIBPSL=OFF \
    -DBUILD_CURL_EXE=OFF -DBUILD_TESTING=OFF -DENABLE_MANUAL=OFF -DENABLE_UNICODE=ON -DUSE_NGHTTP2=OFF

# Header libraries are the same on every system.
cp -r /usr/include/nlohmann /usr/include/gsl "$prefix/include/"
mkdir -p "$prefix/share/cmake"
cp -r /usr/share/cmake/nlohmann_json "$prefix/share/cmake/"
for name in "${headers[@]}" libz-mingw-w64-dev; do
    cp "/usr/share/doc/$name/copyright" "$prefix/licences/$name.txt"
done
echo "$versions" >"$prefix/versions.txt"
touch "$prefix/complete"
echo "$prefix"
