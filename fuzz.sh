#!/usr/bin/env bash
# Fuzzes one target, or all of them one after the other, with the compiler's fuzzer and the address sanitizer. New
# inputs go to build/fuzz/found/TARGET; one that crashes is kept as build/fuzz/crash-*. Installs clang where it is
# missing.
#
#   ./fuzz.sh TARGET|all MINUTES
set -euo pipefail
cd "$(dirname "$0")"
root=$PWD
[ $# -eq 2 ] || { sed -n '2,7p' "$0" | sed 's/^# \{0,1\}//'; exit 2; }
tools/install_packages.sh
dpkg-query -W -f='${Status}' clang-16 2>/dev/null | grep -q 'install ok installed' ||
    $([ "$(id -u)" -eq 0 ] || echo sudo) apt-get install -y -qq --no-install-recommends clang-16 libclang-rt-16-dev >/dev/null
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz | tail -n 1
targets=$1
[ "$1" != all ] || targets=$(ls fuzz/*_fuzzer.cpp | sed 's#fuzz/##; s#_fuzzer.cpp##')
for target in $targets; do
    [ -d "fuzz/corpus/$target" ] || { echo "no target $target" >&2; exit 2; }
    mkdir -p "build/fuzz/found/$target"
    echo "$target for $2 minutes"
    (cd build/fuzz && fuzz/fuzz_"$target" -max_total_time=$(($2 * 60)) -max_len=65536 -timeout=5 -rss_limit_mb=1024 \
        -print_final_stats=1 "$PWD/found/$target" "$root/fuzz/corpus/$target" >"$target.log" 2>&1) ||
        { tail -n 40 "build/fuzz/$target.log"; exit 1; }
    grep -a "stat::number_of_executed_units\|stat::peak_rss_mb" "build/fuzz/$target.log"
done
