#!/usr/bin/env bash
# Shows live traffic fly, land, park and leave: a simulator stand-in with the user at a large airport, a data site with the
# airport's stands, RealTraffic played from a recording on the real ports, and the program between them. Installs and
# builds what is missing first.
#
#   ./demo.sh [--seconds N] [--random 0|1] [--parked N] [--start "Mon 07:45"] [--visits N] [--screenshot FILE]
#             [--rounds N] [--preset NAME] [--wine] [--feed FILE --at LAT,LON [--site DIR]] [--keep DIR]
#
# --seconds  how long traffic is shown, 900 by default; with 1300 the parked aircraft are renewed once, too;
#            with 0 it is only built
# --random   whether the program may choose by chance, 1 by default; with 0 two runs end on the same stands
# --parked   the most aircraft that stand, live ones included, 100 by default; 0: none that only stands
# --start    the weekday and time (UTC) at which the run begins, now by default
# --visits   so many runs with the same data, a day apart: each knows more of the airport than the one before
# --rounds   so often the generated recording is played in one run, 905 s each; its stories are then not judged
# --preset   another build, for instance asan-ubsan: a true hour under the sanitizers is
#            ./demo.sh --preset asan-ubsan --rounds 4 --seconds 3600
# --wine     the Windows program, under wine
# --screenshot  runs on a screen without a monitor and keeps a picture of the control panel while traffic flies; without
#            it the panel opens where there is a screen
# --feed     a recording of your own in place of the generated one, --at the user's place for it (elevation 1416 ft
#            by --elevation), --site a folder with downloads/MSFS/archive/stock/<code>.xml for its airport
# --keep     a folder that gets the log, the trace, the recording and the reports
#
# At the end stands how each flight's story ended, with the stand ("Ended at"). Exit status 0 when the flights were shown
# and all stories ended as told; the program's own status where that is not 0.
set -euo pipefail
cd "$(dirname "$0")"
root=$PWD

seconds=900
random=1
parked=100
start=
visits=1
rounds=1
preset=
wine=
screenshot=
feed=
at=51.4706,-0.4619
elevation=83
keep=
site_root=
site_port=18080
while [ $# -gt 0 ]; do
    case $1 in
        --seconds) seconds=$2; shift 2 ;;
        --random) [[ $2 == [01] ]] || { echo "--random takes 0 or 1" >&2; exit 2; }; random=$2; shift 2 ;;
        --parked) parked=$2; shift 2 ;;
        --start) start=$2; shift 2 ;;
        --visits) visits=$2; shift 2 ;;
        --rounds) rounds=$2; shift 2 ;;
        --preset) preset=$2; shift 2 ;;
        --wine) wine=1; shift ;;
        --screenshot) screenshot=$(realpath "$2"); shift 2 ;;
        --site) site_root=$(realpath "$2"); shift 2 ;;
        --feed) feed=$(realpath "$2"); shift 2 ;;
        --at) at=$2; shift 2 ;;
        --elevation) elevation=$2; shift 2 ;;
        --keep) mkdir -p "$2"; keep=$(realpath "$2"); shift 2 ;;
        -h | --help) sed -n '2,29p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
        *) echo "unknown option $1, see --help" >&2; exit 2 ;;
    esac
done

tools/install_packages.sh
# A build of its own: the released program knows another site, or none.
site=(-DSKYLANTERN_SITE_BASE="http://127.0.0.1:$site_port/downloads/")
build=$root/build/demo${preset:+-$preset}
how=(-S . -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DSKYLANTERN_TESTS=OFF -DSKYLANTERN_BENCH=OFF)
[ -z "$preset" ] || how=(--preset "$preset")
cmake "${how[@]}" -B "$build" "${site[@]}" >/dev/null
cmake --build "$build" | tail -n 1
if [ -n "$wine" ]; then
    ./build-windows.sh >/dev/null
    SKYLANTERN_WINDOWS_LIBRARIES=$(tools/build_windows_dependencies.sh)
    export SKYLANTERN_WINDOWS_LIBRARIES
    cmake --preset windows -B build/demo-windows "${site[@]}" >/dev/null
    cmake --build build/demo-windows --target skylantern | tail -n 1
    tools/install_packages.sh wine wine64
fi
[ "$seconds" -gt 0 ] || exit 0

world=$(mktemp -d)
trap '[ -z "$wine" ] || wineserver -k 2>/dev/null || true
      kill $(jobs -p) 2>/dev/null || true; wait 2>/dev/null || true; rm -rf "$world"' EXIT
cp -r "$build/stage" "$world/run"
export XDG_CONFIG_HOME=$world/config XDG_DATA_HOME=$world/data XDG_RUNTIME_DIR=$world
mkdir -p "$XDG_CONFIG_HOME/InsideSystems" "$XDG_CONFIG_HOME/Skylantern"
touch "$XDG_CONFIG_HOME/InsideSystems/RealTraffic.jar"
packages=$world/packages
program_of_run=(./skylantern)
if [ -n "$wine" ]; then
    cp build/demo-windows/Skylantern.exe "$world/run/"
    program_of_run=(wine Skylantern.exe)
    packages="Z:${packages//\//\\}"
    export WINEPREFIX=$world/wine WINEDEBUG=-all
    wineboot -i >/dev/null 2>&1
    wine reg add 'HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders' /v AppData \
        /d "Z:${XDG_CONFIG_HOME//\//\\}" /f >/dev/null 2>&1
fi
python3 demo/make_community.py "$world/packages" >/dev/null
if [ -z "$feed" ]; then
    # Two add-on airports, and a livery that the user wants for one aircraft.
    python3 demo/make_scenery.py "$world/packages"
    mkdir -p "$world/run/input/my_regcodes"
    echo "AI A320 British Airways;G-EUUK,G-EUUA" >"$world/run/input/my_regcodes/mine.txt"
