"""Which records the program has to take, which it drops, and which are broken, with an airport in sight or without.

The rules stand here once more, apart from the program, so that its counts can be held against them.
"""
import math
import re
from dataclasses import dataclass, field

FIELDS = 29
RANGE_NM = 40.0
HIGHEST_STATIC_ID = 10000
GROUND_KNOTS = 35
GROUND_RULES = ((45, 120), (90, 80), (120, 43))  # feet over the airport and knots: both at most
GROUND_MILES = 5.0  # from the airport in sight
NOT_AIRCRAFT = {"BALL", "EMER", "GLID", "GRND", "GND", "PARA", "SERV", "SHIP", "VENT"}
NOT_CATEGORIES = {"B1", "B2", "B4", "C1", "C2"}
NUMBER = re.compile(r"-?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?")
EARTH_NM = 6371.0 / 1.852
LONGEST_GAP = 60.0  # seconds without a report that part two stretches of a flight

ADMITTED, BROKEN = "admitted", "broken"


class _Broken(Exception):
    pass


def _number(text):
    match = NUMBER.match(text)
    if not match:
        raise _Broken
    return float(match.group())


def distance_nm(lat, lon, lat2, lon2):
    a = math.sin(math.radians(lat2 - lat) / 2) ** 2 + math.cos(math.radians(lat)) * math.cos(math.radians(lat2)) * \
        math.sin(math.radians(lon2 - lon) / 2) ** 2
    return 2 * EARTH_NM * math.asin(min(1.0, math.sqrt(a)))


def present(text):
    return "" if text == "null" else text


def on_ground(altitude, knots, elevation):
    if altitude <= 0 or knots <= GROUND_KNOTS:
        return True
    if elevation is None or altitude >= 14000:
        return False
    height = altitude - elevation
    return height <= 0 or any(abs(height) <= feet and knots <= most for feet, most in GROUND_RULES)


def verdict(line, centre, range_nm=RANGE_NM, elevation=None):
    """ADMITTED, BROKEN, or why the record is dropped. The airport in sight lies at the centre, with an elevation."""
    if " VEH" in line:
        return "vehicle"
    try:
        return _judge(line.split(","), centre, range_nm, elevation)
    except _Broken:
        return BROKEN


def _judge(f, centre, range_nm, elevation):
    if len(f) < FIELDS:
        raise _Broken
    _number(f[14])
    lat, lon = _number(f[2]), _number(f[3])
    if abs(lat) > 90 or abs(lon) > 180 or (abs(lat) <= 0.0001 and abs(lon) <= 0.0001):
        raise _Broken
    miles = distance_nm(*centre, lat, lon)
    if miles > range_nm:
        return "out of range"
    if len(f[11]) > 12:
        return "no identity"
    model, category = present(f[10]), present(f[28])
    if model in ("", "0", "ZZZZ"):
        return "no type"
    if category and (category in NOT_CATEGORIES or len(model) > 4 or model in NOT_AIRCRAFT):
        return "no aircraft"
    if f[17] == "adsb_icao" and _number(f[25]) > 360:
        raise _Broken
    digits = re.match(r"\d+", f[1])
    if not digits or int(digits.group()) > 0xFFFFFFFF:
        raise _Broken
    if int(digits.group()) <= HIGHEST_STATIC_ID:
        return "id of a parked aircraft"
    knots = _number(f[8])
    if f[4].lower().lstrip("-").startswith("nan"):
        altitude = 0.0
    else:
        altitude = _number(f[4])
    if f[9] in ("ERARMTR0", "AIRPORT1"):
        return "no identity"
    if not present(f[11]) and (not present(f[9]) or "@" in f[9]):
        return "no identity"
    ground = on_ground(altitude, knots, elevation)
    if ground and (elevation is None or miles > GROUND_MILES):
        return "on the ground"
    if f[7]:
        _number(f[7])
    for number in (5, 20) if ground else (5, 23, 20):
        _number(f[number])
    if not present(f[9]) or "@" in f[9] or len(f[9]) > 8:
        return "no callsign"  # shown only when the program knows the registration
    return ADMITTED


