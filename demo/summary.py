#!/usr/bin/env python3
"""Tells how a run of the demo went: which flights were shown, by which livery, how they moved, and how their stories
ended.

Exit status 0 when the flights that the program has to show were shown (95 percent of them got an object, and the objects
were there for 90 percent of the time that they had to), and all stories that were over ended as told.
"""
import argparse
import json
import re
import sys
from pathlib import Path

import admission
import ground_summary
import verdict
from sky import Sky

PREDICTION = 64.0       # seconds that a flight may go on without reports
SHORTEST = 20.0         # seconds to show that must be left for a flight to count
GOT_OBJECT = 0.95
ACTIVE = 0.90


def json_of(path):
    """The last JSON object of a stand-in's output, which begins with other lines."""
    lines = [line for line in Path(path).read_text(encoding="utf-8").splitlines() if line.startswith("{")]
    if not lines:
        sys.exit(f"{path} holds no report")
    return json.loads(lines[-1])


class Verdicts:
    def __init__(self):
        self.missed = 0

    def of(self, met):
        self.missed += not met
        return "met" if met else "MISSED"


def percent(part, whole):
    return 100.0 * part / whole if whole else 0.0


def tell_shown(expected, sky, began, speed, verdicts):
    """The figure "Shown"; true when it is met."""
    due, missing, short, stayed = [], [], [], []
    wanted = active = 0.0
    parked = {story["callsign"] for story in expected.get("stories", []) if story["end"] == "parked"}
    for flight in expected["flights"]:
        windows = []
        for first, last in flight["spans"]:
            begin, end = began + first / speed + verdict.DELAY, min(began + last / speed + verdict.DELAY, sky.end)
            if end - begin >= SHORTEST:
                windows.append((begin, end))
        if not windows:
            continue
        due.append(flight)
        tail = flight["callsign"]
        need = sum(end - begin for begin, end in windows)
        had = sum(sky.moved_between(tail, *window) for window in windows)
        wanted, active = wanted + need, active + had
        if tail not in sky.created:
            missing.append(flight)
        elif had < ACTIVE * need:
            short.append((had / need, flight))
        if tail not in parked and sky.last_seen(tail) > windows[-1][1] + PREDICTION + 5:
            stayed.append(tail)
    shown = len(due) - len(missing)
    got_object = bool(due) and shown >= GOT_OBJECT * len(due)
    active_enough = wanted > 0 and active >= ACTIVE * wanted
    print(f"Flights         {len(expected['flights'])} in the recording, {len(due)} to be shown in this run")
    print(f"  with object   {shown} of {len(due)}, {percent(shown, len(due)):.1f} percent"
          f" (goal {GOT_OBJECT * 100:.0f}: {verdicts.of(got_object)})")
    print(f"  active        {active:.0f} of {wanted:.0f} s, {percent(active, wanted):.1f} percent"
          f" (goal {ACTIVE * 100:.0f}: {verdicts.of(active_enough)})")
    for flight in missing:
        print(f"  not shown     {flight['callsign']} {flight['type']} {flight['registration']}")
    for share, flight in sorted(short, key=lambda entry: entry[0]):
        print(f"  shown short   {flight['callsign']} {flight['type']}, {share * 100:.0f} percent of its time")
    for tail in stayed:
        print(f"  stayed long   {tail}, beyond its last report and prediction")
    admitted = {flight["callsign"] for flight in expected["flights"] if flight["admitted"]}
    for tail in sorted(tail for tail in set(sky.created) - admitted if not tail.endswith("*")):
        print(f"  unexpected    {tail or '(no tail)'} as {sky.titles[tail]}")
    spans = {flight["callsign"]: len(flight["spans"]) for flight in expected["flights"]}
    for tail, times in sorted(sky.created.items()):
        if not tail.endswith("*") and len(times) > max(1, spans.get(tail, 0)):
            print(f"  again         {tail}, created {len(times)} times")
    return got_object and active_enough


