#!/usr/bin/env bash
# The figures that take their time, as rows for the table of figures: long.sh BUILD ROWS. A line a row: work, goal,
# measured, and pass or MISS, with tabs between. The loads and the demo run at the same time, each in a network of its
# own: what they hold beside each other, each holds alone.
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
    rm -rf "${work:?}/$name" # rows of a run before must not stand for one that failed
    unshare -n bash -c 'ip link set lo up; exec "$@"' sh python3 "$here/load.py" --build "$build" --folder "$work/$name" \
        "$@" >"$work/$name.txt" || true
}
rows_of_load() {
    local name=$1
    python3 - "$name" "$work/$name/rows.json" >>"$rows" <<'PYTHON'
import json
import pathlib
import sys
if not pathlib.Path(sys.argv[2]).exists():
    print(f"Load, {sys.argv[1]}", "runs to its end", "it did not", "MISS", sep="\t")
    sys.exit()
for row in json.load(open(sys.argv[2])):
    told = row["goal"] == "told"
    print(f"Load, {sys.argv[1]}: {row['what']}", row["goal"], row["measured"],
          *([] if told else ["pass" if row["pass"] else "MISS"]), sep="\t")
PYTHON
}
loads=("20 frames a second" "30 frames a second" "60 frames a second" "120 frames a second")
overload="400 a second for 2 minutes"

# Built first, so that the compiler does not run beside the loads.
"$root/demo.sh" --seconds 0 >&2
echo "loads and the demo ..." >&2
for name in "${loads[@]}"; do load "$name" --fps "${name%% *}" & done
load "$overload" --fps 30 --overload 400 --seconds 480 &
unshare -n bash -c 'ip link set lo up; exec "$@"' sh "$root/demo.sh" --random 0 >"$work/demo.txt" || true
wait
for name in "${loads[@]}" "$overload"; do rows_of_load "$name"; done
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
