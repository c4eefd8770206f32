"""Reading a file of described flights. Its form, with '#' for comments and indentation for what belongs to a flight:

    airport EGLL 51.4706 -0.4619 83           code, latitude, longitude, elevation in feet
    seconds 900                               how long the recording is
    stands ../airports/EGLL.txt               where its stands and taxi places are told, in the form of airport_plan.py
    runway 27R 51.4777 -0.4332 51.4776 -0.4850    name, its threshold, its far end

    flight BAW117 B77W G-STBA EGLL KJFK       callsign, type, registration, from, to; '-' for none, from and to may
                                              be left out
        at 30                                 begins at this second; below 0 it was on its way before
        every 2                               seconds between reports, 1 to 5 (2)
        depart 27R                            stands at the threshold, rolls and lifts off; else the first place
        315/12 6000 250                       a place with height and speed: bearing and miles from the airport,
        51.6,-0.9 @9000 280                   or latitude and longitude; '@' goes to the height in a straight line,
        27R@10 glide 180                      else as fast as the type climbs; or miles before a threshold, "glide"
                                              for the height of three degrees there
        land 27R 140 [exit 1.2] [left|right]  the speed over the threshold, where it leaves the runway and to which side
        touch 27R 75                          touches down and takes off again
        goaround 27R 140 250                  comes down to this height over the ground and climbs away
      the ground, one behind the other; a place is a point of the stands' file or latitude,longitude:
        stand 213 [until 90]                  stands here from the start, for ever or until this second of the recording
        push left|right|straight              is pushed off the stand, the nose swings to this side
        hold 40                               stands for so many seconds
        taxi L4N A1 [knots 12]                rolls over these places and stops at the last one
        lineup 27R A1 [at 1.5]                the same, then on to the runway, so many miles behind its threshold
        takeoff 27R                           places in the air follow
        park 213 C9 [seen 214]                rolls over these places to the stand, or comes down to it (helicopters);
                                              told are places that drift to another stand
        tow 213 L4N                           as park, on a tug
        jitter 4                              on the ground the places are off by so many metres
        only 0 150                            reports are heard from this second to that one
        plain                                 without attitude and true airspeed
        noise 15 25                           places off by so many metres, heights by so many feet
        broken 120 short                      the report at or after this second is broken in this way
    like BAW117 BAW117_ - -                   another identity on the same way, with lines of its own for the rest
    vehicle OPS1                              a ground vehicle; its places have the height "ground"
"""
import math
from dataclasses import dataclass, field, replace

import airport_plan
from flying import (EXIT_MILES, GLIDE, NM_PER_DEGREE, THRESHOLD_FEET, TYPES, Impossible, Performance, Point)

VEHICLE = Performance(0, 0, 1000, "C2")
GROUND_WORDS = ("depart", "takeoff", "land", "touch", "goaround", "stand", "push", "hold", "taxi", "lineup", "park", "tow")
BREAKS = ("short", "torn", "latitude", "longitude", "nowhere", "stamp", "altitude", "speed", "track", "heading", "hexid",
          "airspeed", "roll", "not-a-number")


class Complaint(Exception):
    """What is wrong with the file, with the line."""


@dataclass
class Flight:
    callsign: str
    type: str
    registration: str
    origin: str
    destination: str
    performance: Performance
    start: float = 0.0
    every: float = 2.0
    legs: list = field(default_factory=list)    # (word, its arguments) as the Journey takes them
    heard: tuple = (-math.inf, math.inf)
    plain: bool = False
    noise: tuple = (0.0, 0.0)
    jitter: float = 0.5                         # metres
    broken: list = field(default_factory=list)  # (second, how)
    vehicle: bool = False
    line: int = 0


@dataclass
class Runway:
    x: float
    y: float
    far_x: float
    far_y: float

    def on_line(self, miles, aside=0.0):
        """So far behind the threshold, and so far to the right."""
        length = math.hypot(self.far_x - self.x, self.far_y - self.y)
        east, north = (self.far_x - self.x) / length, (self.far_y - self.y) / length
        return self.x + miles * east + aside * north, self.y + miles * north - aside * east

    @property
    def length(self):
        return math.hypot(self.far_x - self.x, self.far_y - self.y)


