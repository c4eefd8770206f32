#!/usr/bin/env python3
"""Makes a packages folder for the demo: DIR/Community, DIR/Official and DIR/Official2024.

Community holds packages of AI traffic named as the livery scan looks for them, with aircraft.cfg files in the varied
and faulty forms that such files have in the wild: every encoding and line end, blanks or none round the equals sign,
quotes, comments, keys in another case, doubled and missing titles, unknown codes, files without sections. The same
arguments give the same bytes.
"""
import argparse
import json
import random
from pathlib import Path

NAMES = {
    "DLH": "Lufthansa", "CLH": "Lufthansa CityLine", "SWR": "Swiss", "EDW": "Edelweiss", "AUA": "Austrian",
    "BAW": "British Airways", "CFE": "BA CityFlyer", "AFR": "Air France", "KLM": "KLM", "KLC": "KLM Cityhopper",
    "EZY": "easyJet", "EJU": "easyJet Europe", "EZS": "easyJet Switzerland", "RYR": "Ryanair", "WZZ": "Wizz Air",
    "EWG": "Eurowings", "CFG": "Condor", "TUI": "TUIfly", "IBE": "Iberia", "VLG": "Vueling", "TAP": "TAP Portugal",
    "SAS": "Scandinavian", "NAX": "Norwegian", "FIN": "Finnair", "LOT": "LOT", "BEL": "Brussels", "AEE": "Aegean",
    "THY": "Turkish", "PGT": "Pegasus", "UAE": "Emirates", "QTR": "Qatar", "ETD": "Etihad", "SVA": "Saudia",
    "ELY": "El Al", "ETH": "Ethiopian", "AIC": "Air India", "SIA": "Singapore", "CPA": "Cathay Pacific",
    "JAL": "Japan Airlines", "ANA": "All Nippon", "KAL": "Korean Air", "CCA": "Air China", "QFA": "Qantas",
    "DAL": "Delta", "UAL": "United", "AAL": "American", "SWA": "Southwest", "JBU": "JetBlue", "ACA": "Air Canada",
    "FDX": "FedEx", "UPS": "UPS", "GTI": "Atlas Air", "CLX": "Cargolux", "BOX": "AeroLogic", "GEC": "Lufthansa Cargo",
    "BCS": "European Air Transport", "NJE": "NetJets Europe", "VJT": "VistaJet", "SAZ": "Air Rescue",
    "PVT": "Private", "ZZZZ": "Generic",
}
AIRLINERS = {
    "DLH": "A319 A320 A20N A321 A21N A333 A343 A346 A359 A388 B744 B748", "CLH": "A319 CRJ9 E190 E195",
    "SWR": "A320 A20N A321 A333 A343 B77W BCS1 BCS3 E190", "EDW": "A320 A343", "AUA": "A320 A321 B763 B772 DH8D E195",
    "BAW": "A319 A320 A20N A321 A35K A388 B772 B77W B788 B789", "CFE": "E190", "KLC": "E75L E190 E295",
    "AFR": "A318 A319 A320 A321 A332 A359 B772 B77W B789 BCS3", "KLM": "A332 B737 B738 B739 B772 B77W B789 B78X E190",
    "EZY": "A319 A320 A20N A21N", "EJU": "A319 A320", "EZS": "A320", "RYR": "B738 B38M", "WZZ": "A320 A321 A21N",
    "EWG": "A319 A320 A20N", "CFG": "A320 B753 A339", "TUI": "B738 B38M", "IBE": "A320 A321 A333 A359",
    "VLG": "A320 A20N", "TAP": "A319 A320 A21N A339", "SAS": "A320 A20N A333 A359 B738 CRJ9 AT76", "NAX": "B738 B38M",
    "FIN": "A319 A320 A321 A333 A359 AT76 E190", "LOT": "B738 B788 B789 DH8D E75L E195", "BEL": "A319 A320 A333",
    "AEE": "A320 A20N A321 DH8D", "THY": "A321 A21N A333 A359 B738 B77W B789", "PGT": "A20N B738",
    "UAE": "A388 B77W B77L", "QTR": "A320 A359 A35K A388 B77W B788 B789", "ETD": "A320 A388 B77W B789",
    "SVA": "A320 A333 B77W B789", "ELY": "B738 B772 B789", "ETH": "A359 B738 B77W B788", "AIC": "A20N B77W B788",
    "SIA": "A359 A388 B77W B78X", "CPA": "A333 A359 A35K B77W", "JAL": "B763 B77W B788 B789",
    "ANA": "B763 B77W B788 B789", "KAL": "A388 B748 B77W B789", "CCA": "A333 A359 B77W B789", "QFA": "A333 A388 B738 B789",
    "DAL": "A319 A320 A321 A333 A339 A359 B712 B738 B739 B752 B763 B764 CRJ9",
    "UAL": "A319 A320 B738 B739 B752 B763 B764 B772 B77W B788 B789 B78X E75L",
    "AAL": "A319 A320 A321 B738 B38M B772 B77W B788 B789 CRJ7 E190", "SWA": "B737 B738 B38M", "JBU": "A320 A321 E190",
    "ACA": "A320 A321 A333 B38M B77W B788 B789 BCS3 CRJ9 DH8D",
}
FREIGHTERS = {
    "FDX": "A306 B752 B763 B77L MD11 AT72 C208", "UPS": "A306 B752 B763 B744 B748 MD11", "GTI": "B744 B748 B763",
    "CLX": "B744 B748", "BOX": "B77L", "GEC": "B77L A321", "BCS": "A306 B752 A332", "UAE": "B77L", "QTR": "B77L B748",
    "KAL": "B77L B748", "CPA": "B748", "ETH": "B77L",
}
GENERIC = "A319 A320 A20N A321 A21N A332 A333 A343 A359 A388 B733 B737 B738 B38M B744 B748 B752 B763 B772 B77W B788 " \
          "B789 AT76 DH8D SF34 CRJ2 CRJ9 E145 E170 E190 F100 MD82 RJ85 A124 C17 IL76 C130"
