"""What a user lives through, with whole processes: scenarios.py BUILD [SCENARIO ...]

Each function below is a scenario; the first line of its text says what must come out.
"""
import fcntl
import os
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor

import airport_scenarios
import fault_scenarios
import panel_scenarios
from harness import Failure, World

SCENARIOS = {}
AT_ONCE = 3


def scenario(function):
    SCENARIOS[function.__name__] = function
    return function


def feed_line(hexid, lat, lon, alt, track, speed, callsign, kind, reg, stamp, vs=0):
    return (f"RTTFC,{hexid},{lat:.6f},{lon:.6f},{alt},{vs},1,{track:.2f},{speed},{callsign},{kind},{reg},,,"
            f"{stamp},X,,adsb_icao,{alt},-1,{speed},-1,0,-1,-1,-1,0,none,A3")


def recording(seconds=150, aircraft=6):
    """Aircraft that fly straight north past the user, a report every 2 seconds each."""
    kinds = [("DLH", "A320"), ("BAW", "A320"), ("KLM", "B738"), ("AFR", "A320"), ("UAL", "B77W"), ("SWR", "A320")]
    lines = []
    for second in range(0, seconds, 2):
        for i in range(aircraft):
            airline, kind = kinds[i % len(kinds)]
            lat = 51.30 + 0.03 * i + second * 300 / 3600 / 60
            lines.append(feed_line(4000000 + i, lat, -0.9 + 0.1 * i, 12000 + 1000 * i, 0, 300, f"{airline}{100 + i}",
                                   kind, f"X-TE{i}A", 1700000000 + second))
    file = tempfile.NamedTemporaryFile("w", suffix=".txt", delete=False)
    file.write("\n".join(lines) + "\n")
    file.close()
    return file.name


def stop_and_check(world, program, number=signal.SIGTERM):
    program.signal(number)
    status = program.wait()
    world.check(status == 0, f"exit status {status}\n{program.text()[-1500:]}")
    world.check("Exiting: USER CLOSED SIM" in world.log(), "the log tells that the user closed the program")
    world.check_clean()


@scenario
def stop_while_waiting_for_the_simulator(world):
    """SIGTERM while no simulator is there ends the program in order, and a second run works likewise."""
    for turn in range(2):
        program = world.program(f"run{turn}")
        # The log of the run before is there until the new run has rotated it.
        world.wait_for(lambda: turn == 0 or (world.run_folder / "Log0.txt").exists(), "the log is rotated")
        world.wait_for_log("Waiting for MSFS 2020")
        stop_and_check(world, program)
    world.check((world.run_folder / "Log0.txt").exists(), "the log of the run before is kept")
    world.check("liveries read from" in world.log(), "the second run reads the liveries of the first")


@scenario
def stop_while_waiting_for_realtraffic(world):
    """With the simulator flying and RealTraffic away, SIGINT ends the program at once."""
    simulator = world.simulator()
    program = world.program()
    world.wait_for_log("Waiting for RealTraffic")
    stop_and_check(world, program, signal.SIGINT)
    simulator.signal()
    simulator.wait()


@scenario
def traffic_flies_and_goes(world):
    """Aircraft appear, move, are matched, and go with the program; nothing is left in the simulator."""
    trace = world.folder / "trace.jsonl"
    simulator = world.simulator("--trace", trace)
    program = world.program()
    world.wait_for_log("Waiting for RealTraffic")
    traffic = world.real_traffic(recording())
    world.wait_for(lambda: trace.exists() and trace.read_text().count('"op":"create"') >= 6, "six aircraft created")
    world.wait_for(lambda: trace.read_text().count('"op":"pose"') > 200, "poses")
    stop_and_check(world, program)
    for stand_in in (traffic, simulator):
        stand_in.signal()
        stand_in.wait()
    report = simulator.report()
    world.check(report["created"] == 6, f"six creations, not {report['created']}")
    world.check(report["alive"] == 0, f"objects left: {report['alive']}")
    world.check(traffic.report()["positionReports"] > 20, "position reports to RealTraffic")
    world.check("exception" not in world.log(), "no exception line in the log")


@scenario
def simulator_cut_and_found_again(world):
    """A cut connection gives a restart for a SimConnect error, and traffic flies again without a new scan."""
    simulator = world.simulator(script="25 cut\n")
    program = world.program()
    world.wait_for_log("Waiting for RealTraffic")
    world.real_traffic(recording(seconds=400))
    world.wait_for_log("Exiting: SIMCONNECT ERROR")
    world.wait_for_log("Waiting for RealTraffic", 2)
    world.wait_for_log("RealTraffic connected", 2)
    world.check(world.log().count("liveries scan automatic starts") == 1, "one scan only")
    world.check(simulator.running(), "the simulator stand-in goes on")
    stop_and_check(world, program)


@scenario
def pause_and_resume(world):
    """While paused no pose is written; afterwards aircraft go on without a jump."""
    trace = world.folder / "trace.jsonl"
    simulator = world.simulator("--trace", trace, script="75 pause\n90 resume\n")
    program = world.program()
    world.wait_for_log("Waiting for RealTraffic")
    traffic = world.real_traffic(recording(seconds=400))
    world.wait_for_log("Flight not running", limit=120)
    world.wait_for_log("Flight resumed")
    seen = trace.read_text().count('"op":"pose"')
    world.wait_for(lambda: trace.read_text().count('"op":"pose"') > seen + 100, "poses after the pause")
    stop_and_check(world, program)
    for stand_in in (traffic, simulator):
        stand_in.signal()
        stand_in.wait()
    motion = simulator.report()["motion"]
    world.check(motion["step"]["breaches"] == 0, f"a jump in the sky: {motion['step']}")


