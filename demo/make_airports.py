#!/usr/bin/env python3
"""Makes stock airport files as the data site serves them: make_airports.py ROOT [--flights FILE] [--plans DIR]

Writes ROOT/downloads/MSFS/archive/stock/<code>.xml for each description of stands in DIR (demo/airports). Each stand gets
options for all days of the week: the flights of FILE that park there, and others that fit on it, drawn from
the reference database's sources. The same input gives the same bytes.
"""
import argparse
import random
import re
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path
from xml.sax.saxutils import quoteattr

import airport_plan
import flight_file

DATABASE = Path(__file__).parent.parent / "input" / "sources" / "dbase.xml"
DAYS = range(1, 8)
HALF_HOURS = 48
OTHERS = 3           # aircraft a stand beside those of the demo
MARGIN = 1.8         # metres that a half span may exceed a stand's radius
SMALL = {            # what the database has no registrations of: (airline, type, half span)
    "heli": [("PVT", "EC35", 5.1), ("PVT", "AS50", 5.3), ("SAZ", "EC45", 5.5), ("PVT", "A109", 5.5)],
    "light": [("PVT", "C172", 5.5), ("PVT", "P28A", 5.4), ("PVT", "DA40", 6.0), ("PVT", "SR22", 5.8)],
    "business": [("NJE", "C56X", 8.6), ("NJE", "E55P", 8.0), ("VJT", "GLEX", 14.3), ("PVT", "GLF6", 15.2)],
}


class Fleet:
    """Registered aircraft of the database with their half spans in metres."""

    def __init__(self):
        # A document of several top elements, which the parser does not take as it is.
        text = re.sub(r"<\?xml[^>]*\?>", "", DATABASE.read_text(encoding="utf-8"))
        root = ElementTree.fromstring(f"<all>{text}</all>")
        spans = {row.get("type"): float(row.get("meters")) / 2 for row in root.iter("wingspan")}
        self.aircraft = [(row.get("opr") or row.get("airl"), row.get("type"), row.get("reg"), spans[row.get("type")],
                          row.get("cargo") == "true") for row in root.iter("db") if row.get("type") in spans]

    def fitting(self, stand, rng, count):
        """(airline, type, registration)"""
        if stand.heli or stand.radius < 12 or (stand.radius < 18 and not stand.cargo):
            kind = "heli" if stand.heli else "light" if stand.radius < 12 else "business"
            for number in range(count):
                airline, type_, half = rng.choice(SMALL[kind])
                if half <= stand.radius + MARGIN:
                    yield airline, type_, "G-" + "".join(rng.choice("ABCDEFHKLMNPRSTUVWXZ") for _ in range(4))
            return
        # Not the small ones on the large stands.
        fit = [a for a in self.aircraft if a[4] == stand.cargo and 0.7 * stand.radius <= a[3] <= stand.radius + MARGIN]
        for airline, type_, registration, _, _ in rng.sample(fit, min(count, len(fit))):
            yield airline, type_, registration


def airline_of(flight):
    callsign = flight.callsign
    return callsign[:3] if len(callsign) > 3 and callsign[:3].isalpha() and callsign[3].isdigit() else "PVT"


def own_options(flights):
    """Of the arrivals described: stand name to (airline, type, registration, callsign). Those that stand from the start
    are left for the program to learn."""
    options = {}
    for flight in flights:
        for word, arguments in flight.legs:
            if word in ("park", "tow"):
                name = arguments[1]
                options.setdefault(name, []).append((airline_of(flight), flight.type, flight.registration,
                                                     flight.callsign))
    return options


def options_of(stand, fleet, own):
    """Rows of a stand: the day is shared out between its aircraft, another way on each day."""
    rng = random.Random(f"{stand.name} {stand.lat:.5f}")
    aircraft = list(own.get(stand.name, []))
    for airline, type_, registration in fleet.fitting(stand, rng, OTHERS):
        callsign = f"{airline}{rng.randint(1, 999)}" if airline != "PVT" else registration.replace("-", "")
        aircraft.append((airline, type_, registration, callsign))
    share = HALF_HOURS // max(1, len(aircraft))
    for day in DAYS:
        for number, (airline, type_, registration, callsign) in enumerate(aircraft):
            begin = (number * share + day * 5) % HALF_HOURS
            length = rng.randint(max(1, share // 2), share)
            hours = sorted((begin + k) % HALF_HOURS for k in range(length))
            yield {"reg": registration, "airl": airline, "type": type_, "day": str(day),
                   "hh": ",".join(map(str, hours)), "cs": callsign}


def quality(stands):
    """How well the stands are known, 0 to 100, by their rows: number, weekdays, half hours."""
    total = 0
    for rows in stands:
        if rows:
            half_hours = sum(len(row["hh"].split(",")) for row in rows)
            total += 10000 + min(20 * len(rows), 4000) + 100 * len({r["day"] for r in rows}) + 2 * min(half_hours, 600)
    return max(0, min(100, round(total / len(stands) * 0.00625)))


def element(name, attributes, end="/>"):
    return f"<{name} " + " ".join(f"{key}={quoteattr(value)}" for key, value in attributes.items()) + end


def document(plan, fleet, own, publisher):
    rows = {stand.name: list(options_of(stand, fleet, own)) for stand in plan.stands.values()}
    parameters = {"airport_name": plan.name, "publisher": publisher, "altitude": plan.elevation,
                  "num_parkpos": len(plan.stands), "Qf_real": quality(list(rows.values())), "Qf_soft": -1,
                  "RT_traffic_week": plan.week}
    lines = ['<?xml version="1.0" encoding="utf-8"?>', "<meta>", '\t<info name="content" value="airport file" />',
             "</meta>", "<parameters>"]
    lines += ["\t" + element("parameter", {"name": name, "value": str(value)}) for name, value in parameters.items()]
    lines += ["</parameters>", "<parkpositions>"]
    for stand in plan.stands.values():
        kind = {"heli": "true"} if stand.heli else {"cargo": str(stand.cargo).lower()}
        lines.append("\t" + element("parkpos", {
            "id": stand.name, "latitude": f"{stand.lat:.6f}", "longitude": f"{stand.lon:.6f}",
            "heading": f"{stand.heading:.1f}", "radius": f"{stand.radius:.1f}", **kind,
            "ramp": str(stand.ramp).lower()}, ">"))
        lines += ["\t\t" + element("opt", row) for row in rows[stand.name]] + ["\t</parkpos>"]
    return "\n".join([*lines, "</parkpositions>", ""])


def main():
    here = Path(__file__).parent
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("root", metavar="ROOT", type=Path)
    parser.add_argument("--flights", type=Path, default=here / "flights" / "heathrow.txt")
    parser.add_argument("--plans", type=Path, default=here / "airports")
    args = parser.parse_args()
    fleet = Fleet()
    try:
        scene = flight_file.read(args.flights)
        for path in sorted(args.plans.glob("*.txt")):
            plan = airport_plan.read(path)
            own = own_options(scene.flights) if plan.code == scene.plan.code else {}
            for publisher in ("stock", "simaddon"):
                folder = args.root / "downloads" / "MSFS" / "archive" / publisher
                folder.mkdir(parents=True, exist_ok=True)
                (folder / f"{plan.code}.xml").write_text(document(plan, fleet, own, publisher), encoding="utf-8")
            print(f"{plan.code}: {len(plan.stands)} stands")
    except (flight_file.Complaint, airport_plan.Complaint, OSError) as complaint:
        sys.exit(str(complaint))


if __name__ == "__main__":
    main()