fi
cat >"$XDG_CONFIG_HOME/Skylantern/parameters.xml" <<XML
<?xml version="1.0"?>
<parameters>
	<parameter name="PROGRAM_VERSION" value="11.0.3" />
	<parameter name="MSFS_INSTALL_PATH" value="$packages" />
	<parameter name="AUTO_RANGE" value="false" />
	<parameter name="SCAN_AIRPORTS" value="$([ -z "$feed" ] && echo true || echo false)" />
	<parameter name="MAX_PARK_SEL" value="$parked" />
	<parameter name="COLLISION_LIVE_PARKED_GND" value="true" />
	<parameter name="RANDOM" value="$([ "$random" = 1 ] && echo true || echo false)" />
</parameters>
XML

expected=()
if [ -z "$feed" ]; then
    python3 demo/make_recording.py "$world/recording.txt"
    feed=$world/recording.txt
    if [ "$rounds" -eq 1 ]; then
        expected=(--expected "$world/recording.expected.json")
    else
        python3 demo/repeat.py "$world/recording.txt" "$rounds"
    fi
fi
if [ -z "$site_root" ]; then
    site_root=$world/site
    python3 demo/make_airports.py "$site_root" >/dev/null
    # Newer data than what the program comes with: fetched at the first start.
    cp "$build/stage/input/dbase.enc" "$build/stage/input/AIG-regcodes.enc" "$site_root/downloads/"
    echo '{"dbase": {"major": 1, "minor": 0, "patch": 1}, "aig": {"major": 1, "minor": 0, "patch": 1}}' \
        >"$site_root/downloads/versions.json"
fi

# All programs of a run with another start live in the same shifted time; how fast it goes stays as it is. Each visit
# but the first is a day after the one before.
at_start=()
shift_time() {
    local shift_seconds=$((($1 - 1) * 86400))
    [ -z "$start" ] || shift_seconds=$((shift_seconds + $(python3 demo/seconds_until.py "$start")))
    [ "$shift_seconds" -ne 0 ] || return 0
    tools/install_packages.sh libfaketime
    library=$(dpkg -L libfaketime | grep 'libfaketimeMT.so.1$')
    at_start=(env LD_PRELOAD="$library" DONT_FAKE_MONOTONIC=1 FAKETIME="+${shift_seconds}s")
}

if [ -n "$screenshot" ]; then
    Xvfb ":$$" -screen 0 880x476x24 -noreset -nolisten tcp >/dev/null 2>&1 &
    export DISPLAY=":$$"
    sed -i '/<\/parameters>/i\	<parameter name="MAIN_WINDOW_X" value="0" />\n\t<parameter name="MAIN_WINDOW_Y" value="0" />' \
        "$XDG_CONFIG_HOME/Skylantern/parameters.xml"
fi

ended=0
run() {
    cd "$world/run"
    "${at_start[@]}" "$build/site" --root "$site_root" --port "$site_port" >"$world/site.json" &
    site=$!
    for _ in $(seq 50); do
        grep -q listening "$world/site.json" && break
        sleep 0.1
    done
    grep -q listening "$world/site.json" || { echo "the data site does not start on port $site_port" >&2; exit 1; }
    "${at_start[@]}" "$build/simulator" --port 2048 --lat "${at%,*}" --lon "${at#*,}" --alt "$elevation" --on-ground 1 \
        --fps 30 --elevation "$elevation" --trace "$world/trace.jsonl" --feed "$feed" >"$world/simulator.json" &
    simulator=$!
    "${at_start[@]}" "${program_of_run[@]}" &
    program=$!
    "${at_start[@]}" "$build/realtraffic" --feed "$feed" --qnh 1013 --linger $((seconds + 120)) >"$world/realtraffic.json" &
    traffic=$!

    # Traffic is shown 30 s after it was flown, and the start takes about as long; the last ones need some seconds to
    # settle.
    end=$((SECONDS + seconds + 75))
    picture=$((SECONDS + (seconds < 300 ? seconds : 300)))
    while [ $SECONDS -lt $end ] && kill -0 $program 2>/dev/null; do
        sleep 1
        if [ -n "$screenshot" ] && [ $SECONDS -ge $picture ]; then
            import -window root "$screenshot"
            picture=$((end + 1))
        fi
    done
    if [ -n "$wine" ]; then
        wine taskkill /IM Skylantern.exe >/dev/null 2>&1 || true
    else
        kill -TERM $program 2>/dev/null || true
    fi
    wait $program || { ended=$?; echo "the program ended with status $ended"; }
    kill -TERM $traffic $simulator $site 2>/dev/null || true
    wait $traffic $simulator $site || true
    cd "$root"
}

for visit in $(seq "$visits"); do
    [ "$visits" -eq 1 ] || echo "Visit $visit of $visits"
    shift_time "$visit"
    run
    [ "$visits" -eq 1 ] || python3 demo/known_options.py "$world/run"
done

cd "$root"
if [ -n "$keep" ]; then
    cp "$world/run/Log.txt" "$world/trace.jsonl" "$world"/{simulator,realtraffic,site}.json "$feed" "$keep/"
    cp "$world"/recording.expected.json "$keep/" 2>/dev/null || true
fi
python3 demo/summary.py "${expected[@]}" --feed "$feed" --trace "$world/trace.jsonl" \
    --simulator "$world/simulator.json" --realtraffic "$world/realtraffic.json" --log "$world/run/Log.txt" \
    --elevation "$elevation"
exit "$ended"
