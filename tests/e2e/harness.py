"""Whole processes in a world of their own: the program, the simulator and RealTraffic stand-ins.

A scenario runs in a network of its own where the system allows that, since the program's ports are fixed; elsewhere
the scenarios run one after the other. Everything waits for what it wants to see, with a limit, never for a time.
"""
import json
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time

from screen import Screen

ROOT = pathlib.Path(__file__).resolve().parents[2]
PATIENCE = float(os.environ.get("SKYLANTERN_TEST_PATIENCE", "60"))


class Failure(Exception):
    pass


class Process:
    """A child process with its output in a file."""

    def __init__(self, name, command, folder, env):
        self.name = name
        self.output_path = folder / f"{name}.out"
        self.output = open(self.output_path, "wb")
        self.child = subprocess.Popen(command, cwd=folder, env=env, stdout=self.output, stderr=subprocess.STDOUT)

    def text(self):
        return self.output_path.read_text(errors="replace")

    def signal(self, number=signal.SIGTERM):
        self.child.send_signal(number)

    def wait(self, limit=PATIENCE):
        try:
            return self.child.wait(limit)
        except subprocess.TimeoutExpired:
            raise Failure(f"{self.name} does not end; its last output:\n{self.text()[-2000:]}")

    def running(self):
        return self.child.poll() is None

    def report(self):
        """The JSON object that a stand-in prints at its end."""
        for line in reversed(self.text().splitlines()):
            if line.startswith("{"):
                return json.loads(line)
        raise Failure(f"{self.name} printed no report:\n{self.text()[-2000:]}")


class World:
    """A folder to run in, a home, an installed simulator with liveries, and the processes started so far."""

    def __init__(self, build, real_traffic=True, parameters=None, sim="2020", scan=True):
        self.build = pathlib.Path(build).resolve()
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="skl-"))
        self.screens = []
        self.run_folder, self.config, self.env = self.lay_out()
        if real_traffic:
            (self.config / "InsideSystems").mkdir()
            (self.config / "InsideSystems" / "RealTraffic.jar").touch()
        self.packages = self.folder / "packages"
        subprocess.run(["python3", str(ROOT / "demo" / "make_community.py"), str(self.packages)], check=True,
                       stdout=subprocess.DEVNULL)
        installed = self.name_of(self.packages)
        self.settings = {"MSFS_INSTALL_PATH": installed, "MSFS_2024_INSTALL_PATH": installed,
                         "SIM_CHOICE": f"MSFS {sim}", "AUTO_RANGE": "false", "SCAN_AIRPORTS": "false",
                         "PROGRAM_VERSION": "11.0.3"}
        self.settings.update(parameters or {})
        self.write_parameters()
        self.processes = []

    def lay_out(self):
        """The program's folder, that of the user's settings, and the environment."""
        run_folder, config = self.folder / "run", self.folder / "config"
        shutil.copytree(self.build / "stage", run_folder)
        config.mkdir()
        env = dict(os.environ, XDG_CONFIG_HOME=str(config), XDG_DATA_HOME=str(self.folder / "data"),
                   XDG_RUNTIME_DIR=str(self.folder), HOME=str(self.folder))
        for options, file in (("LSAN_OPTIONS", "leaks.supp"), ("TSAN_OPTIONS", "threads.supp")):
            env[options] = f"suppressions={ROOT / 'tests' / 'e2e' / file}:print_suppressions=0"
        env.pop("DISPLAY", None)  # without a screen unless a scenario wants one
        return run_folder, config, env

    def name_of(self, path):
        """A path as the program writes it."""
        return str(path)

    def write_parameters(self):
        folder = self.config / "Skylantern"
        folder.mkdir(exist_ok=True)
        rows = "".join(f'\t<parameter name="{n}" value="{v}" />\n' for n, v in self.settings.items())
        (folder / "parameters.xml").write_text(f'<?xml version="1.0"?>\n<parameters>\n{rows}</parameters>\n',
                                               encoding="utf-8")

    def parameters_text(self):
        return (self.config / "Skylantern" / "parameters.xml").read_text(encoding="utf-8")

    def start(self, name, command):
        process = Process(name, [str(c) for c in command], self.run_folder, self.env)
        self.processes.append(process)
        return process

    def screen(self, **options):
        """A screen for the programs that are started from now on, with the window in its corner."""
        screen = Screen(self.folder, **options)
        self.screens.append(screen)
        self.env["DISPLAY"] = screen.display
        self.settings.update({"MAIN_WINDOW_X": "0", "MAIN_WINDOW_Y": "0"})
        self.write_parameters()
        return screen

    def program(self, name="skylantern"):
        return self.start(name, [self.run_folder / "skylantern"])

    def simulator(self, *options, script=None, name="simulator"):
        command = [self.build / "simulator", "--port", "2048", "--lat", "51.4706", "--lon", "-0.4619", "--alt", "83",
                   "--on-ground", "1", "--elevation", "80", *options]
        if script:
            path = self.folder / f"{name}.script"
            path.write_text(script)
            command += ["--script", path]
        process = self.start(name, command)
        self.wait_for(lambda: "listening" in process.text(), f"{name} listens")
        return process

    def real_traffic(self, feed, *options, script=None, name="realtraffic"):
        command = [self.build / "realtraffic", "--feed", feed, *options]
        if script:
            path = self.folder / f"{name}.script"
            path.write_text(script)
            command += ["--script", path]
        return self.start(name, command)

    def site(self, root, *options):
        """The data site at the address that the tested build fetches from."""
        process = self.start("site", [self.build / "site", "--root", root, "--port", "18080", *options])
        self.wait_for(lambda: "listening" in process.text(), "the site listens")
        return process

    def log(self):
        try:
            return (self.run_folder / "Log.txt").read_text(encoding="utf-8", errors="replace")
        except FileNotFoundError:
            return ""

    def wait_for(self, condition, what, limit=PATIENCE):
        end = time.monotonic() + limit
        while time.monotonic() < end:
            if condition():
                return
            time.sleep(0.05)
        outputs = "\n".join(f"--- {p.name}\n{p.text()[-1500:]}" for p in self.processes)
        raise Failure(f"in vain: {what}\n--- log\n{self.log()[-3000:]}\n{outputs}")

    def wait_for_log(self, text, count=1, limit=PATIENCE):
        self.wait_for(lambda: self.log().count(text) >= count, f"log line {text!r}, {count} times", limit)

    def wait_for_setting(self, name, value, limit=PATIENCE):
        self.wait_for(lambda: f'name="{name}" value="{value}"' in self.parameters_text(), f"{name} saved as {value}", limit)

    def check(self, condition, what):
        if not condition:
            raise Failure(f"{what}\n--- log\n{self.log()[-3000:]}")

    def check_clean(self):
        """Nothing half-written and no temporary data is left behind."""
        left = [p for p in self.run_folder.rglob("*") if p.suffix in (".tmp", ".new", ".part")
                or p.name in ("dbase.xml", "AIG-regcodes.xml")]
        left += [p for p in self.config.rglob("*") if p.is_file() and p.name not in ("parameters.xml", "RealTraffic.jar")]
        self.check(not left, f"files left behind: {left}")

    def end(self):
        for process in self.processes:
            if process.running():
                process.signal(signal.SIGKILL)
                process.child.wait()
            process.output.close()
        for screen in self.screens:
            screen.end()
        shutil.rmtree(self.folder, ignore_errors=True)
