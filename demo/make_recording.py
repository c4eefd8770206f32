#!/usr/bin/env python3
"""Makes a recording of live traffic out of described flights: make_recording.py OUT.txt [--flights FILE]

Writes OUT.txt, a record a line as in the datagrams, and OUT.expected.json beside it: for each flight whether and when
the program has to show it, how the story of each one on the ground must end, and how many broken lines it has to tell
of. The form of the descriptions stands at the top of flight_file.py; flights/heathrow.txt is the one of the demo. The
same description gives the same bytes.
"""
import argparse
import json
import math
import random
import sys
from pathlib import Path

import admission
import airport_plan
import clashes
import flight_file
import stories
from flying import BANK, GRAVITY, KNOT, STEP, Impossible
from journey import Journey

START = 1700000000  # time stamp of the recording's first second
FIRST_HEXID = 4194305
STANDING_EVERY = 5  # seconds between the reports of who stands
ROLLING_EVERY = (2, 2, 3, 3, 4, 5)  # and of who taxies
TAXI_KNOTS = 40     # beyond that the reports come as in the air
SLOW_KNOTS = 5
STALE = 0.8         # seconds that a place on the ground may be older than its stamp


def breaking(fields, how):
    """The record with what is wrong with it."""
    change = {"latitude": {2: "north"}, "longitude": {3: "-200.5"}, "nowhere": {2: "0.0", 3: "0.0"},
              "stamp": {14: "now"}, "altitude": {4: "FL120"}, "speed": {8: ""}, "track": {7: "N/A"},
              "heading": {17: "adsb_icao", 25: "361.5"}, "hexid": {1: "x40A1B2"}, "airspeed": {20: ""},
              "roll": {23: "left"}, "not-a-number": {8: "nan"}}
    if how in ("short", "torn"):
        return fields[:17 if how == "short" else 9]
    return [change[how].get(i, text) for i, text in enumerate(fields)]


def track_and_speed(scene, states, i):
    """As the places tell them: of the way from the state before to the one behind."""
    before, behind = states[max(0, i - 1)], states[min(len(states) - 1, i + 1)]
    lat, lon = scene.to_earth(before.x, before.y)
    lat2, lon2 = scene.to_earth(behind.x, behind.y)
    north = math.radians(lat2 - lat)
    east = math.radians(lon2 - lon) * math.cos(math.radians((lat + lat2) / 2))
    miles = math.hypot(north, east) * admission.EARTH_NM
    return math.degrees(math.atan2(east, north)) % 360, miles / max(STEP, behind.t - before.t) * 3600


def record(scene, flight, hexid, states, i, stamp, track, rng):
    state = states[i]
    if state.ground and not flight.vehicle:
        state = states[max(0, i - int(rng.uniform(0, STALE) / STEP))]
    lat, lon = scene.to_earth(state.x, state.y)
    _, knots = track_and_speed(scene, states, i)
    metres, feet = flight.noise
    if state.ground and not flight.vehicle and flight.jitter > 0:
        lat, lon = airport_plan.offset(lat, lon, *(max(-2, min(2, rng.gauss(0, 1))) * flight.jitter / 2 for _ in "xy"))
    elif metres > 0:
        lat += rng.gauss(0, metres) / 1852 / 60
        lon += rng.gauss(0, metres) / 1852 / 60 / math.cos(math.radians(lat))
    height = 0 if state.ground else round((state.height + (rng.gauss(0, feet) if feet else 0)) / 25) * 25
    if not state.ground:
        height = max(25, height)
    vertical = 0 if state.ground else round(state.vertical / 64) * 64
    airspeed, turn, roll, heading = "-1", "0", "-1", "-1"
    if not flight.plain and not flight.vehicle:
        heading = f"{track if state.nose is None else state.nose:.2f}"
        if not state.ground:
            bank = math.degrees(math.atan(knots * KNOT * math.radians(state.turn) / GRAVITY))
            bank = max(-math.degrees(BANK), min(math.degrees(BANK), bank))
            airspeed, turn, roll = f"{knots:.0f}", f"{state.turn:.2f}", f"{bank:.1f}" if abs(bank) > 0.05 else "0"
    text = (flight.callsign or "null", flight.type or "null", flight.registration or "null",
            flight.origin or "null", flight.destination or "null")
    return ["RTTFC", str(hexid), f"{lat:.6f}", f"{lon:.6f}", str(height), str(vertical), str(int(state.ground)),
            f"{track:.2f}", f"{knots:.1f}", *text, stamp, "X", "", "adsb_icao", str(height), "-1", airspeed, "-1",
            turn, roll, "-1", heading, str(vertical), "none", flight.performance.category]


