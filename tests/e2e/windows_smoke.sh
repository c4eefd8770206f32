#!/usr/bin/env bash
# The packed Windows program under wine, in a network of its own, beside the stand-ins of a Linux build: it links,
# creates live aircraft, and ends in order when its window is closed. Without a SimConnect.cfg and a pipe it finds the
# simulator on port 2048.
#
#   tests/e2e/windows_smoke.sh dist/Skylantern-<version>-windows.zip build/debug
set -euo pipefail
if [ -z "${SKYLANTERN_OWN_NETWORK:-}" ]; then
    exec env SKYLANTERN_OWN_NETWORK=1 unshare -rn bash -c 'ip link set lo up && exec "$@"' - "$0" "$@"
fi
root=$(cd "$(dirname "$0")/../.." && pwd)
zip=$(realpath "$1")
build=$(realpath "$2")
patience=${SKYLANTERN_SMOKE_SECONDS:-150}

world=$(mktemp -d)
export WINEPREFIX=$world/wine WINEDEBUG=-all
trap 'wineserver -k 2>/dev/null || true; kill $(jobs -p) 2>/dev/null || true; wait 2>/dev/null || true
      [ -n "${KEEP:-}" ] && cp -r "$world" "$KEEP"; rm -rf "$world"' EXIT
number=$((RANDOM % 1000 + 100))
Xvfb ":$number" -screen 0 1000x600x24 -nolisten tcp >/dev/null 2>&1 &
export DISPLAY=":$number"
wineboot -i >/dev/null 2>&1
unzip -q "$zip" -d "$world"
run=$world/Skylantern

roaming=$(find "$WINEPREFIX/drive_c/users" -type d -path '*AppData/Roaming' -not -path '*Public*' | head -1)
mkdir -p "$roaming/Skylantern" "$roaming/InsideSystems"
touch "$roaming/InsideSystems/RealTraffic.jar"
python3 "$root/demo/make_community.py" "$world/packages" >/dev/null
cat >"$roaming/Skylantern/parameters.xml" <<XML
<?xml version="1.0"?>
<parameters>
	<parameter name="PROGRAM_VERSION" value="11.0.3" />
	<parameter name="MSFS_INSTALL_PATH" value="Z:${world//\//\\}\\packages" />
	<parameter name="AUTO_RANGE" value="false" />
	<parameter name="SCAN_AIRPORTS" value="false" />
	<parameter name="MAIN_WINDOW_X" value="0" />
	<parameter name="MAIN_WINDOW_Y" value="0" />
</parameters>
XML
python3 "$root/demo/make_recording.py" "$world/recording.txt" >/dev/null

cd "$run"
"$build/simulator" --port 2048 --lat 51.4706 --lon -0.4619 --alt 83 --on-ground 1 --fps 30 --elevation 83 \
    --trace "$world/trace.jsonl" --feed "$world/recording.txt" >"$world/simulator.json" &
simulator=$!
wine Skylantern.exe &
program=$!
"$build/realtraffic" --feed "$world/recording.txt" --qnh 1013 --linger 600 >"$world/realtraffic.json" &
traffic=$!

fail() {
    echo "$1" >&2
    tail -30 Log.txt >&2 || true
    exit 1
}
added() { cat "$world/trace.jsonl" 2>/dev/null | grep -c '"op":"create"' || true; }
for ((second = 0; second < patience; ++second)); do
    kill -0 $program 2>/dev/null || fail "the program has ended"
    [ "$(added)" -gt 2 ] && break
    sleep 1
done
[ "$(added)" -gt 2 ] || fail "no live aircraft within $patience s"
[ -z "${SKYLANTERN_PICTURE:-}" ] || import -window root "$SKYLANTERN_PICTURE"

# A second start ends at once.
status=0
wine Skylantern.exe || status=$?
[ "$status" -ne 0 ] || fail "a second program runs beside the first"

wine taskkill /IM Skylantern.exe >/dev/null 2>&1 || fail "the window cannot be closed"
for ((second = 0; second < 60; ++second)); do
    kill -0 $program 2>/dev/null || break
    sleep 1
done
kill -0 $program 2>/dev/null && fail "the program does not end"
status=0
wait $program || status=$?
[ "$status" -eq 0 ] || fail "the program ended with $status"
grep -q 'Exiting: USER CLOSED SIM' Log.txt || fail "the log does not tell why it ended"
kill -TERM $traffic $simulator
wait $traffic $simulator || true
echo "linked, $(added) live aircraft, ended in order"
