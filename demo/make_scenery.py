#!/usr/bin/env python3
"""Puts add-on airports into the packages folder of the demo: scenery files (BGL) with the stands of airport plans.

Heathrow comes as one of the simulator's own airports, so that it is linked to a file of the data site; its neighbour
comes from a maker whom nobody knows, so that its file is generated from the scenery. The same plans give the same bytes.
"""
import argparse
import json
import re
import struct
from pathlib import Path

import airport_plan

AIRPORT, HELIPAD, PARKING = 86, 38, 231
RAMP, CARGO, GATE = 3, 5, 9
LETTER_CODES = 12  # of "A" in a stand's name; 0 is no letter
MILLIMETRES_PER_FOOT = 304.8


def record(number, body):
    return struct.pack("<HI", number, len(body) + 6) + body


def place(stand):
    longitude = round((stand.lon + 180) / 360 * 805306368)
    latitude = round((90 - stand.lat) / 180 * 536870912)
    return struct.pack("<II", longitude, latitude)


def code_of(icao):
    value = 0
    for character in icao:
        value = value * 38 + (2 + int(character) if character.isdigit() else 12 + ord(character) - ord("A"))
    return value << 5


def parking(stand):
    letter, number = re.fullmatch(r"([A-Z]?)(\d+)", stand.name).groups()
    name = LETTER_CODES + ord(letter) - ord("A") if letter else 0
    kind = CARGO if stand.cargo else RAMP if stand.ramp else GATE
    head = struct.pack("<Iff", name | kind << 8 | int(number) << 12, stand.radius, stand.heading)
    return head + bytes(16) + place(stand) + bytes(20)


def airport(plan):
    stands = list(plan.stands.values())
    parts = b"".join(record(HELIPAD, bytes(6) + place(stand) + bytes(8) + struct.pack("<f", 2 * stand.radius) + bytes(4))
                     for stand in stands if stand.heli)
    entries = [parking(stand) for stand in stands if not stand.heli]
    parts += record(PARKING, struct.pack("<H", len(entries)) + b"".join(entries))
    body = bytes(14) + struct.pack("<I", round(plan.elevation * MILLIMETRES_PER_FOOT)) + bytes(16)
    return record(AIRPORT, body + struct.pack("<I", code_of(plan.code)) + bytes(24) + parts)


def scenery(plan):
    """A file with one section of one airport."""
    section, entry = 56, 56 + 20
    records = airport(plan)
    header = b"SKL\0" + struct.pack("<I", 56) + bytes(12) + struct.pack("<I", 1) + bytes(32)
    return (header + struct.pack("<IIIII", 3, 1, 1, entry, 16)
            + bytes(8) + struct.pack("<II", section + 20 + 16, len(records)) + records)


def write(path, content):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


def main():
    here = Path(__file__).parent
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("packages", metavar="PACKAGES", type=Path)
    parser.add_argument("--plans", type=Path, default=here / "airports")
    args = parser.parse_args()
    heathrow, northolt = (airport_plan.read(args.plans / f"{code}.txt") for code in ("EGLL", "EGWU"))
    write(args.packages / "Official" / "OneStore" / "microsoft-airport-egll-heathrow" / "scenery" / "egll.bgl",
          scenery(heathrow))
    package = args.packages / "Community" / "northolt-by-nobody" / "northolt"
    write(package / "scenery" / "northolt.bgl", scenery(northolt))
    manifest = {"content_type": "SCENERY", "title": "Northolt", "manufacturer": "Nobody", "creator": "Nobody"}
    write(package / "manifest.json", json.dumps(manifest).encode())


if __name__ == "__main__":
    main()
