#!/usr/bin/env python3
"""Makes dbase.xml, AIG-regcodes.xml, airports_msfs.xml and airports_msfs_names.xml beside this script.

The text files beside it hold what we know ourselves; the long lists come from three public tables:
  TYPES.csv     designator,description,wake     ICAO type designators (L2J: landplane, two engines, jet)
  AIRLINES.csv  icao,name,callsign,country,active
  AIRPORTS.csv  icao,iata,lat_deg,lon_deg,elevation_ft,name
The XML files are kept, so that a build needs neither the tables nor this script. A name that the tables do not know
is an error, so that a typing mistake in a text file does not ship.
"""
import argparse
import csv
import re
import sys
from pathlib import Path
from xml.sax.saxutils import quoteattr

HERE = Path(__file__).resolve().parent
# Special designators of the list that are no aircraft: vehicles, ships, balloons of a tower and the like.
NO_AIRCRAFT = {"BALL", "DRON", "EMER", "FFLO", "GND", "PARA", "SERV", "SHIP", "TWR", "UHEL", "VFHC", "ZZZZ"}
# A code by which add-on packages mark liveries that are not meant for live traffic.
NO_AIRLINE = {"RFO"}

problems = []
fleet_types = {}  # by registration


def rows(name):
    """The lines of a text file beside this script, without comments and empty ones."""
    for line in (HERE / name).read_text(encoding="utf-8").splitlines():
        line = line.split("#")[0].strip()
        if line:
            yield line


def check(known, names, where):
    for name in names:
        if name not in known:
            problems.append(f"{where}: {name} is unknown")


def wrapped(section, element, attribute, names, width=16):
    """A section whose comma lists hold `width` names each."""
    names = list(names)
    lines = [f"<{section}>"]
    for start in range(0, len(names), width):
        part = ",".join(names[start:start + width])
        lines.append(f"  <{element} {attribute}={quoteattr(part)}/>")
    return lines + [f"</{section}>"]


def single(section, lines):
    return [f"<{section}>"] + ["  " + line for line in lines] + [f"</{section}>"]


def element(tag, **attributes):
    return f"<{tag} " + " ".join(f"{k}={quoteattr(v)}" for k, v in attributes.items()) + "/>"


def expand(word):
    """D-AIU[AB] stands for D-AIUA and D-AIUB."""
    found = re.fullmatch(r"(.*)\[(\w+)\]", word)
    return [found[1] + letter for letter in found[2]] if found else [word]


def read_fleets(types, airlines):
    records = []
    for line in rows("fleets.txt"):
        airline, head, *words = line.split()
        cargo = head.endswith("!")
        kind, _, operator = head.rstrip("!").partition(":")
        check(types, [kind], "fleets.txt")
        check(airlines, [airline] + ([operator] if operator else []), "fleets.txt")
        for reg in (reg for word in words for reg in expand(word)):
            if reg in fleet_types:
                problems.append(f"fleets.txt: {reg} stands twice")
            fleet_types[reg] = kind
            attributes = {"reg": reg, "airl": airline, "type": kind}
            if operator:
                attributes["opr"] = operator
            if cargo:
                attributes["cargo"] = "true"
            records.append(element("db", **attributes))
    return records


