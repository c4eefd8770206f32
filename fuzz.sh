#!/usr/bin/env bash
# Fuzzes one target, or all of them one after the other, with the compiler's fuzzer and the sanitizers for addresses
# and undefined behaviour: for so many minutes, or two million inputs when those come first. New inputs go to
# build/fuzz/found/TARGET; one that crashes is kept as build/fuzz/crash-*. `minimise` merges what was found into the
# committed corpus, the few inputs that reach all that is reached. Installs clang where it is missing.
#
#   ./fuzz.sh TARGET|all MINUTES|minimise
set -euo pipefail
cd "$(dirname "$0")"
root=$PWD
[ $# -eq 2 ] || { sed -n '2,8p' "$0" | sed 's/^# \{0,1\}//'; exit 2; }
tools/install_packages.sh
dpkg-query -W -f='${Status}' clang-16 2>/dev/null | grep -q 'install ok installed' ||
    $([ "$(id -u)" -eq 0 ] || echo sudo) apt-get install -y -qq --no-install-recommends clang-16 libclang-rt-16-dev >/dev/null
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz | tail -n 1
targets=$1
[ "$1" != all ] || targets=$(ls fuzz/*_fuzzer.cpp | sed 's#fuzz/##; s#_fuzzer.cpp##')

minimise() {
    local corpus=fuzz/corpus/$1 small=build/fuzz/small/$1
    rm -rf "$small" && mkdir -p "$small"
    (cd build/fuzz && fuzz/fuzz_"$1" -set_cover_merge=1 -use_counters=0 -max_len=16384 "$root/$small" "$root/$corpus" "$PWD/found/$1" \
        >"$1.merge.log" 2>&1)
    # Seeds that were written by hand keep their names; the rest is named by its content.
    for file in "$corpus"/*; do
        if [[ $(basename "$file") =~ ^[0-9a-f]{40}$ ]]; then rm "$file"; fi
    done
    cp "$small"/* "$corpus"/
    echo "$1: $(ls "$corpus" | wc -l) inputs"
}

for target in $targets; do
    [ -d "fuzz/corpus/$target" ] || { echo "no target $target" >&2; exit 2; }
    mkdir -p "build/fuzz/found/$target"
    if [ "$2" = minimise ]; then
        minimise "$target"
        continue
    fi
    echo "$target for $2 minutes"
    (cd build/fuzz && fuzz/fuzz_"$target" -max_total_time=$(($2 * 60)) -runs=2000000 -max_len=65536 -timeout=5 \
        -rss_limit_mb=1024 -print_final_stats=1 "$PWD/found/$target" "$root/fuzz/corpus/$target" >"$target.log" 2>&1) ||
        { tail -n 40 "build/fuzz/$target.log"; exit 1; }
    grep -a "stat::number_of_executed_units\|stat::peak_rss_mb" "build/fuzz/$target.log"
done
