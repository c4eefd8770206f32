#!/usr/bin/env bash
# Measures the speed figures of docs/performance.md: builds optimised, runs the benchmark suite, prints goal, measured
# value and verdict. Exit status 1 when a goal is missed.
#
#   ./bench.sh [--write] [--only WORD]
#
# --write  puts the table into docs/performance.md
# --only   the measurements whose name holds the word: decode, tick, flush, scan, cold start, match,
#          registration rows, scenery, airport file, parking, panel, data site
set -euo pipefail
cd "$(dirname "$0")"
arguments=()
while [ $# -gt 0 ]; do
    case $1 in
        --write) arguments+=(--write docs/performance.md); shift ;;
        --only) arguments+=(--only "$2"); shift 2 ;;
        -h | --help) sed -n '2,9p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
        *) echo "unknown option $1, see --help" >&2; exit 2 ;;
    esac
done
tools/install_packages.sh
cmake --preset release -DSKYLANTERN_BENCH=ON >/dev/null
cmake --build --preset release --target skylantern_bench | tail -n 1
# The window is measured on a screen without a monitor.
xvfb-run -a build/release/bench/skylantern_bench "${arguments[@]}"
