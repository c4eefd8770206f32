"""Reading the description of an airport's stands. Its form, with '#' for comments:

    airport EGLL 51.4706 -0.4619 83 London Heathrow    code, reference point, elevation in feet, name
    week 31                                            week of traffic on which the options rest
    row 501-511 -1830 240 step 0 -44 heading 270 radius 20 [ramp] [cargo] [heli]
    stand H1 1750 300 heading 90 radius 9 heli ramp    a single one
    point A1 1983 590                                  a place on the taxiways, for descriptions of flights

Places are metres east and north of the reference point, headings degrees true, radii metres. The taxi lane runs 2.5
radii behind the stands, which is where a pushback ends.
"""
import math
import re
from dataclasses import dataclass, field

METRES_PER_DEGREE = 60.0405 * 1852
LANE = 2.5  # radii


class Complaint(Exception):
    """What is wrong with the file, with the line."""


@dataclass(frozen=True)
class Stand:
    name: str
    lat: float
    lon: float
    heading: float
    radius: float
    cargo: bool = False
    ramp: bool = False
    heli: bool = False

    def ahead(self, metres, aside=0.0):
        """Latitude and longitude so far ahead of an aircraft here, and so far to its right."""
        angle = math.radians(self.heading)
        return offset(self.lat, self.lon, metres * math.sin(angle) + aside * math.cos(angle),
                      metres * math.cos(angle) - aside * math.sin(angle))

    def metres_from(self, lat, lon):
        return distance(self.lat, self.lon, lat, lon)


@dataclass
class Plan:
    code: str = ""
    lat: float = 0.0
    lon: float = 0.0
    elevation: int = 0
    name: str = ""
    week: int = 0
    stands: dict = field(default_factory=dict)
    points: dict = field(default_factory=dict)  # name: (latitude, longitude)

    def nearest(self, lat, lon):
        """Stand and metres."""
        stand = min(self.stands.values(), key=lambda s: s.metres_from(lat, lon))
        return stand, stand.metres_from(lat, lon)


def offset(lat, lon, east, north):
    north_lat = lat + north / METRES_PER_DEGREE
    return north_lat, lon + east / (METRES_PER_DEGREE * math.cos(math.radians(north_lat)))


def distance(lat, lon, lat2, lon2):
    """Metres, over short ways."""
    return math.hypot((lat2 - lat) * METRES_PER_DEGREE,
                      (lon2 - lon) * METRES_PER_DEGREE * math.cos(math.radians((lat + lat2) / 2)))


def _names(text):
    match = re.fullmatch(r"([A-Z]*)(\d+)-(\d+)", text)
    if not match:
        raise ValueError("a row is named like 501-511 or G1-8")
    return [f"{match[1]}{number}" for number in range(int(match[2]), int(match[3]) + 1)]


def _kind(words):
    values = dict(zip(words[:4:2], map(float, words[1:4:2])))
    flags = words[4:]
    if set(values) != {"heading", "radius"} or not set(flags) <= {"cargo", "ramp", "heli"}:
        raise ValueError("wanted are heading, radius and the kinds cargo, ramp, heli")
    return {**values, **{flag: True for flag in flags}}


def _line(plan, words):
    word = words[0]
    if word == "airport":
        plan.code, plan.name = words[1], " ".join(words[5:])
        plan.lat, plan.lon, plan.elevation = float(words[2]), float(words[3]), int(words[4])
    elif word == "week":
        plan.week = int(words[1])
    elif word == "point":
        plan.points[words[1]] = offset(plan.lat, plan.lon, float(words[2]), float(words[3]))
    elif word in ("row", "stand"):
        x, y = float(words[2]), float(words[3])
        names, step, rest = [words[1]], (0.0, 0.0), words[4:]
        if word == "row":
            names, step, rest = _names(words[1]), (float(words[5]), float(words[6])), words[7:]
        for i, name in enumerate(names):
            if name in plan.stands:
                raise ValueError(f"stand {name} stands there twice")
            plan.stands[name] = Stand(name, *offset(plan.lat, plan.lon, x + i * step[0], y + i * step[1]), **_kind(rest))
    else:
        raise ValueError(f"unknown word {word}")


def read(path):
    plan = Plan()
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        words = line.split("#")[0].split()
        if words:
            try:
                _line(plan, words)
            except (ValueError, IndexError) as error:
                raise Complaint(f"{path}, line {number}: {line.strip()}: {error!r}") from error
    return plan
