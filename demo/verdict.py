"""Holds the stories of a recording (see stories.py) against the trace and the log of a run."""
import math
import re

import stories
from airport_plan import distance

DELAY = 30.0         # seconds from a report to its showing
LATE = 60.0          # seconds that an end may come later than in the reports
PREDICTED = 150.0    # and the removal after the last report: in the air, then rolling out
STAND_METRES, STAND_DEGREES = 2.0, 3.0
AT_STAND = 12.0      # metres, to tell the stand at which an aircraft ended
GROUND_FEET = 45.0   # over the elevation: no centre of gravity stands higher on its wheels
FLOWN_FEET = 300.0
MOVED_METRES = 0.05
PUSHED = 0.5         # of the half span, that it must have gone backwards
TURNED = 30.0        # degrees, less is a straight push
HELD_METRES = 60.0   # from the true place of the stop
HELD_SHARE = 0.5     # of its time


def angle(a, b):
    return abs(math.remainder(a - b, 360))


class Judge:
    def __init__(self, expected, sky, log, began, speed, elevation):
        self.stands = expected.get("stands", {})
        self.sky, self.log, self.elevation = sky, log, elevation
        self.shown_at = lambda second: began + second / speed + DELAY

    def _off(self, pose, name):
        lat, lon, heading = self.stands[name]
        return distance(pose[1], pose[2], lat, lon), angle(pose[4], heading)

    def nearest(self, pose):
        """Name of the stand at which it is, or an empty text."""
        if not self.stands or pose[3] - self.elevation > GROUND_FEET:
            return ""
        name = min(self.stands, key=lambda n: self._off(pose, n)[0])
        return name if self._off(pose, name)[0] <= AT_STAND else ""

    def logged(self, pattern):
        return any(re.search(pattern, line) for line in self.log)

    def due(self, story):
        """The run went on long enough for the end to be seen."""
        wait = PREDICTED if story["end"] == "removed" else LATE if story["landed"] is not None else 0.0
        return self.sky.end >= self.shown_at(story["at"]) + wait

    def faults(self, story):
        """What is not as told; empty when all of it is."""
        paths = [path for path in self.sky.paths.get(story["callsign"], []) if path.poses]
        if not paths:
            return ["was not shown"]
        found = []
        poses = [pose for path in paths for pose in path.poses]
        if story["from"]:
            found += self._stood(story, poses)
        if story["pushed"]:
            found += self._pushed(story, poses)
        if story["first"]:
            found += self._towed(story)
        found += self._heights(story, poses)
        for hold in story["holds"]:
            found += self._held(story, hold, poses)
        return found + getattr(self, "_end_" + story["end"])(story, paths[-1], poses)

    def _stood(self, story, poses):
        metres, degrees = self._off(poses[0], story["from"])
        if metres > STAND_METRES or degrees > STAND_DEGREES:
            return [f"began {metres:.1f} m and {degrees:.1f} degrees off stand {story['from']}"]
        return []

    def _pushed(self, story, poses):
        back = turned = 0.0
        for a, b in zip(poses, poses[1:]):
            step = distance(a[1], a[2], b[1], b[2])
            if step > 0.05 and b[3] - self.elevation < GROUND_FEET:
                course = math.degrees(math.atan2((b[2] - a[2]) * math.cos(math.radians(a[1])), b[1] - a[1]))
                if angle(course, b[4]) > 120:
                    back += step
                    turned += math.remainder(b[4] - a[4], 360)
        if back < PUSHED * story["halfSpan"]:
            return [f"went only {back:.0f} m backwards"]
        side = "straight" if abs(turned) < TURNED else "right" if turned > 0 else "left"
        return [] if side == story["pushed"] else [f"was pushed {side}, by {turned:.0f} degrees"]

    def _towed(self, story):
        cs = re.escape(story["callsign"])
        faults = []
        if not self.logged(rf"\b{re.escape(story['first'])} *: *{cs} .*arrived at stand"):
            faults.append(f"the log tells of no arrival at {story['first']}")
        if not self.logged(rf"towed aircraft {cs}\b.* parks|towed aircraft .*{cs}.* parks"):
            faults.append("the log tells of no towed aircraft that parks")
        return faults

    def _heights(self, story, poses):
        heights = [pose[3] - self.elevation for pose in poses]
        lowest = min(range(len(heights)), key=heights.__getitem__)
        if story["around"]:
            if heights[lowest] < GROUND_FEET:
                return [f"came down to {heights[lowest]:.0f} ft"]
        elif story["touched"]:
            if heights[lowest] >= GROUND_FEET:
                return [f"came down to {heights[lowest]:.0f} ft only"]
        return []

    def _held(self, story, hold, poses):
        second, length, lat, lon = hold
        if length < stories.LONG_HOLD:
            return []
        near = [p for p in poses if distance(p[1], p[2], lat, lon) < HELD_METRES]
        still = sum(min(1.0, b[0] - a[0]) for a, b in zip(near, near[1:])
                    if distance(a[1], a[2], b[1], b[2]) < MOVED_METRES)
        if still < HELD_SHARE * length:
            return [f"stood {still:.0f} of {length:.0f} s where it had to wait"]
        return []

    def _end_parked(self, story, path, poses):
        pose = path.poses[-1]
        if path.removed is not None:
            return [f"was removed at {self._where(pose)}"]
        faults = []
        metres, degrees = self._off(pose, story["stand"])
        if metres > STAND_METRES or degrees > STAND_DEGREES:
            faults.append(f"ended at {self._where(pose)}, {metres:.1f} m and {degrees:.1f} degrees off {story['stand']}")
        if story["still"]:
            arrived = next((i for i, p in enumerate(path.poses) if self._off(p, story["stand"])[0] <= STAND_METRES), 0)
            parked = path.poses[arrived:]
            moved = max((distance(p[1], p[2], pose[1], pose[2]) for p in parked), default=0.0)
            if story["from"] and moved > MOVED_METRES:
                faults.append(f"moved {moved:.2f} m while it stood")
        return faults

    def _end_away(self, story, path, poses):
        pose = path.poses[-1]
        feet = pose[3] - self.elevation
        faults = []
        if feet < FLOWN_FEET:
            faults.append(f"ended at {feet:.0f} ft, {self._where(pose)}")
        last = self.shown_at(story["last"])
        if path.removed is not None and path.removed < last - LATE:
            faults.append(f"was removed {last - path.removed:.0f} s before its last report")
        return faults

    def _end_removed(self, story, path, poses):
        pose = path.poses[-1]
        if path.removed is None:
            return [f"was not removed, stands {self._where(pose)}"]
        if path.removed < self.shown_at(story["last"]) - 5:
            return ["was removed before its last report"]
        if story["why"].endswith("final") and pose[3] - self.elevation > GROUND_FEET:
            return [f"was removed in the air, at {pose[3] - self.elevation:.0f} ft"]
        return []

    def _where(self, pose):
        name = self.nearest(pose)
        return f"stand {name}" if name else f"{pose[1]:.5f},{pose[2]:.5f}"

    def ended_at(self, story):
        """The stand for those that ended on one, else what became of it."""
        paths = [path for path in self.sky.paths.get(story["callsign"], []) if path.poses]
        if not paths:
            return "not shown"
        if paths[-1].removed is not None:
            return "gone"
        pose = paths[-1].poses[-1]
        if pose[3] - self.elevation > FLOWN_FEET:
            return "away"
        return self.nearest(pose) or "off stand"


def tell(expected, judge):
    """Prints each story with its verdict; the number of those that did not end as told."""
    failed = open_ = 0
    lines = []
    for story in expected["stories"]:
        if not judge.due(story):
            open_ += 1
            continue
        faults = judge.faults(story)
        failed += bool(faults)
        lines.append(f"  {'as told' if not faults else 'NOT SO':<13} {story['callsign']} {story['type']} {story['text']}")
        lines += [f"  {'':<13}   {fault}" for fault in faults]
    told = len(expected["stories"]) - open_
    print(f"Stories         {told - failed} of {told} ended as told"
          + (f", {open_} not over in this run" if open_ else ""))
    print("\n".join(lines))
    places = sorted((story["callsign"], judge.ended_at(story)) for story in expected["stories"])
    print("Ended at        " + ", ".join(f"{callsign} {place}" for callsign, place in places))
    return failed
