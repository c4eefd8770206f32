#!/usr/bin/env bash
# Installs what is missing, builds, and runs all tests. Another preset as the first argument: debug (the default),
# release, asan-ubsan, tsan; or --windows: the tests of the Windows program, under wine.
set -euo pipefail
cd "$(dirname "$0")"
preset=${1:-debug}
[ "$preset" != --windows ] || exec ./build-windows.sh --tests
tools/install_packages.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"
ctest --preset "$preset"