class Scene:
    def __init__(self):
        self.code, self.lat, self.lon, self.elevation = "", 0.0, 0.0, 0.0
        self.seconds = 900.0
        self.runways, self.flights = {}, []
        self.plan = airport_plan.Plan()

    def to_plane(self, lat, lon):
        return (lon - self.lon) * NM_PER_DEGREE * math.cos(math.radians(lat)), (lat - self.lat) * NM_PER_DEGREE

    def to_earth(self, x, y):
        lat = self.lat + y / NM_PER_DEGREE
        return lat, self.lon + x / (NM_PER_DEGREE * math.cos(math.radians(lat)))

    def place(self, text):
        """x, y, and the height of the glide path there or None."""
        if "@" in text:
            runway, miles = text.split("@")
            return (*self.runways[runway].on_line(-float(miles)),
                    self.elevation + THRESHOLD_FEET + GLIDE * float(miles))
        if "," in text:
            lat, lon = text.split(",")
            return (*self.to_plane(float(lat), float(lon)), None)
        bearing, miles = text.split("/")
        angle = math.radians(float(bearing))
        return float(miles) * math.sin(angle), float(miles) * math.cos(angle), None

    def point(self, words):
        x, y, glide = self.place(words[0])
        height, speed = words[1], float(words[2])
        if height == "ground":
            return Point(x, y, self.elevation, speed, ground=True)
        if height == "glide":
            if glide is None:
                raise ValueError("glide needs a place before a runway")
            return Point(x, y, glide, speed, straight=True)
        return Point(x, y, float(height.lstrip("@")), speed, straight=height.startswith("@"))

    def departure(self, name, performance):
        runway = self.runways[name]
        out = runway.on_line(runway.length + 1)
        return [Point(runway.x, runway.y, self.elevation, 0, ground=True),
                Point(*out, self.elevation + 3000, performance.lift_off + 25)]

    def landing(self, name, speed, at_exit=EXIT_MILES, side=None):
        """Threshold, the place where it leaves the runway, and where it is off."""
        runway = self.runways[name]
        at_exit = min(at_exit, runway.length - 0.3)
        if side is None:  # where the airport is
            right = runway.on_line(1, 0.1)
            left = runway.on_line(1, -0.1)
            side = "right" if math.hypot(*right) < math.hypot(*left) else "left"
        aside = 0.08 if side == "right" else -0.08
        return [Point(runway.x, runway.y, self.elevation + THRESHOLD_FEET, speed, straight=True, threshold=True),
                Point(*runway.on_line(at_exit), self.elevation, 15, ground=True),
                Point(*runway.on_line(at_exit + 0.08, aside), self.elevation, 15, ground=True)]

    def ground_place(self, name):
        if name in self.plan.points:
            return self.to_plane(*self.plan.points[name])
        lat, lon = name.split(",")
        return self.to_plane(float(lat), float(lon))


def _none(text):
    return "" if text == "-" else text


def _identity(words, number):
    words = [_none(w) for w in words] + [""] * 4
    callsign, kind, registration, origin, destination = words[:5]
    performance = TYPES.get(kind or "A320")
    if performance is None:
        raise ValueError(f"type {kind} has no performance in flying.py")
    return Flight(callsign, kind, registration, origin, destination, performance, line=number)


def _named(words, name):
    """The value behind a word, both taken out of the list; None without it."""
    if name not in words:
        return None
    i = words.index(name)
    value = words[i + 1]
    del words[i:i + 2]
    return value


def _stand(scene, name):
    if name not in scene.plan.stands:
        raise ValueError(f"there is no stand {name}")
    return name


