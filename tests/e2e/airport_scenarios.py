"""The airport in sight, its files and the data site, with whole processes. Scenarios as in scenarios.py."""
import json
import shutil
import subprocess
import sys
import tempfile

from harness import ROOT

LIST = "airports/my_park_airports.txt"
LEARNED = "airports/learned/stock/EGLL.xml"
STANDS = [("A1", 51.4720, -0.4530, 90.0), ("A2", 51.4728, -0.4530, 90.0), ("B7", 51.4740, -0.4600, 180.0)]
ALTITUDE = '<parameter name="altitude" value="83" />'
FOUND = "Airport file read from 'archive/stock/EGLL.xml' for London Heathrow"


def airport_file(stands=STANDS, altitude=ALTITUDE, option=""):
    """A small stock file of the airport at which the simulator's user stands."""
    rows = "".join(f'<parkpos id="{name}" latitude="{lat:.6f}" longitude="{lon:.6f}" heading="{heading}" radius="30.0" '
                   f'cargo="false" ramp="false">{option}</parkpos>\n' for name, lat, lon, heading in stands)
    return (f'<?xml version="1.0"?>\n<parameters>\n<parameter name="airport_name" value="London Heathrow" />\n{altitude}\n'
            f'<parameter name="publisher" value="stock" />\n</parameters>\n<parkpositions>\n{rows}</parkpositions>\n')


def serve(world, text, *options):
    """The site, with this text as the stock file of EGLL."""
    stock = world.folder / "site" / "downloads" / "MSFS" / "archive" / "stock"
    stock.mkdir(parents=True)
    (stock / "EGLL.xml").write_text(text)
    return world.site(world.folder / "site", *options)


def fetching():
    """Whether a connection to the site is open."""
    with open("/proc/net/tcp", encoding="ascii") as table:
        rows = [line.split() for line in table.readlines()[1:]]
    return any(row[2].endswith(f":{18080:04X}") and row[3] == "01" for row in rows)


def put(world, name, text):
    path = world.run_folder / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text)
    return path


def standing(feed_line, seconds=200):
    """One aircraft that stands 4 m beside stand B7, a report every 5 seconds."""
    lines = [feed_line(4000100, 51.474036, -0.460000, 0, 178, 0, "DLH902", "A320", "D-AIUA", 1700000000 + second)
             for second in range(0, seconds, 5)]
    file = tempfile.NamedTemporaryFile("w", suffix=".txt", delete=False)
    file.write("\n".join(lines) + "\n")
    file.close()
    return file.name