def make_dbase(type_rows, airline_rows):
    types = {r["designator"]: r for r in type_rows if r["designator"] not in NO_AIRCRAFT}
    airlines = {r["icao"] for r in airline_rows if re.fullmatch(r"[A-Z0-9]{3}", r["icao"])}
    for line in rows("airlines_extra.txt"):
        airlines.update(line.split())
    airlines -= NO_AIRLINE

    listed = {}
    for line in rows("categories.txt"):
        section, _, names = line.partition(":")
        listed.setdefault(section, set()).update(names.split())
    for section, names in listed.items():
        check(types, sorted(names), f"categories.txt, {section}")
    rotor = {name for name, r in types.items() if r["description"].startswith("H")}
    heavy = {name for name, r in types.items() if r["wake"] in "HJ" and r["description"][2] in "JT"}
    groups = [listed["large"], heavy - listed["high_performance"], listed["buzjet"], rotor,
              listed["high_performance"]]
    for i, a in enumerate(groups):
        for b in groups[i + 1:]:
            problems.extend(f"categories.txt: {name} stands in two categories" for name in sorted(a & b))

    similar = [line.split() for line in rows("similar.txt")]
    for row in similar:
        check(types, row, "similar.txt")
        if len({next((i for i, group in enumerate(groups) if name in group), None) for name in row}) > 1:
            problems.append(f"similar.txt: {' '.join(row)} are of several categories")

    spans = [line.split() for line in rows("wingspans.txt")]
    check(types, [name for name, _ in spans], "wingspans.txt")
    if len({name for name, _ in spans}) != len(spans):
        problems.append("wingspans.txt: a type stands twice")

    fixes = [line.split() for line in rows("fixes.txt")]
    check(types, [right for _, right in fixes], "fixes.txt")
    problems.extend(f"fixes.txt: {wrong} is a type itself" for wrong, _ in fixes if wrong in types)

    freighters = {name for line in rows("cargo_operators.txt") for name in line.split()}
    check(airlines, sorted(freighters), "cargo_operators.txt")

    publishers = [[name.strip() for name in line.split(",")] for line in rows("publishers.txt")]
    scenery = {"simaddon20": [], "thirdparty20": [], "thirdparty24": []}
    for line in rows("scenery.txt"):
        head, _, codes = line.partition(":")
        kind, _, publisher = head.partition(" ")
        if publisher:
            check({row[0] for row in publishers}, [publisher], "scenery.txt")
        scenery[kind].append((publisher, codes.split()))

    def third_parties(kind, tag):
        return [element(tag, pub=pub, arpts=",".join(codes)) for pub, codes in scenery[kind]]

    lines = ['<?xml version="1.0" encoding="UTF-8"?>',
             "<!-- Made by make_sources.py: change the text files and make it anew. -->"]
    lines += wrapped("aircrafts", "aircraft", "types", sorted(types))
    for section, tag, names in (("high_performance", "hpf", groups[4]), ("heavy", "hvy", groups[1]),
                                ("large", "lar", groups[0]), ("buzjet", "bzj", groups[2]),
                                ("rotorcraft", "rot", groups[3]),
                                ("cargo_types", "cargo_type", listed["cargo_types"])):
        lines += wrapped(section, tag, "types", sorted(names))
    lines += single("similar_types", [element("similar", types=",".join(row)) for row in similar])
    lines += wrapped("ICAO_airlines", "ICAO", "codes", sorted(airlines), 24)
    lines += wrapped("cargo_operators", "ICAO", "codes", sorted(freighters), 24)
    lines += single("publishers", [element("pub", names=",".join(row)) for row in publishers])
    lines += single("wingspans", [element("wingspan", type=name, meters=metres) for name, metres in spans])
    lines += single("fixes", [element("fx", wro=wrong, cor=right) for wrong, right in fixes])
    lines += wrapped("simaddons20", "simaddon20", "arpts",
                     [code for _, codes in scenery["simaddon20"] for code in codes])
    lines += single("thirdparties20", third_parties("thirdparty20", "thirdpartie20"))
    lines += single("thirdparties24", third_parties("thirdparty24", "thirdpartie24"))
    lines += single("dbase", read_fleets(types, airlines))
    return lines


def make_regcodes():
    """The ties of registrations to liveries; every title of ours has the type as its second word."""
    lines = ['<?xml version="1.0" encoding="UTF-8"?>',
             "<!-- Made by make_sources.py: change regcodes.txt, which tells where this comes from, and make it anew. -->",
             "<AIG-regcodes>"]
    seen = set()
    for line in rows("regcodes.txt"):
        head, _, words = line.partition(":")
        title = head.lstrip("! ").strip()
        regs = [reg for word in words.split() for reg in expand(word)]
        for reg in regs:
            if fleet_types.get(reg) != title.split()[1]:
                problems.append(f"regcodes.txt: {reg} of '{title}' is not in fleets.txt, or of another type")
        problems.extend(f"regcodes.txt: {name} stands twice" for name in (title, *regs) if name in seen)
        seen.update((title, *regs))
        attributes = {"title": title, "reg": ",".join(regs)}
        if head.startswith("!"):
            attributes["special"] = "true"
        lines.append("  " + element("livery", **attributes))
    return lines + ["</AIG-regcodes>"]


def make_airports(airport_rows):
    head = '<?xml version="1.0" encoding="UTF-8"?>'
    index, names = [head, "<airports>"], [head, "<AirportNames>"]
    for r in sorted(airport_rows, key=lambda r: r["icao"]):
        place = {"code": r["icao"], "lat": r["lat_deg"], "lon": r["lon_deg"], "alt": r["elevation_ft"] or "0"}
        if r["iata"]:
            place["iata"] = r["iata"]
        index.append("  " + element("airport", **place))
        if r["name"]:
            names.append("  " + element("airport", ICAO=r["icao"], name=r["name"].strip()))
    return index + ["</airports>"], names + ["</AirportNames>"]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("types", metavar="TYPES.csv", type=Path)
    parser.add_argument("airlines", metavar="AIRLINES.csv", type=Path)
    parser.add_argument("airports", metavar="AIRPORTS.csv", type=Path)
    args = parser.parse_args()

    def table(path):
        with open(path, newline="", encoding="utf-8") as file:
            return list(csv.DictReader(file))

    made = {"dbase.xml": make_dbase(table(args.types), table(args.airlines))}
    made["AIG-regcodes.xml"] = make_regcodes()  # behind the fleets, which it looks up
    made["airports_msfs.xml"], made["airports_msfs_names.xml"] = make_airports(table(args.airports))
    if problems:
        sys.exit("\n".join(problems))
    for name, lines in made.items():
        (HERE / name).write_text("\n".join(lines) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