LIGHT = "C152 C172 C182 C208 P28A PA34 PA46 SR22 DA40 DA42 DA62 BE36 BE58 BE9L BE20 B350 PC12 TBM9 M20P DR40 DV20 J3 RV7"
BUZJETS = {"NJE": "C56X C68A CL35 E55P GLEX F2TH", "VJT": "CL60 CL35 GLEX GL7T",
           "PVT": "C510 C525 C25B C25C C560 C680 C700 FA7X GLF4 GLF5 GLF6 LJ45 E50P PC24"}
HELICOPTERS = {"SAZ": "EC45 A109", "PVT": "EC35 EC20 EC30 AS50 R44 R66 B06 B407 A139 H60 UH1 S92"}
FAST = {"PVT": "F16 EUFI F18S F35 HAWK L39 T38"}
REGISTRATIONS = {
    ("DLH", "A320"): ["D-AIUA", "D-AIUB", "D-AIZC"], ("DLH", "A359"): ["D-AIXA"], ("DLH", "B748"): ["D-ABYA"],
    ("SWR", "B77W"): ["HB-JNA", "HB-JNB"], ("SWR", "BCS3"): ["HB-JCA"], ("BAW", "A388"): ["G-XLEA"],
    ("KLM", "B738"): ["PH-BXA", "PH-BXB"], ("UAE", "A388"): ["A6-EDA", "A6-EEB"], ("FDX", "B77L"): ["N850FD"],
    ("UPS", "B748"): ["N605UP"], ("CLX", "B748"): ["LX-VCA"], ("NJE", "E55P"): ["CS-PHA"], ("SAZ", "EC45"): ["HB-ZQG"],
}

