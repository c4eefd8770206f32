"""How described flights fly: a course over the ground with proper turns, speeds and climbs that the type can do.

Places are nautical miles east and north of the airport until they become latitude and longitude at the very end.
Speeds are knots over the ground (there is no wind), heights feet, vertical speeds feet a minute, times seconds.
"""
import math
from dataclasses import dataclass

NM_PER_DEGREE = 60.0405  # on a sphere of 6371 km
STEP = 0.1               # seconds between two states of a flight
KNOT = 1852 / 3600       # metres a second
GRAVITY = 9.80665

BANK = math.radians(25)
TURN_RATE = 3.0          # degrees a second, in the air
TAXI_TURN_RATE = 12.0    # on the ground, below TAXI_KNOTS
TAXI_KNOTS = 40
VERTICAL_CHANGE = 200.0  # feet a minute in a second, about a tenth of g
AIR_ACCELERATION = 1.0   # knots a second
ROLL_ACCELERATION = 3.5
BRAKING = 3.5
ROLL_OUT_KNOTS = 60
TAXI_BRAKING = 0.6       # metres a second squared
EXIT_KNOTS = 15
GLIDE = math.tan(math.radians(3)) * 6076.115  # feet a mile
THRESHOLD_FEET = 50
EXIT_MILES = 1.2         # behind the threshold


@dataclass(frozen=True)
class Performance:
    climb: float
    descent: float
    lift_off: float  # knots
    category: str    # emitter category
    half_span: float = 5.0  # metres


def _types():
    table = {
        "A1 light": ("C152 C172 C182 P28A DA40 DA42 SR22 PA34 DR40", 700, 600, 60, "A1", 5.5),
        "rotorcraft": ("EC35 EC45 A109 A139 B407 R44 AS50 S92", 900, 700, 40, "A7", 5.5),
        "business": ("C56X C68A CL35 E55P GLEX GLF5 GLF6 F2TH C525 PC12", 2800, 2200, 120, "A2", 12.0),
        "turboprop": ("AT76 AT72 DH8D SF34", 1500, 1500, 115, "A3", 14.0),
        "large": ("A318 A319 A320 A20N A321 A21N B737 B738 B739 B38M E190 E195 E75L CRJ9 CRJ7 BCS3 B752 F100",
                  2300, 2000, 140, "A3", 18.0),
        "heavy": ("A332 A333 A339 A343 A346 A359 A35K A306 B763 B764 B772 B77W B77L B788 B789 B78X MD11",
                  2000, 1900, 155, "A5", 32.5),
        "very heavy": ("A388 B744 B748 A124", 1500, 1700, 160, "A5", 40.0),
    }
    return {name: Performance(*rest) for names, *rest in table.values() for name in names.split()}


TYPES = _types()


class Impossible(ValueError):
    """What is described cannot be flown."""


@dataclass
class Point:
    """A place on the way and what is wanted there."""
    x: float
    y: float
    height: float
    speed: float
    straight: bool = False  # in a straight line down or up to the height, else as soon as the type can
    threshold: bool = False
    ground: bool = False    # rolls from here on


@dataclass
class State:
    t: float
    x: float
    y: float
    height: float
    speed: float
    vertical: float
    turn: float    # degrees a second, right is positive
    ground: bool
    nose: float | None = None  # degrees, where it is not the direction of the motion


def turn_radius(knots):
    """Nautical miles."""
    rate = math.radians(TAXI_TURN_RATE if knots < TAXI_KNOTS else TURN_RATE)
    metres = knots * KNOT
    banked = metres * metres / (GRAVITY * math.tan(BANK))
    return max(metres / rate, banked if knots >= TAXI_KNOTS else 0) / 1852


