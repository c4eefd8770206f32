"""The objects of a simulator's trace: when each was there and when it moved, and the paths of those that are watched."""
import json
from dataclasses import dataclass, field

MOVED = 1e-6    # degrees
SETTLED = 6.0   # seconds from the creation of an object that stands to its first pose
CLOSING = 5.0   # the program takes everything away when it ends, one after the other: no removal of a flight


@dataclass
class Path:
    """Of one object with a watched tail: poses as (utc, latitude, longitude, altitude, heading)."""
    oid: int
    poses: list = field(default_factory=list)
    removed: float | None = None  # utc


class Sky:
    """By tail: `created` times, `titles`, intervals in which one was `moving`; times are seconds since 1970."""

    def __init__(self, path, watched=(), standing=()):
        """`standing` are the tails that begin on the ground: they count from their creation on."""
        self.created, self.titles, self.moving, self.paths, self.end = {}, {}, {}, {}, 0.0
        self._watched, self._standing = set(watched), set(standing)
        self._removals = []  # times, ascending
        self._alive = {}  # object id: [tail, place at creation, when it first moved, its Path or None]
        with open(path, encoding="utf-8") as trace:
            for line in trace:
                try:
                    entry = json.loads(line)
                except ValueError:
                    continue  # the last line of a run that was cut
                self._take(entry)
        for record in self._alive.values():
            self._close(record, self.end)
        closing = self._closing()
        for path in (path for paths in self.paths.values() for path in paths):
            if path.removed is not None and path.removed >= closing:
                path.removed = None
        self.statics = sum(len(times) for tail, times in self.created.items() if tail.endswith("*"))

    def _take(self, entry):
        kind, oid, utc = entry["op"], entry["oid"], entry["utc"]
        if kind == "create":
            tail = entry["tail"]
            path = None
            if tail in self._watched:
                path = Path(oid)
                self.paths.setdefault(tail, []).append(path)
            moved = utc + SETTLED if tail in self._standing else None
            self._alive[oid] = [tail, (entry["lat"], entry["lon"]), moved, path]
            self.created.setdefault(tail, []).append(utc)
            self.titles[tail] = entry["title"]
        elif kind == "pose" and oid in self._alive:
            self.end = max(self.end, utc)
            record = self._alive[oid]
            _, (lat, lon), moved, path = record
            if moved is None and max(abs(entry["lat"] - lat), abs(entry["lon"] - lon)) > MOVED:
                record[2] = utc
            if path is not None:
                path.poses.append((utc, entry["lat"], entry["lon"], entry["alt"], entry["hdg"]))
        elif kind == "remove" and oid in self._alive:
            record = self._alive.pop(oid)
            self._removals.append(utc)
            if record[3] is not None:
                record[3].removed = utc
            self._close(record, utc)

    def _closing(self):
        """When the removals began that follow each other without a pause up to the end of the trace."""
        begin = self.end
        for utc in reversed(self._removals):
            if utc < begin - CLOSING:
                break
            begin = min(begin, utc)
        return begin

    def _close(self, record, utc):
        tail, _, moved, _ = record
        if moved is not None and utc > moved:
            self.moving.setdefault(tail, []).append((moved, utc))

    def moved_between(self, tail, first, last):
        """Seconds, for objects that never were two at a time."""
        return sum(max(0.0, min(last, end) - max(first, begin)) for begin, end in self.moving.get(tail, []))

    def last_seen(self, tail):
        return max((end for _, end in self.moving.get(tail, [])), default=0.0)