def _ground_leg(scene, name, words):
    """The arguments of a leg as the Journey takes them."""
    if name in ("depart", "takeoff", "land", "touch", "goaround", "lineup") and words[0] not in scene.runways:
        raise ValueError(f"there is no runway {words[0]}")
    if name in ("depart", "takeoff"):
        return (words[0],)
    if name == "land":
        at_exit = float(_named(words, "exit") or EXIT_MILES)
        return (words[0], float(words[1]), at_exit, words[2] if len(words) > 2 else None)
    if name in ("touch", "goaround"):
        return (words[0], *map(float, words[1:]))
    if name == "stand":
        until = _named(words, "until")
        return (_stand(scene, words[0]), None if until is None else float(until))
    if name == "push":
        if words[0] not in ("left", "right", "straight"):
            raise ValueError("a push goes left, right or straight")
        return (words[0],)
    if name == "hold":
        return (float(words[0]),)
    if name == "taxi":
        knots = _named(words, "knots")
        return ([scene.ground_place(w) for w in words], *([float(knots)] if knots else []))
    if name == "lineup":
        miles = float(_named(words, "at") or 0)
        return (words[0], [scene.ground_place(w) for w in words[1:]], miles)
    seen = _named(words, "seen") or ""
    places = [scene.ground_place(w) for w in words[1:]]
    if name == "tow":
        return (places, _stand(scene, words[0]))
    return (places, _stand(scene, words[0]), seen and _stand(scene, seen))


def _option(scene, flight, words):
    name, rest = words[0], words[1:]
    if name == "at":
        flight.start = float(rest[0])
    elif name == "every":
        flight.every = float(rest[0])
        if not 1 <= flight.every <= 5:
            raise ValueError("reports come every 1 to 5 seconds")
    elif name == "jitter":
        flight.jitter = float(rest[0])
    elif name == "only":
        flight.heard = (float(rest[0]), float(rest[1]))
    elif name == "plain":
        flight.plain = True
    elif name == "noise":
        flight.noise = (float(rest[0]), float(rest[1]))
    elif name == "broken":
        if rest[1] not in BREAKS:
            raise ValueError(f"{rest[1]} is none of {', '.join(BREAKS)}")
        flight.broken.append((float(rest[0]), rest[1]))
    elif name in GROUND_WORDS:
        flight.legs.append((name, _ground_leg(scene, name, rest)))
    else:
        flight.legs.append(("air", (scene.point(words),)))


def read(path):
    scene, flight = Scene(), None
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        text = line.split("#")[0]
        words = text.split()
        if not words:
            continue
        try:
            if text[0].isspace():
                _option(scene, flight, words)
            elif words[0] == "airport":
                scene.code = words[1]
                scene.lat, scene.lon, scene.elevation = map(float, words[2:5])
            elif words[0] == "seconds":
                scene.seconds = float(words[1])
            elif words[0] == "stands":
                scene.plan = airport_plan.read(path.parent / words[1])
            elif words[0] == "runway":
                scene.runways[words[1]] = Runway(*scene.to_plane(float(words[2]), float(words[3])),
                                                 *scene.to_plane(float(words[4]), float(words[5])))
            elif words[0] in ("flight", "vehicle", "like"):
                if words[0] == "flight":
                    flight = _identity(words[1:], number)
                elif words[0] == "vehicle":
                    flight = Flight(f"{words[1]} VEH", "SERV", "", "", "", VEHICLE, vehicle=True, line=number)
                else:
                    model = next(f for f in scene.flights if f.callsign == words[1])
                    flight = _identity([words[2], model.type if len(words) < 4 else words[3], *words[4:]], number)
                    flight = replace(flight, start=model.start, every=model.every, legs=list(model.legs),
                                     performance=model.performance)
                scene.flights.append(flight)
            else:
                raise ValueError(f"unknown word {words[0]}")
        except (ValueError, KeyError, IndexError, AttributeError, StopIteration, OSError, Impossible,
                airport_plan.Complaint) as error:
            raise Complaint(f"{path}, line {number}: {line.strip()}: {error!r}") from error
    return scene