class Course:
    """The line over the ground: legs, with an arc inside each corner. Asked for rising distances only."""

    def __init__(self, points):
        if len(points) < 2:
            raise Impossible("needs two places at least")
        self.pieces = []  # (start, length, x, y, direction, curvature), curvature in radians a mile, right positive
        self.marks = [0.0]  # distance of each point
        at, x, y = 0.0, points[0].x, points[0].y
        used = 0.0
        for i in range(1, len(points)):
            leg = math.hypot(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y)
            if leg < 1e-6:
                raise Impossible(f"place {i + 1} is the same as the one before")
            direction = math.atan2(points[i].x - points[i - 1].x, points[i].y - points[i - 1].y)
            cut = angle = radius = 0.0
            if i + 1 < len(points):
                after = math.atan2(points[i + 1].x - points[i].x, points[i + 1].y - points[i].y)
                angle = math.remainder(after - direction, 2 * math.pi)
                # Who has landed slows down before he turns; in the air the speed may still be that of the leg before.
                radius = turn_radius(points[i].speed if points[i - 1].threshold else
                                     max(points[i - 1].speed, points[i].speed))
                if abs(angle) > math.radians(170):
                    raise Impossible(f"turns back at place {i + 1}")
                cut = radius * math.tan(abs(angle) / 2)
            if used + cut > leg + 1e-9:
                raise Impossible(f"the turn at place {i + 1 if cut > used else i} does not fit: "
                                 f"{used + cut:.2f} miles on a leg of {leg:.2f}")
            length = leg - used - cut
            self.pieces.append((at, length, x, y, direction, 0.0))
            at, x, y = at + length, x + length * math.sin(direction), y + length * math.cos(direction)
            if abs(angle) > 1e-9:
                arc = radius * abs(angle)
                self.pieces.append((at, arc, x, y, direction, math.copysign(1 / radius, angle)))
                self.marks.append(at + arc / 2)
                at += arc
                x = points[i].x + cut * math.sin(direction + angle)
                y = points[i].y + cut * math.cos(direction + angle)
            else:
                self.marks.append(at)
            used = cut
        self.length = at
        self._index = 0

    def place(self, distance):
        """x, y and curvature."""
        while self._index + 1 < len(self.pieces) and distance >= self.pieces[self._index + 1][0]:
            self._index += 1
        start, _, x, y, direction, curvature = self.pieces[self._index]
        way = distance - start
        if curvature == 0:
            return x + way * math.sin(direction), y + way * math.cos(direction), 0.0
        turned = direction + way * curvature
        return (x + (math.cos(direction) - math.cos(turned)) / curvature,
                y + (math.sin(turned) - math.sin(direction)) / curvature, curvature)


def towards(value, target, most):
    return min(target, value + most) if target > value else max(target, value - most)


def braking_from(knots, metres):
    """The speed from which one comes down to another in that distance."""
    return math.sqrt((knots * KNOT) ** 2 + 2 * TAXI_BRAKING * metres) / KNOT


def fly(points, performance, elevation, longest, exit_knots=EXIT_KNOTS, end_knots=0.0):
    """The states of a flight, STEP apart, until the end of its course or for `longest` seconds.

    Who lands takes the corner behind the runway with `exit_knots` and comes to the end with `end_knots`.
    """
    course = Course(points)
    first = points[0]
    ground = first.ground
    height, speed, vertical = first.height, first.speed, 0.0
    distance, leg, profile_from = 0.0, 1, first.height
    landing = any(p.threshold for p in points)
    states = []
    for step in range(int(longest / STEP) + 1):
        while leg < len(points) - 1 and distance >= course.marks[leg]:
            profile_from = height
            leg += 1
        target = points[leg]
        x, y, curvature = course.place(distance)
        turn = math.degrees(curvature * speed / 3600)
        states.append(State(step * STEP, x, y, height, speed, vertical, turn, ground))
        rolling_out = ground and landing
        if rolling_out:
            # Slow enough for the exit, and to stop where the course ends.
            left = max(0.0, course.length - distance) * 1852
            to_exit = max(0.0, course.marks[-2] - 0.02 - distance) * 1852
            allowed = min(ROLL_OUT_KNOTS, braking_from(exit_knots, to_exit), braking_from(end_knots, left))
            speed = max(1.0, towards(speed, allowed, BRAKING * STEP))
            vertical = 0.0
        elif ground:
            speed = towards(speed, target.speed, ROLL_ACCELERATION * STEP)
            vertical = 0.0
            ground = speed < performance.lift_off or target.ground
        else:
            speed = towards(speed, target.speed, AIR_ACCELERATION * STEP)
            above = height - elevation
            if landing and points[leg - 1].threshold and above < THRESHOLD_FEET:
                wanted = -(150 + 500 * max(0.0, above) / THRESHOLD_FEET)
            elif target.straight:
                span = max(1e-6, course.marks[leg] - course.marks[leg - 1])
                part = min(1.0, (distance - course.marks[leg - 1]) / span)
                slope = (target.height - profile_from) / span
                wanted = slope * speed / 60 + (profile_from + slope * span * part - height) * 6
            else:
                wanted = (target.height - height) * 6
                wanted = max(-performance.descent, min(performance.climb, wanted))
            vertical = towards(vertical, wanted, VERTICAL_CHANGE * STEP)
            height += vertical / 60 * STEP
            if landing and height <= elevation:
                height, ground = elevation, True
        distance += speed / 3600 * STEP
        if distance >= course.length:
            break
    return states
