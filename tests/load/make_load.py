"""Makes a recording that is nothing but load: make_load.py FILE --seconds N [--near R] [--far R] [--aircraft N]

`--near` reports a second come from `--aircraft` aircraft that circle round the user, each at its own distance between 5
and 75 nautical miles; the outermost ones also move to and fro by a mile, so that the farthest is not always the same.
`--far` reports a second come from aircraft that are out of range. `--from A --to B --burst R` puts R near reports a
second between these seconds, and `--after R` what comes behind them. All stamps are milliseconds apart, in order.
"""
import argparse
import math

USER = (51.4706, -0.4619)
KINDS = [("DLH", "A320"), ("BAW", "A320"), ("KLM", "B738"), ("AFR", "A320"), ("UAL", "B77W"), ("SWR", "A320")]
FAR_AIRCRAFT = 6000
START = 1700000000
WOBBLERS = 40


def distance(number, second, aircraft):
    """Nautical miles from the user."""
    base = 5 + 70 * number / aircraft
    if number < aircraft - WOBBLERS:
        return base
    return base + math.sin(second / 100 + number)


def place(number, second, aircraft):
    """(latitude, longitude, track, speed): clockwise round the user at 300 knots."""
    nm = distance(number, second, aircraft)
    angle = number * 2.4 + second * 300 / 3600 / nm
    lat = USER[0] + nm / 60 * math.cos(angle)
    lon = USER[1] + nm / 60 * math.sin(angle) / math.cos(math.radians(USER[0]))
    return lat, lon, math.degrees(angle + math.pi / 2) % 360, 300


def callsign(number):
    return f"{KINDS[number % len(KINDS)][0]}{1000 + number}"


def line(hexid, lat, lon, alt, track, speed, name, kind, stamp):
    return (f"RTTFC,{hexid},{lat:.6f},{lon:.6f},{alt},0,1,{track:.2f},{speed},{name},{kind},X-{hexid % 100000},,,"
            f"{stamp:.3f},X,,adsb_icao,{alt},-1,{speed},-1,0,-1,-1,-1,0,none,A3\n")


def near_lines(options):
    number, at = 0, 0.0
    while at < options.seconds:
        lat, lon, track, speed = place(number, at, options.aircraft)
        yield at, line(4000000 + number, lat, lon, 10000 + 40 * number, track, speed, callsign(number),
                       KINDS[number % len(KINDS)][1], START + at)
        number = (number + 1) % options.aircraft
        burst, over = options.start <= at < options.end, options.end and at >= options.end
        at += 1 / (options.burst if burst else options.after if over else options.near)


def far_lines(options):
    for count in range(int(options.seconds * options.far)):
        at = count / options.far
        number = count % FAR_AIRCRAFT
        yield at, line(5000000 + number, -60 + number % 100, number % 350 - 170 + 0.5, 30000, 90, 450, f"XXX{number}",
                       "B738", START + at)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("file")
    parser.add_argument("--seconds", type=int, required=True)
    parser.add_argument("--near", type=float, default=180)
    parser.add_argument("--far", type=float, default=1820)
    parser.add_argument("--aircraft", type=int, default=520)
    parser.add_argument("--from", dest="start", type=float, default=0)
    parser.add_argument("--to", dest="end", type=float, default=0)
    parser.add_argument("--burst", type=float, default=400)
    parser.add_argument("--after", type=float, default=60)
    options = parser.parse_args()
    near, far = near_lines(options), far_lines(options)
    with open(options.file, "w", encoding="ascii") as file:
        next_near, next_far = next(near, None), next(far, None)
        while next_near or next_far:
            if next_far is None or (next_near and next_near[0] <= next_far[0]):
                file.write(next_near[1])
                next_near = next(near, None)
            else:
                file.write(next_far[1])
                next_far = next(far, None)


if __name__ == "__main__":
    main()