# How a file is written: blanks on both sides of the equals sign, quotes, comments behind quoted values, encoding, line
# end, whether [GENERAL] stands behind the sections, its spelling.
FORMS = [
    dict(equals="=", quote=False, comment=False, encoding="utf-8", newline="\r\n", general_last=False, head="General"),
    dict(equals=" = ", quote=True, comment=False, encoding="utf-8", newline="\r\n", general_last=False, head="GENERAL"),
    dict(equals=" = ", quote=True, comment=True, encoding="utf-8-sig", newline="\r\n", general_last=True, head="GENERAL"),
    dict(equals="= ", quote=False, comment=False, encoding="utf-16-le", newline="\r\n", general_last=False, head="General"),
    dict(equals=" =", quote=True, comment=True, encoding="utf-16-be", newline="\n", general_last=True, head="general"),
    dict(equals="\t=\t", quote=False, comment=False, encoding="utf-8", newline="\n", general_last=True, head="General"),
    dict(equals="=", quote=True, comment=True, encoding="latin-1", newline="\r\n", general_last=False, head="GENERAL"),
]
MARKS = {"utf-16-le": b"\xff\xfe", "utf-16-be": b"\xfe\xff"}


class Livery:
    def __init__(self, airline, kind, cargo=False, reg="", extra=""):
        self.airline, self.kind, self.cargo, self.reg = airline, kind, cargo, reg
        name = NAMES.get(airline, airline)
        self.title = " ".join(part for part in ("AI", kind, name, "Cargo" if cargo else "", reg, extra) if part)


def base_liveries():
    """Every livery of the lists once; those with registrations once for each and once without."""
    for fleet, cargo in ((AIRLINERS, False), (FREIGHTERS, True), (BUZJETS, False), (HELICOPTERS, False), (FAST, False),
                         ({"ZZZZ": GENERIC}, False), ({"PVT": LIGHT}, False)):
        for airline, kinds in fleet.items():
            for kind in kinds.split():
                yield Livery(airline, kind, cargo)
                for reg in REGISTRATIONS.get((airline, kind), []):
                    yield Livery(airline, kind, cargo, reg)


def pick_liveries(count, rng):
    base = list(base_liveries())
    if count <= len(base):
        return rng.sample(base, count)
    more = (Livery(b.airline, b.kind, b.cargo, extra=f"Repaint {round_}") for round_ in range(2, count + 2) for b in base
            if not b.reg)
    return base + [next(more) for _ in range(count - len(base))]


def write_text(path, lines, form):
    path.parent.mkdir(parents=True, exist_ok=True)
    text = form["newline"].join(lines) + form["newline"]
    path.write_bytes(MARKS.get(form["encoding"], b"") + text.encode(form["encoding"], errors="replace"))


def entry(form, key, value, note=""):
    if form["quote"]:
        value = f'"{value}"'
        if form["comment"] and note:
            value += f" ; {note}"
    return f"{key}{form['equals']}{value}"


def general(form, kind):
    return [f"[{form['head']}]", entry(form, "atc_type", "AI"), entry(form, "atc_model", f"AI MODEL {kind}"),
            entry(form, "icao_type_designator", kind, "ICAO code"), entry(form, "Category", "airplane"), ""]


def section(form, number, livery, rng):
    lines = [f"[fltsim.{number}]", entry(form, "title", livery.title, "as shown in the menu"),
             entry(form, "model", ""), entry(form, "texture", livery.airline)]
    code = rng.choice(["PVT", "PVT", "PVT", "ZZZZ", ""]) if livery.airline == "PVT" else livery.airline
    if code:
        # A fourth letter C or X is an addition of some packages.
        code += rng.choice(["", "", "", "", "X", "C"]) if len(code) == 3 else ""
        lines.append(entry(form, "icao_airline", code, NAMES.get(livery.airline, "")))
    if livery.reg:
        lines.append(entry(form, "atc_id", livery.reg, "registration"))
    elif rng.random() < 0.2:
        lines.append(entry(form, "atc_id", "D-AAAA,D-AAAB,D-AAAC"))
    if livery.cargo:
        lines.append(entry(form, "atc_parking_types", rng.choice(["CARGO", "CARGO,RAMP", "Cargo"])))
    elif rng.random() < 0.3:
        lines.append(entry(form, "atc_parking_types", rng.choice(["GATE", "GATE,RAMP", "CARGO,GATE"])))
    if form["encoding"] != "utf-8" or rng.random() < 0.5:
        lines.append(entry(form, "ui_variation", f"Zürich, {livery.airline}"))
    lines.append(rng.choice(["", "// next one", ""]))
    if rng.random() < 0.25:  # the order of the keys is free
        body = lines[1:-1]
        rng.shuffle(body)
        lines[1:-1] = body
    return lines


