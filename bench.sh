#!/usr/bin/env bash
# Measures the speed figures of docs/performance.md: builds optimised, runs the benchmark suite, prints goal, measured
# value and verdict. Exit status 1 when a goal is missed.
#
#   ./bench.sh [--write] [--long] [--only WORD]
#
# --long   also what takes 25 minutes more: a simulated day, and then at once 10 minutes of load at 20, 30, 60 and 120
#          frames a second, an overload, and the motion of the demo
# --write  puts the table into docs/performance.md
# --only   the measurements whose name holds the word: decode, tick, flush, scan, cold start, match,
#          registration rows, scenery, airport file, parking, panel, data site
set -euo pipefail
cd "$(dirname "$0")"
arguments=()
long=
while [ $# -gt 0 ]; do
    case $1 in
        --write) arguments+=(--write docs/performance.md); shift ;;
        --long) long=1; shift ;;
        --only) arguments+=(--only "$2"); shift 2 ;;
        -h | --help) sed -n '2,11p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
        *) echo "unknown option $1, see --help" >&2; exit 2 ;;
    esac
done
tools/install_packages.sh
cmake --preset release -DSKYLANTERN_BENCH=ON -DSKYLANTERN_TESTS=ON >/dev/null
cmake --build --preset release --target skylantern_bench stage simulator realtraffic site day | tail -n 1
tools/check_hardening.sh build/release/skylantern
if [ -n "$long" ]; then
    mkdir -p build/long
    tests/load/long.sh build/release build/long/rows.tsv
    arguments+=(--rows build/long/rows.tsv)
fi
# The window is measured on a screen without a monitor.
xvfb-run -a build/release/bench/skylantern_bench "${arguments[@]}"
