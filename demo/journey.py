"""Flies a described flight from its first leg to its last: the air by flying.py, the ground by ground.py, and what the
stories need to know of it: stands, pushbacks, stops."""
import math
from dataclasses import dataclass, field

import ground
from flying import (EXIT_KNOTS, EXIT_MILES, STEP, THRESHOLD_FEET, GLIDE, Impossible, Point, State, fly)

MILE = 1852.0
TAXI_STOP = 40        # seconds that a landed aircraft is still heard where its way ends
PUSH_KNOTS = 4.0
TAXI_KNOTS = 22.0
TOW_KNOTS = 6.0
CORNER = 35.0         # metres
CLEAR = 0.6           # half spans behind the stand
LINED_UP = 90.0       # metres behind the threshold
SWERVE = 10.0         # degrees; beyond that the way off a stand begins straight ahead
HOVER_KNOTS = 1.2     # knots a second, a helicopter that slows down
TOUCH_MILES = 0.35    # behind the threshold, where the power goes on again


@dataclass
class Happened:
    """Of one flight; seconds since its start."""
    first_stand: str = ""
    left: float | None = None        # when it left the first stand
    pushed: str = ""                 # left, right, straight
    stands: list = field(default_factory=list)  # parked at, in order: (second, stand)
    landed: float | None = None
    touched: bool = False
    went_around: bool = False
    towed: bool = False
    holds: list = field(default_factory=list)   # (second, seconds, latitude, longitude)
    lifted: float | None = None