def register(scenario, feed_line, stop_and_check):

    @scenario
    def the_stands_of_the_airport_come_from_the_site(world):
        """The stock file is fetched once, a broken learned file kept as a copy, an aircraft parks, the list is read."""
        world.settings.update({"LOG": "true"})
        world.write_parameters()
        site = serve(world, airport_file())
        learned = put(world, LEARNED, "<parameters><parameter name='hand")
        text = "EGLL\nNOWHERE\nEGKK,1,2\nEGLL,A1\n\nEGKK\n"
        listed = put(world, LIST, text)
        simulator = world.simulator()
        program = world.program()
        world.wait_for_log("Waiting for RealTraffic")
        for line in ("airport NOWHERE is unknown", "EGKK,1,2 wrong syntax, skipped", "EGLL,A1 double, skipped"):
            world.check(line in world.log(), line)
        world.real_traffic(standing(feed_line))
        world.wait_for_log(FOUND)
        world.check("found, but could not be loaded, saved as *.0.xml" in world.log(), "the learned file is told of")
        world.check((learned.parent / "EGLL0.xml").read_text() == learned.read_text(), "and kept")
        world.wait_for_log("B7      : DLH902   parks")
        world.check(listed.read_text() == text, "the list is as the user wrote it")
        stop_and_check(world, program)
        site.signal()
        site.wait()
        fetched = site.report()["paths"]["/downloads/MSFS/archive/stock/EGLL.xml"]
        world.check(fetched == {"200": 1}, f"one fetch: {fetched}")
        simulator.signal()
        simulator.wait()
        world.check(simulator.report()["alive"] == 0, "no object left")

    @scenario
    def a_stand_twice_ends_the_run(world):
        """The message is held until the user closes, and the list is as it was."""
        serve(world, airport_file(stands=STANDS + STANDS[:1]))
        listed = put(world, LIST, "EGLL,A2\n")
        world.simulator()
        program = world.program()
        world.wait_for_log("Waiting for RealTraffic")
        world.real_traffic(standing(feed_line))
        world.wait_for_log("Error 94: Parking position A1 appears more than once?")
        world.wait_for(lambda: "Error 94" in program.text(), "the message in the terminal")
        world.check(program.running(), "it waits for the user")
        world.check(listed.read_text() == "EGLL,A2\n", "the list is as it was")
        program.signal()
        world.check(program.wait() == 0, "exit status 0")

    @scenario
    def a_site_that_hangs_holds_nothing_up(world):
        """A stop ends a fetch from a silent site at once; a body cut short is no file."""
        site = serve(world, airport_file(), "--hang", "/downloads/MSFS/archive")
        world.simulator()
        program = world.program()
        world.wait_for_log("Waiting for RealTraffic")
        world.real_traffic(standing(feed_line))
        world.wait_for_log("RealTraffic connected")
        world.wait_for(fetching, "the fetch begins")
        stop_and_check(world, program)
        site.signal()
        site.wait()
        hung = site.report()["paths"]["/downloads/MSFS/archive/stock/EGLL.xml"]
        world.check(hung == {"hung": 1}, f"one fetch that hung: {hung}")

    @scenario
    def a_body_cut_short_is_no_airport_file(world):
        """The cut answer is told as no file; nothing of it is left, and traffic goes on."""
        serve(world, airport_file(), "--cut", "/downloads/MSFS/archive")
        world.simulator()
        program = world.program()
        world.wait_for_log("Waiting for RealTraffic")
        world.real_traffic(standing(feed_line))
        world.wait_for_log("no airport file found")
        world.check("Flight not running" not in world.log(), "the flight goes on")
        stop_and_check(world, program)

    @scenario
    def the_first_start_fetches_and_scans(world):
        """Newer data comes, an add-on airport is linked and one generated; the second start does neither again."""
        subprocess.run([sys.executable, str(ROOT / "demo" / "make_scenery.py"), str(world.packages)], check=True)
        site = serve(world, airport_file())
        downloads = world.folder / "site" / "downloads"
        simaddon = downloads / "MSFS" / "archive" / "simaddon"
        simaddon.mkdir()
        (simaddon / "EGLL.xml").write_text(airport_file().replace('"stock"', '"simaddon"'))
        for name in ("dbase.enc", "AIG-regcodes.enc"):
            shutil.copy(world.run_folder / "input" / name, downloads / name)
        (world.run_folder / "input" / "dbase.enc").write_bytes(b"old")
        version = {"major": 1, "minor": 2, "patch": 3}
        (downloads / "versions.json").write_text(json.dumps({"dbase": version, "aig": version}))
        world.settings["SCAN_AIRPORTS"] = "true"
        world.write_parameters()
        world.simulator()
        program = world.program()
        world.wait_for_log("Waiting for RealTraffic")
        for line in ("dbase updated to 1.2.3", "aig updated to 1.2.3", "Airports scan successful"):
            world.check(line in world.log(), line)
        airports = world.run_folder / "airports"
        world.check((airports / "my_simaddon" / "EGLL.txt").read_text() == "archive/simaddon/EGLL.xml\n", "the link")
        world.check((airports / "my_thirdparty" / "EGWU.xml").exists(), "the generated file")
        world.real_traffic(standing(feed_line))
        world.wait_for_log("Airport file read from 'archive/simaddon/EGLL.xml'")
        stop_and_check(world, program)
        program = world.program("again")
        world.wait_for(lambda: (world.run_folder / "Log0.txt").exists(), "a new log")
        world.wait_for_log("Waiting for RealTraffic")
        for line in ("dbase version up-to-date", "aig version up-to-date"):
            world.check(line in world.log(), line)
        world.check("airports scan" not in world.log(), "no second scan")
        stop_and_check(world, program)
        site.signal()
        site.wait()
        paths = site.report()["paths"]
        world.check(paths["/downloads/dbase.enc"] == {"200": 1}, f"one fetch of the database: {paths}")
