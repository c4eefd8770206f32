"""Which described aircraft would touch, on the ground or in the air, by their spans.

The program moves an aircraft that was pushed back as soon as its reports move off, which is before their time: so such
ones are looked at earlier as well.
"""
import math

from flying import STEP

MILE = 1852.0
EARLY = (0, 25, 50)  # seconds
LOOK = 1.0        # seconds between two looks
WIDEST = 80.0     # metres, two of the largest
LEVEL_FEET = 100  # who flies that much higher passes over


def leaves_by_push(flight):
    return flight.legs[0][0] == "stand" and any(word == "push" for word, _ in flight.legs)


def between(flown):
    """One line for each pair of (flight, states) that come too close, with the second and the metres."""
    worst = {}
    seconds = {}
    for flight, states in flown:
        if flight.vehicle:
            continue
        # A taxi behind a push: the first state that moves forward after the stand was left.
        pushed = next((s.t for s in states if s.t > 1 and s.speed > 5), None) if leaves_by_push(flight) else None
        for k in range(0, len(states), int(LOOK / STEP)):
            state = states[k]
            second = round(flight.start + state.t)
            if second < 0 or not flight.heard[0] <= second <= flight.heard[1]:
                continue
            moved_off = pushed and state.t > pushed
            for early in EARLY if moved_off else EARLY[:1]:
                seconds.setdefault(second - early, []).append((flight, state.x * MILE, state.y * MILE, state.height,
                                                               early if pushed else None))
    for second, places in seconds.items():
        places.sort(key=lambda place: place[1])
        for i, (a, ax, ay, a_feet, a_early) in enumerate(places):
            for b, bx, by, b_feet, b_early in places[i + 1:]:
                if bx - ax > WIDEST:
                    break
                # Two that were pushed are early alike.
                if a is b or (None not in (a_early, b_early) and a_early != b_early):
                    continue
                if abs(a_feet - b_feet) > LEVEL_FEET or a.callsign == b.callsign + "_" or b.callsign == a.callsign + "_":
                    continue
                metres = math.hypot(ax - bx, ay - by)
                needed = a.performance.half_span + b.performance.half_span
                pair = tuple(sorted((a.callsign, b.callsign)))
                if metres < needed and metres - needed < worst.get(pair, (0, 0, 0))[0]:
                    worst[pair] = (metres - needed, second, metres)
    for (a, b), (_, second, metres) in sorted(worst.items(), key=lambda entry: entry[1][1]):
        yield f"{a} and {b} come within {metres:.0f} m of each other at second {second}"