def write_cfg(path, form, kind, liveries, rng):
    numbers = list(range(len(liveries)))
    if rng.random() < 0.2:
        rng.shuffle(numbers)
    sections = [line for number, livery in zip(numbers, liveries) for line in section(form, number, livery, rng)]
    version = ["[VERSION]", "major=1", "minor=0", ""]
    head = general(form, kind)
    write_text(path, version + sections + head if form["general_last"] else version + head + sections, form)


def write_manifest(package, title):
    package.mkdir(parents=True, exist_ok=True)
    manifest = {"dependencies": [], "content_type": "AIRCRAFT", "title": title, "creator": "demo",
                "package_version": "1.0.0"}
    (package / "manifest.json").write_text(json.dumps(manifest, indent=2) + "\n", encoding="utf-8")


def write_faulty(folder, rng):
    """Files whose faults the scan has to report or to bear; together they still hold some good liveries."""
    plain = FORMS[0]

    def cfg(name, lines, form=plain, file="aircraft.cfg"):
        write_text(folder / name / file, lines, form)

    (folder / "empty").mkdir(parents=True, exist_ok=True)
    (folder / "empty" / "aircraft.cfg").write_bytes(b"")
    cfg("no_sections", general(plain, "A320"))
    cfg("no_general", section(plain, 0, Livery("DLH", "A320", extra="no general"), rng))
    cfg("unknown_type", general(plain, "XQ9Z") + section(plain, 0, Livery("DLH", "A320", extra="unknown type"), rng))
    cfg("fixed_type", general(plain, "B73H") + section(plain, 0, Livery("TUI", "B738", extra="fixed type"), rng))
    cfg("long_type", general(plain, "B738 Winglets") + section(plain, 0, Livery("TUI", "B738", extra="long type"), rng))
    cfg("number_too_high", general(plain, "A320") + section(plain, 10001, Livery("DLH", "A320", extra="high number"), rng))
    cfg("number_none", general(plain, "A320") + section(plain, "x", Livery("DLH", "A320", extra="no number"), rng))
    cfg("upper_case", general(plain, "A320") + [line.replace("fltsim", "FLTSIM") for line in
                                               section(plain, 0, Livery("AEE", "A320", extra="upper"), rng)],
        file="AIRCRAFT.CFG")
    cfg("mixed_keys", ["[General]", "ICAO_Type_Designator=A320", "", "[fltsim.0]", "Title=AI A320 mixed keys",
                       "ICAO_Airline=DLH", ""])
    doubled = Livery("KLM", "B738", extra="doubled")
    cfg("doubled_title", general(plain, "B738") + section(plain, 0, doubled, rng) + section(plain, 1, doubled, rng))
    cfg("two_titles", general(plain, "B738") + ["[fltsim.0]", "title=AI B738 one", "title=AI B738 two",
                                                "icao_airline=KLM", ""])
    cfg("no_title", general(plain, "B738") + ["[fltsim.0]", "icao_airline=KLM", "texture=1", "[fltsim.1]", "",
                                              "title = AI B738 behind an untitled one ", "icao_airline = KLM"])
    cfg("unknown_airline", general(plain, "A320") + ["[fltsim.0]", "title=AI A320 unknown airline",
                                                     "icao_airline=Q9Z", "[fltsim.1]", "title=AI A320 comment",
                                                     "icao_airline=DLH ; Lufthansa"])
    cfg("no_airline", general(plain, "B744") + ["[fltsim.0]", "title=AI B744 no airline", "", "[fltsim.1]",
                                                "title=AI B744 by registration", "atc_id=LX-VCB", "[fltsim.2]",
                                                "title=AI B744 empty airline", 'icao_airline=""'])
    cfg("stub", general(plain, "A320") + ["[fltsim.0]", "title=AI A320 Lufthansa-STUB", "icao_airline=DLH",
                                          "[fltsim.1]", "title=AI A320-STUB in the middle", "icao_airline=DLH"])
    cfg("bad_registration", general(plain, "A320") + ["[fltsim.0]", "title=AI A320 star", "icao_airline=DLH",
                                                      "atc_id=D-AI*A", "[fltsim.1]", "title=AI A320 half",
                                                      "icao_airline=DLH", "atc_id=D-AIUC;old"])
    cfg("commented_out", general(plain, "A320") + ["//[fltsim.0]", "//title=AI A320 gone", "[fltsim.1]",
                                                   "title=AI A320 kept", "icao_airline=DLH", "// end", ""])
    cfg("container", ["[VARIATION]", 'base_container="..\\Asobo_C172sp_classic"', "", "[General]", "[fltsim.0]",
                      "title=AI C172 by container", "icao_airline=ZZZZ"])
    cfg("binary", ["\x00\x01\x02[fltsim.\x00", "\x07title=\x08"])


