#!/usr/bin/env python3
"""A data site made by datakit, served by a plain web server, and a fresh program that lives on it: data_site.py BUILD

The program's folder has neither database nor registration codes nor airport index: the index is fetched as a user would,
the rest by the program. It must start, update, read the airport's stands and fill them. Then the site changes, and the
next start fetches what is newer. Ports are fixed, so this runs in a network of its own where that is allowed.
"""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import urllib.request

from harness import ROOT, Failure, World
from scenarios import feed_line, loopback_up, own_network, stop_and_check

BASE = "http://127.0.0.1:18080/downloads/"
PLACE = ("--lat", "54.0022", "--lon", "-12.0010", "--alt", "45", "--elevation", "40")
EXAMPLE = ROOT / "tools" / "datakit" / "example"


def tell(text):
    print(f"* {text}", flush=True)


def make_site(build, site, sources=EXAMPLE):
    command = [str(ROOT / "tools" / "datakit" / "example.sh"), str(build / "datakit"), str(site), str(sources)]
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    print(result.stdout, flush=True)
    if result.returncode:
        raise Failure("the site was not made")


def fetch(name, path):
    # No proxy of this machine's: the site is on it.
    opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
    with opener.open(BASE + name, timeout=10) as answer:
        path.write_bytes(answer.read())


def reports(seconds=300):
    """An aircraft of an airline of the example that flies past."""
    file = tempfile.NamedTemporaryFile("w", suffix=".txt", delete=False)
    for second in range(0, seconds, 2):
        file.write(feed_line(4000000, 53.8 + second / 1200, -12.1, 9000, 0, 300, "DLH100", "A320", "D-AIUB",
                             1700000000 + second) + "\n")
    file.close()
    return file.name


def parked(trace):
    """Titles of the aircraft that were created on the apron."""
    titles = []
    for line in trace.read_text().splitlines():
        if '"op":"create"' in line and line.endswith("}"):
            made = json.loads(line)
            if abs(made["lat"] - 54.0023) < 0.002 and abs(made["lon"] + 12.0) < 0.012:
                titles.append(made["title"])
    return titles


def visit(world, name):
    """The program until the airport is filled. Gives its log, what it found, and the titles of what was parked."""
    trace = world.folder / "trace.jsonl"
    simulator = world.simulator(*PLACE, "--trace", trace, name=f"simulator-{name}")
    program = world.program(f"program-{name}")
    world.wait_for_log("Waiting for RealTraffic")
    traffic = world.real_traffic(reports(), name=f"realtraffic-{name}")
    world.wait_for_log("Airport file read from 'archive/stock/XSKL.xml' for Skerry Long Island")
    world.wait_for(lambda: re.search(r"[1-9]\d* real positions? found", world.log()), "stands are filled")
    found = re.search(r"\d+ real positions? found.*", world.log())[0]
    world.wait_for(lambda: re.search(r"[1-9]\d* positions \(\d+% vs wanted", world.log()), "a plan of parked aircraft")
    world.wait_for(lambda: len(parked(trace)) >= 3, "parked aircraft in the simulator")
    log = world.log()
    stop_and_check(world, program)
    traffic.signal()
    traffic.wait()
    simulator.signal()
    simulator.wait()
    report = simulator.report()
    world.check(report["alive"] == 0, "no object left")
    return log, found, parked(trace)


def live_on_it(world, build):
    site = world.folder / "site"
    tell("the site is made")
    make_site(build, site)
    server = world.start("server", [sys.executable, "-m", "http.server", "18080", "--bind", "127.0.0.1", "--directory",
                                    site])
    tell(f"and served by python3 -m http.server at {BASE}")

    def answers():
        try:
            fetch("versions.json", world.folder / "probe")
            return True
        except OSError:
            return False
    world.wait_for(answers, "the site answers")
    environment = {name: value for name, value in os.environ.items() if not name.lower().endswith("_proxy")}
    check = subprocess.run([str(build / "datakit"), "check", BASE], env=environment, stdout=subprocess.PIPE,
                           stderr=subprocess.STDOUT, text=True, check=False)
    world.check(check.returncode == 0 and "nothing would be refused" in check.stdout, f"a check: {check.stdout}")
    tell("a check by its address finds nothing to refuse")
    inputs = world.run_folder / "input"
    shutil.rmtree(inputs)
    inputs.mkdir()
    for name in ("airports_msfs.xml", "airports_msfs_names.xml"):
        fetch(name, inputs / name)
    tell("a fresh program gets the airport index, and starts")
    log, found, titles = visit(world, "first")
    for line in ("dbase updated to 1.0.0", "aig updated to 1.0.0", "14 dbase records read",
                 "3 airports read from 'input/airports_msfs.xml'"):
        world.check(line in log, line)
    tell(f"it updated its data, read the airport's file, and filled stands: {found}")
    tell(f"there stood: {', '.join(titles)}")

    sources = world.folder / "sources"
    shutil.copytree(EXAMPLE, sources)
    with open(sources / "registrations.csv", "a", encoding="utf-8") as table:
        table.write("D-AIUC,A320,DLH,DLH,\n")
    tell("the site changes: one more registration")
    make_site(build, site, sources)
    program = world.program("program-second")
    world.wait_for(lambda: (world.run_folder / "Log0.txt").exists(), "a new log")
    world.wait_for_log("Waiting for MSFS 2020")
    for line in ("dbase updated to 1.0.1", "aig version up-to-date", "15 dbase records read"):
        world.check(line in world.log(), line)
    stop_and_check(world, program)
    server.signal()
    tell("the next start fetched what is newer, and nothing else")


def main():
    network = own_network()
    if network and os.environ.get("SKYLANTERN_OWN_NETWORK") != "1":
        environment = dict(os.environ, SKYLANTERN_OWN_NETWORK="1")
        os.execvpe(network[0], [*network, sys.executable, os.path.abspath(__file__), *sys.argv[1:]], environment)
    if network:
        loopback_up()
    world = World(sys.argv[1])
    try:
        live_on_it(world, world.build)
        print("passed", flush=True)
    except Failure as failure:
        print(f"FAILED: {failure}", flush=True)
        sys.exit(1)
    finally:
        world.end()


if __name__ == "__main__":
    main()