def tell_liveries(log):
    steps = {}
    for line in log:
        match = re.match(r" {10}\S.* =([1-6])= \S", line)
        if match:
            steps[int(match.group(1))] = steps.get(int(match.group(1)), 0) + 1
    parts = ", ".join(f"step {step}: {steps[step]}" for step in sorted(steps)) or "none"
    print(f"Liveries        {sum(steps.values())} matched; {parts}")


def tell_start(log):
    """What the start has fetched and found."""
    updates = [line for line in log if re.fullmatch(r"\w+ (updated to \S+|version up-to-date)", line)]
    print(f"Updates         {', '.join(updates) or 'none'}")
    codes = [line for line in log if re.match(r"\d+ registration codes", line)]
    read = [line for line in log if line.startswith("Airport file read from")]
    print(f"  data          {(codes + ['no catalogue'])[0]}; {(read + ['no airport file'])[0]}")
    print(f"  add-ons       {'scanned' if any('airports scan ends' in line for line in log) else 'not scanned'}")


def tell_statics(log, sky):
    """What stood, and what the visit has taught; the counts of the program beside that of the simulator."""
    text = "\n".join(log)
    counts = re.search(r"Static aircraft: (\d+) placed, (\d+) kept and (\d+) replaced at renewals, (\d+) made way", text)
    placed, kept, replaced, made_way = (int(count) for count in counts.groups()) if counts else (0, 0, 0, 0)
    learned = sum(int(count) for count in re.findall(r" saved with (\d+) updates", text))
    print(f"Static aircraft {placed} placed ({sky.statics} created in the simulator), {kept} kept and {replaced} replaced "
          f"at renewals, {made_way} made way for live ones")
    print(f"  learned       {learned} options and changes of stands")


def tell_motion(motion, generated, verdicts):
    print("Motion")
    cross = motion.get("crossTrack")
    if cross and cross["count"]:
        print(f"  cross-track   p50 {cross['p50']:.1f}, p95 {cross['p95']:.1f}, worst {cross['max']:.0f} m ({cross['tail']})"
              f" (goal p95 below 30: {verdicts.of(cross['p95'] < 30)})")
        print(f"  left out      {cross['leftOutShare'] * 100:.1f} percent of the poses, in gaps of the reports"
              f" (goal below 5: {verdicts.of(cross['leftOutShare'] < 0.05)})")
    for name, unit, judged in (("step", "m", True), ("heading", "degrees", generated), ("pitch", "degrees", generated)):
        figure = motion[name]
        goal = f" (goal none: {verdicts.of(figure['breaches'] == 0)})" if judged else ""
        worst = figure.get("worst")
        told = f"; nearest {worst['value']:.2f} of {worst['allowed']:.2f} {unit} allowed ({worst['tail']})" if worst else ""
        print(f"  {name:<13} {figure['breaches']} breaches in {figure['poses']} poses{told}{goal}")
    for name, rates in sorted(motion.get("air", {}).items(), key=lambda entry: entry[0] != "all"):
        acceleration, yaw, pitch = rates["accelerationG"], rates["yawRate"], rates["pitchRate"]
        print(f"  {name:<13} p99 and worst: {acceleration['p99']:.2f}, {acceleration['max']:.2f} g ({acceleration['tail']});"
              f" yaw {yaw['p99']:.1f}, {yaw['max']:.1f}; pitch {pitch['p99']:.1f}, {pitch['max']:.1f} degrees/s")


def tell_log(expected, log, began, speed, played_until, verdicts):
    prefix = "exception in processLineSub: "
    told = sum(1 for line in log if line.startswith(prefix))
    sent = [second for second in expected["brokenSeconds"] if began + second / speed <= played_until]
    print(f"Broken lines    {told} told in the log, {len(sent)} sent in range (goal the same: "
          f"{verdicts.of(told == len(sent))})")
    others = [line.strip() for line in log
              if not line.startswith(prefix) and re.search("exception", line, re.IGNORECASE)]
    print(f"Exceptions      {len(others)} other lines (goal none: {verdicts.of(not others)})")
    for line in others[:5]:
        print(f"  {line[:110]}")


