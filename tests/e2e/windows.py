"""The packed Windows program under wine, beside the stand-ins of a Linux build: windows.py ZIP BUILD

Every name that a user may choose holds blanks, umlauts and characters outside of any one code page: the program's
folder, the one with the settings, the simulator's packages, a livery. Without a SimConnect.cfg and a pipe the program
finds the simulator on port 2048.
"""
import json
import os
import pathlib
import re
import subprocess
import sys
import zipfile

os.environ.setdefault("SKYLANTERN_TEST_PATIENCE", "120")  # wine takes its time

import scenarios
from harness import Failure, World
from screen import Screen

STRANGE = "Flüge über 飛行"
MARK = " ü飛"  # behind titles


class WindowsWorld(World):
    """A fresh prefix with the unpacked program."""

    def __init__(self, archive, build):
        self.archive = archive
        super().__init__(build)

    def lay_out(self):
        self.folder = self.folder / STRANGE
        self.folder.mkdir()
        env = dict(os.environ, WINEPREFIX=str(self.folder.parent / "wine"), WINEDEBUG="-all", LC_ALL="C.UTF-8")
        screen = Screen(self.folder, size=(960, 560))
        env["DISPLAY"] = screen.display
        self.screens.append(screen)
        with zipfile.ZipFile(self.archive) as archive:
            archive.extractall(self.folder)
        config = self.folder / "Roaming"
        config.mkdir()
        self.env = env
        self.wine("wineboot", "-i")
        for key in ("User Shell Folders", "Shell Folders"):
            self.wine("wine", "reg", "add", rf"HKCU\Software\Microsoft\Windows\CurrentVersion\Explorer\{key}", "/v", "AppData",
                      "/d", self.name_of(config), "/f")
        return self.folder / "Skylantern", config, env

    def name_of(self, path):
        return "Z:" + str(path).replace("/", "\\")

    def wine(self, *command):
        return subprocess.run(command, env=self.env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=120)

    def program(self, name="skylantern"):
        return self.start(name, ["wine", self.run_folder / "Skylantern.exe"])

    def end(self):
        self.wine("wineserver", "-k")
        self.folder = self.folder.parent
        super().end()


def mark_titles(packages):
    """Puts MARK behind every title in the files that are UTF-8."""
    for path in packages.rglob("aircraft.cfg"):
        text = path.read_bytes()
        try:
            whole = text.decode("utf-8")
        except UnicodeDecodeError:
            continue
        marked = re.sub(r'(?im)^(title *= *"[^"\r\n]+)"', rf'\1{MARK}"', whole)
        marked = re.sub(r'(?im)^(title *= *[^"\s;][^"\r\n;]*?)(?= *(;|\r|$))', rf'\1{MARK}', marked)
        path.write_bytes(marked.encode("utf-8"))


def titles(trace):
    """What was created, by the trace of the simulator."""
    lines = trace.read_text(encoding="utf-8").splitlines() if trace.exists() else []
    return [json.loads(line)["title"] for line in lines if '"op":"create"' in line and line.endswith("}")]


def click_until_saved(world, screen, x, y, name, value):
    """A box cannot be used before the run is that far."""
    for _ in range(4):
        screen.click(x, y)
        try:
            return world.wait_for_setting(name, value, 15)
        except Failure:
            continue
    raise Failure(f"no click gives {name} the value {value}\n{world.log()[-2000:]}")


def run(world, picture):
    screen = world.screens[0]
    mark_titles(world.packages)
    world.settings.update({"MAIN_WINDOW_X": "0", "MAIN_WINDOW_Y": "0"})
    world.write_parameters()
    trace = world.folder / "trace.jsonl"

    program = world.program()
    world.wait_for_log("Waiting for MSFS 2020")
    world.check(MARK in (world.run_folder / "output" / "LiveriesScanned.xml").read_text(encoding="utf-8"),
                "the titles are read from a folder with such a name")
    left, top = screen.client()
    click_until_saved(world, screen, left + 754, top + 155, "ALWAYS_ON_TOP", "true")
    screen.click(left + 235, top + 205)
    screen.keys("Up", "Return")
    world.wait_for_setting("MATCHING_DEPTH", 3)
    screen.enter(left + 240, top + 267, "klm123")
    world.wait_for_setting("BLOCK_CALLSIGN", "KLM123")

    simulator = world.simulator("--trace", trace, "--fps", "30")
    world.wait_for_log("Waiting for RealTraffic")
    traffic = world.real_traffic(scenarios.recording())
    world.wait_for(lambda: len(titles(trace)) > 2 and any(title.endswith(MARK) for title in titles(trace)),
                   "live aircraft, one of them with a title as strange as it is written", 150)
    screen.picture("windows", picture)

    second = world.program("second")
    world.check(second.wait() != 0, "a second start ends at once")
    world.check(program.running(), "and leaves the first alone")

    # Another simulator, which is the wrong one, and back: the link's port is free for the new run.
    for key, name, told in (("Down", "MSFS 2024", "Error 71"), ("Up", "MSFS 2020", "RealTraffic connected")):
        before = world.log().count(told)
        screen.click(left + 50, top + 125)
        screen.keys(key, "Return")
        world.wait_for_setting("SIM_CHOICE", name)
        world.wait_for_log(told, before + 1)

    screen.close_button()
    world.check(program.wait() == 0, "exit status 0")
    world.check("Exiting: USER CLOSED SIM" in world.log(), "an orderly end")
    traffic.signal()
    simulator.signal()
    world.check(simulator.wait() == 0 and not simulator.report()["unknownCalls"], "every call is one of SimConnect's")
    world.check_clean()
    world.wait_for_setting("BLOCK_CALLSIGN", "")  # for this run alone

    program = world.program("again")
    world.wait_for(lambda: (world.run_folder / "Log0.txt").exists(), "the log is rotated")
    world.wait_for_log("Waiting for MSFS 2020")
    screen.close_button()
    world.check(program.wait() == 0, "exit status 0")
    for name, value in (("ALWAYS_ON_TOP", "true"), ("MATCHING_DEPTH", 3), ("MAIN_WINDOW_X", 0)):
        world.wait_for_setting(name, value)
    return len(titles(trace))


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    if not os.environ.get("SKYLANTERN_OWN_NETWORK"):
        network = scenarios.own_network()
        os.environ["SKYLANTERN_OWN_NETWORK"] = "1" if network else "shared"
        os.execvp("env", ["env", *network, sys.executable, os.path.abspath(__file__), *sys.argv[1:]])
    if os.environ["SKYLANTERN_OWN_NETWORK"] == "1":
        scenarios.loopback_up()
    archive, build = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    world = WindowsWorld(archive, build)
    try:
        print(f"linked, {run(world, build / 'screenshots')} live aircraft, by clicks, ended in order, settings kept")
    except Failure as failure:
        world.screens[0].picture("windows-failed", build / "screenshots")
        sys.exit(str(failure))
    finally:
        world.end()


if __name__ == "__main__":
    main()