@dataclass
class Story:
    """A flight of a recording, by the identity of its transponder."""
    hexid: int
    callsign: str = ""
    type: str = ""
    registration: str = ""
    reports: int = 0
    admitted: int = 0
    spans: list = field(default_factory=list)  # [first, last] seconds of admitted reports without a break
    reasons: dict = field(default_factory=dict)
    standing: bool = False  # its first admitted report is one of an aircraft that stands
    _open: bool = False

    def add(self, second, judged, knots=""):
        self.reports += 1
        if judged == ADMITTED:
            self.standing = self.standing or (self.admitted == 0 and _number(knots) < 1)
            self.admitted += 1
            if self._open and second - self.spans[-1][1] <= LONGEST_GAP:
                self.spans[-1][1] = second
            else:
                self.spans.append([second, second])
            self._open = True
        else:
            self.reasons[judged] = self.reasons.get(judged, 0) + 1
            self._open = self._open and judged == BROKEN

    def reason(self):
        return max(self.reasons, key=lambda name: self.reasons[name]) if self.reasons else ""


def _settle(stories):
    """One report alone shows nothing, and a ghost goes with the first report of its real aircraft."""
    for story in stories.values():
        if any(last <= first for first, last in story.spans):
            story.reasons["one report alone"] = story.reasons.get("one report alone", 0) + 1
            story.spans = [span for span in story.spans if span[1] > span[0]]
    real = {s.callsign: s.spans[0][0] for s in stories.values() if s.spans and not s.callsign.endswith("_")}
    for story in stories.values():
        comes = real.get(story.callsign[:-1]) if story.callsign.endswith("_") else None
        if comes is not None:
            story.spans = [[first, min(last, comes)] for first, last in story.spans if first < comes]
            story.reasons["ghost of a flight that came"] = 1


def stamp_of(line):
    fields = line.split(",")
    match = re.fullmatch(r"\d{1,12}(\.\d+)?", fields[14]) if len(fields) > 14 else None
    return float(match.group()) if match else None


def expect(lines, centre, range_nm=RANGE_NM, elevation=None):
    """What the program has to make of a recording: a dictionary as it stands beside a generated one."""
    stories, broken, vehicles = {}, [], 0
    start, second = None, 0.0
    for line in lines:
        line = line.rstrip("\r\n")
        if not line:
            continue
        stamp = stamp_of(line)
        start = stamp if start is None else start
        if stamp is not None and abs(stamp - start - second) <= 3600:
            second = max(second, stamp - start)
        judged = verdict(line, centre, range_nm, elevation)
        vehicles += judged == "vehicle"
        if judged == BROKEN:
            broken.append(round(second, 1))
        fields = line.split(",")
        if judged == "vehicle" or len(fields) < FIELDS or not fields[1].isdigit():
            continue
        story = stories.setdefault(int(fields[1]), Story(int(fields[1])))
        story.callsign = story.callsign or present(fields[9])
        story.type = story.type or present(fields[10])
        story.registration = story.registration or present(fields[11])
        story.add(second, judged, fields[8])
    _settle(stories)
    return {
        "centre": list(centre), "rangeNm": range_nm, "start": start, "seconds": round(second, 1),
        "brokenLinesInRange": len(broken), "brokenSeconds": broken, "vehicleLines": vehicles,
        "flights": [{
            "callsign": s.callsign, "hexid": s.hexid, "type": s.type, "registration": s.registration,
            "reports": s.reports, "admitted": bool(s.spans), "standing": s.standing, "reason": "" if s.spans else s.reason(),
            "spans": [[round(first, 1), round(last, 1)] for first, last in s.spans],
        } for s in stories.values()],
    }