@scenario
def simulator_quits(world):
    """After a QUIT the program idles, and closes in order."""
    world.simulator(script="12 quit\n")
    program = world.program()
    world.wait_for_log("Waiting for RealTraffic")
    world.real_traffic(recording())
    world.wait_for_log("Flight not running")
    time.sleep(2)
    world.check(program.running(), "the program goes on without a simulator")
    world.check("Exiting" not in world.log(), "no end of the run by itself")
    stop_and_check(world, program)


@scenario
def wrong_simulator_selected(world):
    """MSFS 2024 instead of 2020 is an error that stays up until the user closes the program."""
    world.simulator("--sim", "2024")
    program = world.program()
    world.wait_for_log("Error 71: MSFS 2024 is running ...")
    world.wait_for_log("Exiting: SYSTEM ERROR")
    time.sleep(1)
    world.check(program.running(), "the error is held")
    program.signal()
    world.check(program.wait() == 0, "exit status 0")
    world.check("User closed Skylantern" in world.log(), "the close is in the log")


@scenario
def realtraffic_leaves_and_comes_back(world):
    """A lost link clears the sky and is told; the next connection brings the traffic back."""
    trace = world.folder / "trace.jsonl"
    world.simulator("--trace", trace)
    program = world.program()
    world.wait_for_log("Waiting for RealTraffic")
    world.real_traffic(recording(seconds=400), script="50 drop-link\n60 reconnect\n")
    world.wait_for_log("RealTraffic gone? Wait for RealTraffic to re-connect", limit=90)
    world.wait_for(lambda: trace.read_text().count('"op":"remove"') >= trace.read_text().count('"op":"create"') > 0,
                   "every aircraft removed")
    world.wait_for_log("RealTraffic re-connected")
    before = trace.read_text().count('"op":"create"')
    world.wait_for(lambda: trace.read_text().count('"op":"create"') > before, "new aircraft", 90)
    stop_and_check(world, program)


@scenario
def second_instance(world):
    """A second start gives 255 at once and touches neither the log nor the parameters."""
    program = world.program()
    world.wait_for_log("Waiting for MSFS 2020 ...\n")
    log, parameters = world.log(), world.parameters_text()
    second = world.program("second")
    world.check(second.wait() == 255, "exit status 255")
    world.check(world.log() == log and world.parameters_text() == parameters, "log and parameters untouched")
    world.check(not (world.run_folder / "Log0.txt").exists(), "no rotation of the log")
    stop_and_check(world, program)


@scenario
def no_install_path(world):
    """Without a packages folder the program says what to do and waits for the user."""
    world.settings["MSFS_INSTALL_PATH"] = ""
    world.write_parameters()
    program = world.program()
    world.wait_for_log("Error 150: No install path detected")
    world.wait_for(lambda: "Error 150" in program.text(), "the message in the terminal")
    program.signal()
    world.check(program.wait() == 0, "exit status 0")


@scenario
def refused_liveries(world):
    """Refused titles are told, and the rest flies."""
    trace = world.folder / "trace.jsonl"
    world.simulator("--trace", trace, "--refuse", "B738")
    program = world.program()
    world.wait_for_log("Waiting for RealTraffic")
    world.real_traffic(recording())
    world.wait_for(lambda: trace.exists() and trace.read_text().count('"op":"create"') >= 5, "the others created")
    world.wait_for_log("could not be created by your Sim!")
    stop_and_check(world, program)
    world.check("Could not be created by MSFS:" in world.log(), "the summary names them")


airport_scenarios.register(scenario, feed_line, stop_and_check)
panel_scenarios.register(scenario, recording, feed_line)
fault_scenarios.register(scenario, recording, stop_and_check)


def loopback_up():
    """A fresh network has its loopback down."""
    with socket.socket() as s:
        name = struct.pack("16sh14s", b"lo", 0x1 | 0x40, b"")
        fcntl.ioctl(s, 0x8914, name)  # SIOCSIFFLAGS: up and running


def run_one(build, name):
    world = World(build)
    try:
        SCENARIOS[name](world)
        return 0
    except Failure as failure:
        print(f"FAILED {name}: {failure}", flush=True)
        return 1
    finally:
        world.end()


def own_network():
    """The command that runs another in a network of its own, or nothing where that is not allowed."""
    for command in (["unshare", "-n"], ["unshare", "-rn"]):
        if subprocess.run([*command, "true"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0:
            return command
    return []


def main():
    if sys.argv[1] == "--one":
        if sys.argv[2] == "own":
            loopback_up()
        sys.exit(run_one(sys.argv[3], sys.argv[4]))
    build, names = sys.argv[1], sys.argv[2:] or list(SCENARIOS)
    network = own_network()

    def run(name):
        started = time.monotonic()
        kind = "own" if network else "shared"
        result = subprocess.run([*network, sys.executable, os.path.abspath(__file__), "--one", kind, build, name],
                                capture_output=True, text=True)
        verdict = "passed" if result.returncode == 0 else "FAILED"
        print(f"{name}: {verdict} in {time.monotonic() - started:.0f} s", flush=True)
        if result.returncode:
            print(result.stdout[-6000:], result.stderr[-3000:], flush=True)
        return result.returncode

    with ThreadPoolExecutor(AT_ONCE if network else 1) as pool:
        failed = sum(1 for code in pool.map(run, names) if code)
    print(f"{len(names) - failed} passed, {failed} failed", flush=True)
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
