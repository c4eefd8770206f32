#!/usr/bin/env bash
# Shows live traffic fly: a simulator stand-in with the user at a large airport, RealTraffic played from a recording on
# the real ports, and the program between them. Installs and builds what is missing first.
#
#   ./demo.sh [--seconds N] [--feed FILE --at LAT,LON] [--keep DIR]
#
# --seconds  how long traffic is shown, 600 by default
# --feed     a recording of your own in place of the generated one, --at the user's place for it (elevation 1416 ft
#            by --elevation)
# --keep     a folder that gets the log, the trace, the recording and the reports
set -euo pipefail
cd "$(dirname "$0")"
root=$PWD

seconds=600
feed=
at=51.4706,-0.4619
elevation=83
keep=
while [ $# -gt 0 ]; do
    case $1 in
        --seconds) seconds=$2; shift 2 ;;
        --feed) feed=$(realpath "$2"); shift 2 ;;
        --at) at=$2; shift 2 ;;
        --elevation) elevation=$2; shift 2 ;;
        --keep) mkdir -p "$2"; keep=$(realpath "$2"); shift 2 ;;
        -h | --help) sed -n '2,12p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
        *) echo "unknown option $1, see --help" >&2; exit 2 ;;
    esac
done

tools/install_packages.sh
build=$root/build/release
cmake --preset release -DSKYLANTERN_TESTS=OFF -DSKYLANTERN_BENCH=OFF >/dev/null
cmake --build --preset release | tail -n 1

world=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; wait 2>/dev/null || true; rm -rf "$world"' EXIT
cp -r "$build/stage" "$world/run"
export XDG_CONFIG_HOME=$world/config XDG_DATA_HOME=$world/data XDG_RUNTIME_DIR=$world
mkdir -p "$XDG_CONFIG_HOME/InsideSystems" "$XDG_CONFIG_HOME/Skylantern"
touch "$XDG_CONFIG_HOME/InsideSystems/RealTraffic.jar"
python3 demo/make_community.py "$world/packages" >/dev/null
cat >"$XDG_CONFIG_HOME/Skylantern/parameters.xml" <<XML
<?xml version="1.0"?>
<parameters>
	<parameter name="PROGRAM_VERSION" value="11.0.3" />
	<parameter name="MSFS_INSTALL_PATH" value="$world/packages" />
	<parameter name="AUTO_RANGE" value="false" />
	<parameter name="SCAN_AIRPORTS" value="false" />
</parameters>
XML

expected=()
if [ -z "$feed" ]; then
    python3 demo/make_recording.py "$world/recording.txt"
    feed=$world/recording.txt
    expected=(--expected "$world/recording.expected.json")
fi

cd "$world/run"
"$build/simulator" --port 2048 --lat "${at%,*}" --lon "${at#*,}" --alt "$elevation" --on-ground 1 --fps 30 \
    --elevation "$elevation" --trace "$world/trace.jsonl" --feed "$feed" >"$world/simulator.json" &
simulator=$!
./skylantern &
program=$!
"$build/realtraffic" --feed "$feed" --qnh 1013 >"$world/realtraffic.json" &
traffic=$!

# Traffic is shown 30 s after it was flown, and the start takes about as long.
end=$((SECONDS + seconds + 60))
while [ $SECONDS -lt $end ] && kill -0 $program 2>/dev/null; do sleep 1; done
kill -TERM $program 2>/dev/null || true
wait $program || echo "the program ended with status $?"
kill -TERM $traffic $simulator 2>/dev/null || true
wait $traffic $simulator || true

cd "$root"
if [ -n "$keep" ]; then
    cp "$world/run/Log.txt" "$world/trace.jsonl" "$world/simulator.json" "$world/realtraffic.json" "$feed" "$keep/"
    cp "$world"/recording.expected.json "$keep/" 2>/dev/null || true
fi
python3 demo/summary.py "${expected[@]}" --feed "$feed" --trace "$world/trace.jsonl" \
    --simulator "$world/simulator.json" --realtraffic "$world/realtraffic.json" --log "$world/run/Log.txt"