class Journey:
    def __init__(self, scene, flight, longest):
        self.scene, self.flight, self.longest = scene, flight, longest
        self.states, self.air, self.happened = [], [], Happened()
        self.landing = False
        self.touching = False
        self.ahead = []  # places that come before those of the next leg on the ground

    # --- the end of what was flown so far ---

    @property
    def last(self):
        if not self.states:
            raise Impossible("nothing was flown or stood before this")
        return self.states[-1]

    @property
    def over(self):
        return bool(self.states) and self.states[-1].t >= self.longest

    def _heading(self):
        """Of the last motion, in degrees."""
        if self.last.nose is not None:
            return self.last.nose
        before = self.states[-2]
        return math.degrees(math.atan2(self.last.x - before.x, self.last.y - before.y)) % 360

    def _fly(self):
        """Flies the places gathered."""
        points, self.air = self.air, []
        if not points:
            return
        begin = 0.0
        if self.states:
            last = self.last
            begin = last.t + STEP
            points.insert(0, Point(last.x, last.y, last.height, last.speed, ground=last.ground))
        knots = (math.inf, math.inf) if self.touching else (EXIT_KNOTS, EXIT_KNOTS if self.landing else 0.0)
        flown = fly(points, self.flight.performance, self.scene.elevation, self.longest - begin, *knots)
        for state in flown:
            state.t += begin
            self._note(state)
            self.states.append(state)
        self.landing = self.touching = False

    def _note(self, state):
        before = self.states[-1] if self.states else None
        if before is not None and before.ground and not state.ground:
            self.happened.lifted = state.t
        if before is not None and state.ground and not before.ground:
            self.happened.landed = state.t
            self.happened.touched = self.happened.touched or self.touching

    # --- legs ---

    def run(self):
        legs = list(self.flight.legs)
        for number, (word, arguments) in enumerate(legs):
            if self.over:
                break
            final = number + 1 == len(legs)
            getattr(self, "_do_" + word)(final, *arguments)
        self._fly()
        if self.states and self.last.ground and not self.flight.vehicle and not self.over:
            at_stand = bool(self.happened.stands) and self.happened.stands[-1][0] == self.last.t
            self._stand(self.longest - self.last.t if at_stand else min(TAXI_STOP, self.longest - self.last.t))
        return self.states, self.happened

    def _do_air(self, final, point):
        self.air.append(point)

    def _do_depart(self, final, runway):
        self.air += self.scene.departure(runway, self.flight.performance)

    def _do_takeoff(self, final, runway):
        self._fly()
        line = self.scene.runways[runway]
        self.air.append(Point(*line.on_line(line.length + 1), self.scene.elevation + 3000,
                              self.flight.performance.lift_off + 25))

    def _do_land(self, final, runway, speed, at_exit=EXIT_MILES, side=None):
        points = self.scene.landing(runway, speed, at_exit, side)
        if not final:
            # The rest of the way off the runway is the first leg of the taxi.
            a, b = points[1], points[2]
            points[2] = Point((a.x + b.x) / 2, (a.y + b.y) / 2, b.height, b.speed, ground=True)
            self.ahead = [(b.x, b.y)]
            self.landing = True
        self.air += points
        self._fly()

    def _do_touch(self, final, runway, speed):
        line = self.scene.runways[runway]
        self.air += [Point(line.x, line.y, self.scene.elevation + THRESHOLD_FEET, speed, straight=True, threshold=True),
                     Point(*line.on_line(TOUCH_MILES), self.scene.elevation, speed, ground=True)]
        self.touching = True
        self._fly()
        self._do_takeoff(final, runway)

    def _do_goaround(self, final, runway, speed, feet):
        line = self.scene.runways[runway]
        miles = max(0.0, feet - THRESHOLD_FEET) / GLIDE
        self.air += [Point(*line.on_line(-miles), self.scene.elevation + feet, speed, straight=True),
                     Point(*line.on_line(line.length + 1.5), self.scene.elevation + 2500, speed + 20)]
        self.happened.went_around = True

    def _do_stand(self, final, name, until=None):
        stand = self.scene.plan.stands[name]
        x, y = self.scene.to_plane(stand.lat, stand.lon)
        first = State(0.0, x, y, self.scene.elevation, 0.0, 0.0, 0.0, True, stand.heading)
        self.happened.first_stand = name
        self.states.append(first)
        seconds = self.longest if until is None else until - self.flight.start
        self._stand(seconds)
        if until is None:
            self.happened.stands.append((self.last.t, name))
        else:
            self.happened.left = self.last.t

    def _do_hold(self, final, seconds):
        self._fly()
        lat, lon = self.scene.to_earth(self.last.x, self.last.y)
        self.happened.holds.append((self.last.t, seconds, lat, lon))
        self._stand(seconds)

    def _stand(self, seconds):
        self.states += ground.stand(self.last, max(0.0, seconds), self._heading())

    def _do_push(self, final, side):
        name = self.happened.stands[-1][1] if self.happened.stands else self.happened.first_stand
        stand = self.scene.plan.stands[name]
        back = 2.5 * stand.radius
        self.happened.pushed = side
        if side == "straight":
            # Room for the turn on to the lane.
            way, radii = [stand.ahead(-back - 0.75 * stand.radius)], [0, 0]
        else:
            # The nose swings to the side, the tail to the other, in a wide turn as soon as it is clear of the stand.
            turn = max(stand.radius, back - CLEAR * self.flight.performance.half_span)
            way = [stand.ahead(-back), stand.ahead(-back, (turn + 4) * (-1 if side == "right" else 1))]
            radii = [0, turn, 0]
        points = [(self.last.x, self.last.y), *(self.scene.to_plane(*place) for place in way)]
        self.states += ground.drive(points, radii, self.scene.elevation, self.last.t, most=PUSH_KNOTS, backwards=True)

    def _drive(self, places, most, end=0.0, corner=CORNER, corners=None):
        self._fly()
        places, self.ahead = [*self.ahead, *places], []
        start = (self.last.x, self.last.y)
        points, radii = [start, *places], [corner] * (len(places) + 1)
        if corners:
            radii[-len(corners):] = corners
        heading = math.radians(self._heading())
        course = math.atan2(places[0][0] - start[0], places[0][1] - start[1])
        off = math.remainder(course - heading, 2 * math.pi)
        if abs(off) > math.radians(SWERVE):
            ahead = (12 + 20 * math.tan(min(abs(off), 2.0) / 2)) / MILE
            points.insert(1, (start[0] + ahead * math.sin(heading), start[1] + ahead * math.cos(heading)))
            radii.insert(1, 20)
        self.states += ground.drive(points, radii, self.scene.elevation, self.last.t, self.last.speed, most, end)

    def _do_taxi(self, final, places, most=TAXI_KNOTS):
        self._drive(places, most)

    def _do_lineup(self, final, runway, places, miles=0.0):
        line = self.scene.runways[runway]
        self._drive([*places, line.on_line(miles), line.on_line(miles + LINED_UP / MILE)], TAXI_KNOTS)

    def _do_park(self, final, places, name, seen, most=TAXI_KNOTS):
        stand = self.scene.plan.stands[name]
        if self.states and not self.last.ground or self.air:
            self._hover(stand)
        else:
            lane = self.scene.to_plane(*stand.ahead(-2.5 * stand.radius))
            corner = min(CORNER, 1.5 * stand.radius)
            begun = len(self.states)
            self._drive([*places, lane, self.scene.to_plane(stand.lat, stand.lon)], most, corners=[corner, 0])
            self.happened.towed = most == TOW_KNOTS
            if seen:
                self._drift(begun, stand, self.scene.plan.stands[seen])
        self.happened.stands.append((self.last.t, seen or name))

    def _do_tow(self, final, places, name):
        self._do_park(final, places, name, "", TOW_KNOTS)

    def _drift(self, begun, stand, seen):
        """The places told move off the true ones, little by little, until they are those of another stand."""
        x, y = self.scene.to_plane(stand.lat, stand.lon)
        x2, y2 = self.scene.to_plane(seen.lat, seen.lon)
        span = max(1, len(self.states) - begun)
        for k, state in enumerate(self.states[begun:], 1):
            part = k / span
            state.x, state.y = state.x + (x2 - x) * part, state.y + (y2 - y) * part

    def _hover(self, stand):
        """A helicopter comes down in a line to its stand and slows down on the way."""
        self._fly()
        last = self.last
        x, y = self.scene.to_plane(stand.lat, stand.lon)
        heading = math.degrees(math.atan2(x - last.x, y - last.y)) % 360
        miles = math.hypot(x - last.x, y - last.y)
        slowing = last.speed / HOVER_KNOTS
        level = (miles * 3600 - last.speed * slowing / 2) / last.speed
        if level < 0:
            raise Impossible(f"the helicopter needs {last.speed * slowing / 7200:.2f} miles to slow down")
        whole, high = level + slowing, last.height - self.scene.elevation
        for k in range(1, int(whole / STEP) + 1):
            t = k * STEP
            left = max(0.0, whole - t)
            knots = last.speed if t < level else last.speed * left / slowing
            done = 1 - (knots * left / 7200 if t >= level else miles - last.speed * t / 3600) / miles
            down = t >= whole - STEP
            self.states.append(State(last.t + t, last.x + (x - last.x) * done, last.y + (y - last.y) * done,
                                     self.scene.elevation + high * (1 - done), knots, -high / whole * 60, 0.0, down,
                                     heading))
        self._note_landing(heading)

    def _note_landing(self, heading):
        last = self.last
        self.states.append(State(last.t + STEP, last.x, last.y, self.scene.elevation, 0.0, 0.0, 0.0, True, heading))
        self.happened.landed = self.last.t
