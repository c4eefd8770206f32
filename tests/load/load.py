"""The program under load, with whole processes: load.py --build BUILD --folder DIR [--fps N] [--seconds N] [--overload R]

2,000 datagrams a second, of which 180 come from 520 aircraft in range, with a limit of 500, into the program on its real
ports, with the simulator stand-in at the frames told. With --overload, R reports a second in range come for 120 s of the
time, and few behind that. To be run in a network of its own (unshare -n), since the ports are fixed. Prints goal, measured and verdict; exit
status 1 when a goal is missed. The rows are kept as DIR/rows.json.
"""
import argparse
import json
import os
import pathlib
import re
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
sys.path += [str(HERE), str(HERE.parent / "e2e")]

import make_load  # noqa: E402
from harness import World  # noqa: E402

AIRCRAFT, LIMIT = 520, 500
ON_THE_WAY = 10       # waiting for the simulator's answer: not counted by the rule
CLEARLY = 0.1         # nautical miles that count as farther
MOVED = 3.0           # by which a distance may have changed since the rule last looked: delay, answer, wobble
OVERLOAD_SECONDS = 120
BEYOND_A_MINUTE = (200 - 60) * 60  # by which the line shortens between two of its log lines
DELAY = 30            # seconds that the program flies behind the feed


def status_kb(pid, field):
    return int(re.search(rf"{field}:\s+(\d+)", pathlib.Path(f"/proc/{pid}/status").read_text()).group(1))


def cpu_seconds(pid):
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def kernel_losses():
    """Datagrams that the kernel has thrown away, of all sockets of this network."""
    lines = [x.split()[1:] for x in pathlib.Path("/proc/net/snmp").read_text().splitlines() if x.startswith("Udp:")]
    return int(dict(zip(*lines))["RcvbufErrors"])


