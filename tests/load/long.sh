#!/usr/bin/env bash
# The figures that take their time, one after the other, as rows for the table of figures: long.sh BUILD ROWS. A line a
# row: work, goal, measured, and pass or MISS, with tabs between. The loads run in networks of their own.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
root=$here/../..
build=$1
rows=$2
work=$(dirname "$rows")
: >"$rows"

echo "a simulated day ..." >&2
if "$build/tests/day" --hours 24 >"$work/day.txt"; then verdict=pass; else verdict=MISS; fi
printf 'A simulated day, %s\theap at hour 24 within 1 percent of hour 2\t%s\t%s\n' \
    "$(sed -n 's/.* hours, \(.*\) runs: .*/\1 runs/p' "$work/day.txt")" \
    "$(sed -n 's/.*heap \([-+0-9.]* percent\) .*/\1/p' "$work/day.txt")" "$verdict" >>"$rows"

load() {
    local name=$1
    shift
    echo "load, $name ..." >&2
    rm -rf "${work:?}/$name" # rows of a run before must not stand for one that failed
    unshare -n bash -c 'ip link set lo up; exec "$@"' sh python3 "$here/load.py" --build "$build" --folder "$work/$name" \
        "$@" >"$work/$name.txt" || true
    python3 - "$name" "$work/$name/rows.json" >>"$rows" <<'PYTHON'
import json
import sys
for row in json.load(open(sys.argv[2])):
    told = row["goal"] == "told"
    print(f"Load, {sys.argv[1]}: {row['what']}", row["goal"], row["measured"],
          *([] if told else ["pass" if row["pass"] else "MISS"]), sep="\t")
PYTHON
}
for fps in 20 30 60 120; do load "$fps frames a second" --fps "$fps"; done
load "400 a second for 2 minutes" --fps 30 --overload 400 --seconds 480

echo "motion in the demo ..." >&2
unshare -n bash -c 'ip link set lo up; exec "$@"' sh "$root/demo.sh" --random 0 >"$work/demo.txt" || true
python3 - "$work/demo.txt" >>"$rows" <<'PYTHON'
import re
import sys
text = open(sys.argv[1]).read()
# The figures with a goal, as the demo prints and judges them.
for name, measured, goal, verdict in re.findall(r"^ *(\S[^\n]*?)  +(.*) \(goal (.*?): (met|MISSED)\)", text, re.M):
    print(f"Demo: {name}", goal, measured, "pass" if verdict == "met" else "MISS", sep="\t")
stories = re.search(r"^Stories +((\d+) of (\d+) ended as told.*)$", text, re.M)
if stories:
    print("Demo: stories", "all ended as told", stories[1], "pass" if stories[2] == stories[3] else "MISS", sep="\t")
else:
    print("Demo: stories", "all ended as told", "the demo told none", "MISS", sep="\t")
PYTHON