def tell_traffic(report, simulator):
    kinds = ", ".join(f"{count} {name}" for name, count in report["byKind"].items())
    print(f"RealTraffic     {report['sent']} of {report['lines']} records sent ({kinds}), {report['weather']} of pressure")
    print(f"                {report['positionReports']} position reports noted, {report['badPositionReports']} bad ones")
    for event in report["linkEvents"]:
        if event["event"] not in ("up", "exit"):
            print(f"  link          {event['event']} at second {event['t']:.0f}")
    exceptions = simulator["exceptions"]
    told = ", ".join(f"number {code}: {count}" for code, count in exceptions.items()) or "none"
    print(f"Simulator       {simulator['created']} objects created, {simulator['removed']} removed, "
          f"{simulator['refused']} refused, {simulator['alive']} left; exceptions: {told}")
    print(f"                {simulator['posesReceived']} poses, calls a frame: mean "
          f"{simulator['callsPerFrame']['mean']:.1f}, most {simulator['callsPerFrame']['max']}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--expected", help="what a generated recording has to give; else it is worked out from the "
                                           "recording and the last position report")
    parser.add_argument("--feed", required=True, help="the recording")
    parser.add_argument("--trace", required=True, help="of the simulator stand-in")
    parser.add_argument("--simulator", required=True, help="the output of the simulator stand-in")
    parser.add_argument("--realtraffic", required=True, help="the output of the RealTraffic stand-in")
    parser.add_argument("--log", required=True, help="Log.txt of the program")
    parser.add_argument("--elevation", type=float, default=0.0, help="of the ground, in feet (0)")
    args = parser.parse_args()

    simulator, traffic = json_of(args.simulator), json_of(args.realtraffic)
    log = Path(args.log).read_text(encoding="utf-8", errors="replace").splitlines()
    tell_traffic(traffic, simulator)
    if "recordingBeganUtc" not in traffic:
        sys.exit("The recording never began.")
    if args.expected:
        expected = json.loads(Path(args.expected).read_text(encoding="ascii"))
    else:
        place = traffic.get("lastPosition")
        if place is None:
            sys.exit("Without a position report nobody knows what was in range.")
        lines = Path(args.feed).read_text(encoding="latin-1").splitlines()
        in_sight = any("The park airport is" in line for line in log)
        expected = admission.expect(lines, (place["latitude"], place["longitude"]),
                                    elevation=args.elevation if in_sight else None)

    began, speed = traffic["recordingBeganUtc"], traffic["speed"]
    stories = expected.get("stories", [])
    standing = {flight["callsign"] for flight in expected["flights"] if flight.get("standing")}
    sky, verdicts = Sky(args.trace, {story["callsign"] for story in stories}, standing), Verdicts()
    shown = tell_shown(expected, sky, began, speed, verdicts)
    tell_start(log)
    tell_liveries(log)
    tell_statics(log, sky)
    tell_motion(simulator["motion"], args.expected is not None, verdicts)
    ground_summary.tell(simulator["motion"], args.expected is not None, verdicts)
    tell_log(expected, log, began, speed, sky.end, verdicts)
    failed = 0
    if stories:
        failed = verdict.tell(expected, verdict.Judge(expected, sky, log, began, speed, args.elevation))
    print(f"{'Shown' if shown else 'NOT SHOWN as it has to be'}; "
          f"{'all stories ended as told' if not failed else f'{failed} STORIES DID NOT END AS TOLD'}; "
          f"{verdicts.missed} goals missed")
    sys.exit(0 if shown and not failed else 1)


if __name__ == "__main__":
    main()