class Load:
    def __init__(self, options):
        self.options = options
        self.folder = pathlib.Path(options.folder).resolve()
        self.folder.mkdir(parents=True, exist_ok=True)
        self.rows = []

    def row(self, what, goal, measured, passed):
        self.rows.append({"what": what, "goal": goal, "measured": measured, "pass": passed})
        print(f"{'pass' if passed else 'MISS'}  {what}: {measured} (goal: {goal})", flush=True)

    def run(self):
        options = self.options
        feed = self.folder / "feed.txt"
        burst = ["--from", "60", "--to", str(60 + OVERLOAD_SECONDS), "--burst", str(options.overload)] if options.overload else []
        subprocess.run([sys.executable, HERE / "make_load.py", feed, "--seconds", str(options.seconds),
                        "--aircraft", str(AIRCRAFT), *burst], check=True)
        world = World(options.build, parameters={"MAX_LIVE_SEL": LIMIT, "RANGE": 100, "LATERAL_RANGE": 100, "LOG": "true",
                                                 "RANDOM": "false"})
        try:
            self.observe(world, feed)
        finally:
            world.end()
            feed.unlink()
        (self.folder / "rows.json").write_text(json.dumps(self.rows, indent=1))
        return all(row["pass"] for row in self.rows)

    def observe(self, world, feed):
        seconds = self.options.seconds
        trace = self.folder / "trace.jsonl"
        simulator = world.simulator("--fps", self.options.fps, "--trace", trace, "--trace-hz", "0.1")
        program = world.program()
        pid = program.child.pid
        world.wait_for_log("Waiting for RealTraffic")
        feeder = world.real_traffic(feed, "--linger", "30")
        world.wait_for_log("RealTraffic connected")
        start = time.monotonic()
        cpu = cpu_seconds(pid)
        # Just before the feed ends: what is shown then is judged.
        world.wait_for(lambda: time.monotonic() - start > seconds - 2, "the feed's time passes", seconds + 60)
        looked_at, utc = time.monotonic() - start, time.time()
        cpu = (cpu_seconds(pid) - cpu) / looked_at
        peak = status_kb(pid, "VmHWM")
        lost = kernel_losses()
        program.signal()
        program.wait()
        simulator.signal()
        simulator.wait()
        feeder.signal()
        feeder.wait()
        (self.folder / "log.txt").write_text(world.log())
        self.judge(world.log(), simulator.report(), trace, utc, looked_at, cpu, peak, lost)

    def judge(self, log, report, trace, utc, looked_at, cpu, peak, lost):
        pace = re.search(r"Ticks: (\d+), (\d+) began more than 5 ms late; at most (\d+) records in line", log)
        ticks, late, longest = (int(x) for x in pace.groups())
        overload = self.options.overload
        in_time = 100 * (1 - late / ticks)
        self.row("ticks at most 5 ms late", "99.9 percent", f"{in_time:.3f} percent of {ticks}", in_time >= 99.9)
        backlog = [x for x in log.splitlines() if "traffic records wait" in x]
        if overload:
            self.row("records in line", f"at most {overload * OVERLOAD_SECONDS:.0f}, told once a minute",
                     f"{longest} at most, {len(backlog)} log lines", 0 < longest <= overload * OVERLOAD_SECONDS and len(backlog) >= 2)
            line = [int(re.search(r"(\d+) in line", x).group(1)) for x in backlog]
            self.row("recovery", "the line shortens until none waits", f"told in line: {line}",
                     len(line) >= 2 and line[-1] < max(line) and line[-1] < BEYOND_A_MINUTE)
        else:
            self.row("records in line", "at most 60", str(longest), longest <= 60)
            self.row("backlog lines", "none", str(len(backlog)), not backlog)
        self.row("datagrams lost in the kernel", "0", str(lost), lost == 0)
        self.row("peak memory", "below 64 MB", f"{peak / 1024:.0f} MB", peak < 64 * 1024)
        # The stand-in counts what comes between two of its frames: the answers to two may fall into one.
        calls, most = report["callsPerFrame"], LIMIT + ON_THE_WAY + 60
        self.row("calls to the simulator a frame", f"at most {most} on average, twice that at worst",
                 f"mean {calls['mean']:.0f}, most {calls['max']}", calls["mean"] <= most and calls["max"] <= 2 * most)
        self.row("processor", "told", f"{100 * cpu:.1f} percent of a core", True)
        self.row("frames of the simulator", "told", str(report["frames"]), True)
        self.choice(trace, utc, looked_at)

    def choice(self, trace, utc, looked_at):
        """Whether the aircraft shown are the nearest ones, and how often one took another's place."""
        alive, tails, made = set(), {}, []
        for text in trace.read_text().splitlines():
            event = json.loads(text)
            if event["utc"] > utc:
                break
            if event["op"] == "create":
                tails[event["oid"]] = event["tail"]
                alive.add(event["tail"])
                made.append(event["utc"])
            elif event["op"] == "remove" and event["oid"] in tails:
                alive.discard(tails[event["oid"]])
        second = looked_at - DELAY
        apart = {make_load.callsign(i): make_load.distance(i, second, AIRCRAFT) for i in range(AIRCRAFT)}
        shown = [apart[tail] for tail in alive]
        hidden = [apart[tail] for tail in apart if tail not in alive]
        if self.options.overload:
            self.row("aircraft shown after the recovery", "100", str(len(shown)), len(shown) >= 100)
        elif self.options.seconds >= 400:
            self.row("aircraft shown", f"{LIMIT} and those on their way", str(len(shown)),
                     LIMIT - ON_THE_WAY <= len(shown) <= LIMIT + ON_THE_WAY)
            wrong = sum(1 for nm in hidden if nm + CLEARLY + MOVED < max(shown))
            self.row("hidden though clearly nearer than one shown", "0", str(wrong), wrong == 0)
            # The limit is reached when all have been made, two a second.
            steady = [t for t in made if t > utc - looked_at + AIRCRAFT / 2 + DELAY + 20]
            span = looked_at - (AIRCRAFT / 2 + DELAY + 20)
            self.row("creations an hour at the limit", "told", f"{3600 * len(steady) / span:.0f} ({len(made)} in all)", True)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", required=True)
    parser.add_argument("--folder", required=True)
    parser.add_argument("--fps", default="30")
    parser.add_argument("--seconds", type=int, default=600)
    parser.add_argument("--overload", type=float, default=0)
    sys.exit(0 if Load(parser.parse_args()).run() else 1)


if __name__ == "__main__":
    main()
