#!/usr/bin/env bash
# Makes a data site out of small sources of our own, serves it on loopback, and lets a fresh program live on it: it
# fetches its data, starts, reads an airport's stands and fills them; then the site changes, and the next start fetches
# what is newer. Installs and builds what is missing first.
#
#   ./datasite.sh           the whole example
#   ./datasite.sh SITE      only makes the site, in the folder SITE, to look at or to serve
#   ./datasite.sh SITE SOURCES   the same out of your own tables, see docs/data-site.md
set -euo pipefail
cd "$(dirname "$0")"
case ${1:-} in -h | --help) sed -n '2,8p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;; esac

tools/install_packages.sh
# The same build as that of demo.sh: its program fetches from loopback.
build=$PWD/build/demo
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSKYLANTERN_TESTS=OFF -DSKYLANTERN_BENCH=OFF \
    -DSKYLANTERN_SITE_BASE="http://127.0.0.1:18080/downloads/" >/dev/null
cmake --build "$build" | tail -n 1
if [ $# -gt 0 ]; then
    exec tools/datakit/example.sh "$build/datakit" "$@"
fi
exec python3 tests/e2e/data_site.py "$build"