def pace(flight, state):
    """Seconds until the next report may come: one value in the air, several on the ground."""
    if flight.vehicle or not state.ground or state.speed > TAXI_KNOTS:
        return (flight.every,)
    return (STANDING_EVERY,) if state.speed < 0.1 else ROLLING_EVERY


def reports(scene, flight, states, number):
    """(second, line) of a flight."""
    rng = random.Random(number)
    broken = sorted(flight.broken)
    second = max(flight.start, 0) + (number * 37 % 10) / 10 * flight.every
    track = None
    while True:
        i = round((second - flight.start) / STEP)
        if i >= len(states) or second > scene.seconds:
            break
        new_track, knots = track_and_speed(scene, states, i)
        # Who stands keeps his direction; before the first move it is the one that he will take.
        if knots > 1:
            track = new_track
        elif track is None:
            track = next((track_and_speed(scene, states, j)[0] for j in range(i, len(states), 10)
                          if states[j].speed > 1), 0.0)
        if states[i].ground and states[i].nose is not None:
            # Slow ones without attitude send no direction.
            track = states[i].nose if not flight.plain else new_track if states[i].speed > SLOW_KNOTS else 0.0
        if flight.heard[0] <= second <= flight.heard[1]:
            fields = record(scene, flight, FIRST_HEXID + number * 1021, states, i, f"{START + second:.1f}", track, rng)
            if broken and second >= broken[0][0]:
                fields = breaking(fields, broken.pop(0)[1])
            yield second, ",".join(fields)
        gaps = pace(flight, states[i])
        second = round(second + (gaps[0] if len(gaps) == 1 else rng.choice(gaps)), 1)
    if broken:
        raise Impossible(f"no report is left to be broken at second {broken[0][0]:.0f}")


def journeys(scene):
    """(its reports, its story or None) of each flight; at the end it warns of those that touch."""
    flown = []
    for number, flight in enumerate(scene.flights):
        try:
            states, happened = Journey(scene, flight, scene.seconds - flight.start).run()
            own = list(reports(scene, flight, states, number))
        except Impossible as complaint:
            raise Impossible(f"line {flight.line}, {flight.callsign or flight.registration}: {complaint}") from complaint
        flown.append((flight, states))
        yield own, stories.of(scene, flight, states, happened, [second for second, _ in own])
    for clash in clashes.between(flown):
        print(clash, file=sys.stderr)


def write_expected(path, scene, expected, told):
    """What a run has to show, and how the stories must end."""
    # Beyond the range nothing is to be seen of it.
    ends = {flight["callsign"]: flight["spans"][-1][1] for flight in expected["flights"] if flight["spans"]}
    for story in told:
        story["last"] = ends.get(story["callsign"], story["last"])
        story["at"] = min(story["at"], story["last"]) if story["end"] == "away" else story["at"]
    expected["airport"], expected["stories"] = scene.code, told
    expected["stands"] = {stand.name: [stand.lat, stand.lon, stand.heading] for stand in scene.plan.stands.values()}
    path.write_text(json.dumps(expected, indent=1) + "\n", encoding="ascii")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("out", metavar="OUT.txt", type=Path)
    parser.add_argument("--flights", type=Path, default=Path(__file__).parent / "flights" / "heathrow.txt")
    parser.add_argument("--range", type=float, default=admission.RANGE_NM, help="of the program, in nautical miles (40)")
    args = parser.parse_args()
    try:
        scene = flight_file.read(args.flights)
    except (flight_file.Complaint, OSError) as complaint:
        sys.exit(str(complaint))

    lines, told = [], []
    try:
        for own, story in journeys(scene):
            lines += own
            told += [story] if story else []
    except Impossible as complaint:
        sys.exit(f"{args.flights}, {complaint}")
    lines.sort(key=lambda entry: entry[0])
    lines = [line for _, line in lines]
    args.out.write_text("".join(line + "\n" for line in lines), encoding="ascii")
    # An airport is in sight where the site has stands for it.
    elevation = scene.elevation if scene.plan.stands else None
    expected = admission.expect(lines, (scene.lat, scene.lon), args.range, elevation)
    write_expected(args.out.with_suffix(".expected.json"), scene, expected, told)
    shown = sum(1 for flight in expected["flights"] if flight["admitted"])
    print(f"{len(lines)} records of {len(expected['flights'])} aircraft, {shown} of them to be shown; "
          f"{expected['brokenLinesInRange']} broken lines to be told, {expected['vehicleLines']} of vehicles; "
          f"{len(told)} stories on the ground")


if __name__ == "__main__":
    main()
