"""How described aircraft move on the ground: along lines with rounded corners, forwards or backwards.

Places are nautical miles east and north of the airport as in flying.py; ways and speeds are metres and metres a second.
"""
import math

from flying import KNOT, STEP, Impossible, State

MILE = 1852.0
SAMPLE = 0.5         # metres between two samples of a way
SPEEDING = 0.5       # metres a second squared
BRAKING = 0.6
SIDEWAYS = 0.9       # what the passengers bear in a corner
CREEP = 0.3          # metres a second, the least
TIGHTEST = 8.0       # metres
SLIGHT = math.radians(0.5)


class _Way:
    """Samples of a polyline whose corners are arcs: distance, place, direction, radius of the turn."""

    def __init__(self, points, radii):
        self.samples = []
        self._at = 0.0
        legs = [math.hypot(b[0] - a[0], b[1] - a[1]) for a, b in zip(points, points[1:])]
        directions = [math.atan2(b[0] - a[0], b[1] - a[1]) for a, b in zip(points, points[1:])]
        if min(legs) < 0.1:
            raise Impossible("two places on the ground are the same")
        used = 0.0
        for i, (leg, direction) in enumerate(zip(legs, directions)):
            cut, angle, radius = 0.0, 0.0, math.inf
            if i + 1 < len(legs):
                angle = math.remainder(directions[i + 1] - direction, 2 * math.pi)
            if abs(angle) > SLIGHT:
                room = min(leg - used, legs[i + 1] * (1.0 if i + 2 == len(legs) else 0.5))
                radius = min(radii[i + 1], room / math.tan(abs(angle) / 2) if abs(angle) < 3.1 else 0)
                if radius < TIGHTEST and abs(angle) > 0.3:
                    raise Impossible(f"the turn of {math.degrees(angle):.0f} degrees at place {i + 1} has no room")
                cut = radius * math.tan(abs(angle) / 2)
            x = points[i][0] + used * math.sin(direction)
            y = points[i][1] + used * math.cos(direction)
            self._straight(x, y, direction, leg - used - cut)
            if cut > 0:
                self._arc(points[i + 1], direction, angle, radius, cut)
            used = cut
        last = points[-1]
        self.samples.append((self._at, last[0], last[1], directions[-1], math.inf))

    def _straight(self, x, y, direction, length):
        for k in range(max(1, int(length / SAMPLE))):
            way = length * k / max(1, int(length / SAMPLE))
            self.samples.append((self._at + way, x + way * math.sin(direction), y + way * math.cos(direction), direction,
                                 math.inf))
        self._at += length

    def _arc(self, corner, direction, angle, radius, cut):
        curvature = math.copysign(1 / radius, angle)
        x, y = corner[0] - cut * math.sin(direction), corner[1] - cut * math.cos(direction)
        length = radius * abs(angle)
        steps = max(1, int(length / SAMPLE))
        for k in range(steps):
            turned = direction + curvature * length * k / steps
            self.samples.append((self._at + length * k / steps,
                                 x + (math.cos(direction) - math.cos(turned)) / curvature,
                                 y + (math.sin(turned) - math.sin(direction)) / curvature, turned, radius))
        self._at += length


def _speeds(samples, start, most, end):
    """The speed at each sample, with what an aircraft can do before and behind it."""
    speeds = [min(most, math.sqrt(SIDEWAYS * radius)) if radius < math.inf else most for *_, radius in samples]
    speeds[0], speeds[-1] = min(speeds[0], max(start, CREEP)), max(end, CREEP)
    for i in range(1, len(samples)):
        way = samples[i][0] - samples[i - 1][0]
        speeds[i] = min(speeds[i], math.sqrt(speeds[i - 1] ** 2 + 2 * SPEEDING * way))
    for i in range(len(samples) - 2, -1, -1):
        way = samples[i + 1][0] - samples[i][0]
        speeds[i] = min(speeds[i], math.sqrt(speeds[i + 1] ** 2 + 2 * BRAKING * way))
    return speeds


def drive(points, radii, elevation, begin, start=0.0, most=18.0, end=0.0, backwards=False):
    """States along `points`, the first of them one STEP behind the moment `begin`; speeds in knots.

    `radii` are metres, one a point; those of the first and the last are not looked at.
    """
    samples = _Way([(x * MILE, y * MILE) for x, y in points], radii).samples
    speeds = _speeds(samples, start * KNOT, most * KNOT, end * KNOT)
    times = [0.0]
    for i in range(1, len(samples)):
        way = samples[i][0] - samples[i - 1][0]
        times.append(times[-1] + way / max(CREEP, (speeds[i] + speeds[i - 1]) / 2))
    states, i = [], 0
    for step in range(1, int(times[-1] / STEP) + 2):
        t = min(step * STEP, times[-1])
        while i + 2 < len(times) and times[i + 1] <= t:
            i += 1
        part = (t - times[i]) / max(1e-9, times[i + 1] - times[i])
        (_, x, y, direction, _), (_, x2, y2, direction2, _) = samples[i], samples[i + 1]
        turned = math.remainder(direction2 - direction, 2 * math.pi)
        speed = speeds[i] + (speeds[i + 1] - speeds[i]) * part
        nose = math.degrees(direction + turned * part) + (180 if backwards else 0)
        turn = math.degrees(turned) / max(1e-9, times[i + 1] - times[i])
        states.append(State(begin + step * STEP, (x + (x2 - x) * part) / MILE, (y + (y2 - y) * part) / MILE, elevation,
                            speed / KNOT, 0.0, turn, True, nose % 360))
    return states


def stand(state, seconds, nose=None):
    """States of an aircraft that stays where it is."""
    nose = state.nose if nose is None else nose
    return [State(state.t + k * STEP, state.x, state.y, state.height, 0.0, 0.0, 0.0, True, nose)
            for k in range(1, int(round(seconds / STEP)) + 1)]