def write_ivao(folder, rng):
    for kind, airlines in (("A320", "DLH AFR"), ("B738", "KLM RYR"), ("E190", "LOT")):
        place = folder / f"IVAO_{kind}"
        lines = []
        for number, airline in enumerate(airlines.split()):
            (place / f"texture.{airline}").mkdir(parents=True, exist_ok=True)
            lines += [f"[fltsim.{number}]", f"title={kind} {airline} network", f"texture={airline}", ""]
        lines += [f"[fltsim.{len(airlines.split())}]", f"title={kind} BAW network", "texture=missing", ""]
        write_text(place / "aircraft.cfg", lines, rng.choice(FORMS[:3]))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("dir", metavar="DIR", type=Path)
    parser.add_argument("--count", type=int, default=400, help="liveries beside the faulty ones (default 400)")
    parser.add_argument("--seed", type=int, default=1)
    args = parser.parse_args()
    if args.count < 1:
        parser.error("--count has to be at least 1")

    rng = random.Random(args.seed)
    community = args.dir / "Community"
    packages = {"aig": community / "aig-aitraffic-oci_demo", "fsltl": community / "fsltl-traffic-base",
                "jf": community / "justflight-aircraft-traffic-fleet-demo", "user": community / "user-aitraffic"}
    for name, package in packages.items():
        write_manifest(package, f"Demo traffic {name}")

    # One package keeps a file a type with all its airlines, the others a file a type and airline.
    shares = {name: {} for name in packages}
    for livery in pick_liveries(args.count, rng):
        private = livery.airline == "PVT"
        name = "user" if private else rng.choices(["aig", "fsltl", "jf"], weights=[5, 3, 2])[0]
        place = f"AIM_{livery.kind}" if name == "aig" else f"AI_{livery.kind}_{livery.airline}"
        shares[name].setdefault((place, livery.kind), []).append(livery)
    for name, files in shares.items():
        for number, ((place, kind), liveries) in enumerate(files.items()):
            folder = packages[name] / "SimObjects" / "Airplanes" / place
            write_cfg(folder / "aircraft.cfg", FORMS[number % len(FORMS)], kind, liveries, rng)
    write_faulty(packages["user"] / "SimObjects" / "Airplanes", rng)
    write_ivao(packages["user"] / "ivao_x-csl" / "SimObjects" / "Airplanes", rng)

    # Converted textures that stand beside a package are none of its liveries.
    write_cfg(community / "aig-aitraffic-oci_demo_CVT_" / "SimObjects" / "Airplanes" / "AIM_A320" / "aircraft.cfg",
              FORMS[0], "A320", [Livery("DLH", "A320", extra="converted")], rng)
    for official, model in (("Official", "Asobo_A320_NEO"), ("Official2024", "Asobo_C172sp_classic")):
        package = args.dir / official / "OneStore" / model.lower().replace("_", "-")
        write_manifest(package, model)
        write_text(package / "SimObjects" / "Airplanes" / model / "aircraft.cfg",
                   ["[fltsim.0]", f'title = "{model}"', ""], FORMS[1])


if __name__ == "__main__":
    main()
