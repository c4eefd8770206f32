"""What the machine may do to the program: ports that are taken, disks that are full or locked, links that stop in mid
word. Each scenario ends with a start that works.
"""
import shutil
import socket
import subprocess
from pathlib import Path

LINK, TRAFFIC = 10747, 49005
# In a file system world of its own: the folder is what the words behind it make of it, then the program runs.
LOCKED = 'mount --bind "$1" "$1" && mount -o remount,ro,bind "$1" "$1"'
FULL = ('kept=$(mktemp -d) && cp -a "$1"/. "$kept" && mount -t tmpfs -o size=64k skl "$1" && cp -a "$kept"/. "$1" && '
        'rm -r "$kept" && { cat /dev/zero >"$1"/filling || true; }')


def own_mounts():
    """The command that runs another among mounts of its own, or nothing where that is not allowed."""
    for command in (["unshare", "-m"], ["unshare", "-rm"]):
        if subprocess.run([*command, "mount", "-t", "tmpfs", "skl", "/mnt"], capture_output=True).returncode == 0:
            return command
    return []


def flies(world, program, recording, count=1):
    """The link stands and aircraft are made."""
    trace = world.folder / "trace.jsonl"
    world.wait_for_log("Waiting for RealTraffic")
    traffic = world.real_traffic(recording(seconds=300), name=f"realtraffic{count}")
    world.wait_for_log("RealTraffic connected")
    before = trace.read_text().count('"op":"create"')
    world.wait_for(lambda: trace.read_text().count('"op":"create"') > before, "an aircraft is made", 90)
    return traffic


def register(scenario, recording, stop_and_check):

    @scenario
    def the_port_of_the_link_is_taken(world):
        """The error names port and reason and stays up; once the port is free the next start works."""
        world.simulator("--trace", world.folder / "trace.jsonl")
        with socket.socket() as other:
            other.bind(("127.0.0.1", LINK))
            other.listen()
            program = world.program()
            world.wait_for_log(f"Bind failed at port {LINK} with error 10048 Address already in use")
            program.signal()
            world.check(program.wait() == 0, "exit status 0")
        program = world.program("again")
        world.wait_for(lambda: "Bind failed" not in world.log(), "a log of its own")
        flies(world, program, recording)
        stop_and_check(world, program)

    @scenario
    def the_port_of_the_traffic_is_taken(world):
        """The reader's error restarts the run, and the run that finds the port free flies."""
        world.simulator("--trace", world.folder / "trace.jsonl")
        other = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        other.bind(("127.0.0.1", TRAFFIC))
        program = world.program()
        world.wait_for_log("Waiting for RealTraffic")
        world.real_traffic(recording(seconds=300))
        world.wait_for_log("has stopped with error: bind to stream socket failed, error: 10048")
        other.close()
        world.wait_for_log("Restarting after 15 seconds")
        world.wait_for_log("RealTraffic connected", 2)
        trace = world.folder / "trace.jsonl"
        world.wait_for(lambda: trace.read_text().count('"op":"create"') > 0, "an aircraft is made", 90)
        stop_and_check(world, program)

    @scenario
    def links_that_stop_in_mid_word(world):
        """Half a version and half a message of the simulator: one is waited for 5 s, the other is a lost connection."""
        world.simulator("--trace", world.folder / "trace.jsonl", script="25 cut-mid-message\n")
        program = world.program()
        world.wait_for_log("Waiting for RealTraffic")
        world.real_traffic(recording(seconds=400), script="0 half-reply\n")
        world.wait_for_log("No RealTraffic version received?")
        world.wait_for_log("Exiting: SIMCONNECT ERROR")
        world.wait_for_log("RealTraffic connected", 2)
        stop_and_check(world, program)

    def hindered(world, folder, state):
        """The program started with a folder locked or full; nothing where the system allows no mounts."""
        mounts = own_mounts()
        if not mounts:
            print("no mounts of its own are allowed here", flush=True)
            return None
        return world.start("hindered", [*mounts, "sh", "-c", f"{state} && exec ./skylantern", "sh", folder])

    def goes_and_ends(world, folder, state, until):
        """It goes until its log tells so, then ends in order. The folder's files, as the program sees them, are those of
        before: what cannot be written is not begun."""
        before = {p: p.read_bytes() for p in folder.rglob("*") if p.is_file()}
        program = hindered(world, folder, state)
        if not program:
            return
        world.wait_for_log(until)
        world.check(program.running(), "it goes on")
        seen = Path(f"/proc/{program.child.pid}/root")
        for path, content in before.items():
            now = seen / path.relative_to("/")
            world.check(now.is_file() and now.read_bytes() == content, f"{path} is lost or changed")
        beside = [p.name for p in (seen / folder.relative_to("/")).rglob("*.new")]
        world.check(not beside, f"left beside: {beside}")
        program.signal()
        world.check(program.wait() == 0, f"it ends in order\n{program.text()[-1500:]}")

    def next_start_works(world):
        shutil.rmtree(world.run_folder / "output", ignore_errors=True)
        world.simulator("--trace", world.folder / "trace.jsonl")
        program = world.program()
        flies(world, program, recording)
        stop_and_check(world, program)

    @scenario
    def the_settings_cannot_be_written(world):
        """A locked folder of settings is told, a full one costs nothing but the change of a setting."""
        settings = world.config / "Skylantern"
        for state, until in ((LOCKED, "Read-only file system"), (FULL, "Waiting for MSFS 2020")):
            goes_and_ends(world, settings, state, until)
            (world.run_folder / "Log.txt").unlink(missing_ok=True)
        next_start_works(world)

    @scenario
    def the_program_folder_cannot_be_written(world):
        """Without a place for its log it says so and ends; a full disk under the liveries is told."""
        (world.run_folder / "output").mkdir(exist_ok=True)
        program = hindered(world, world.run_folder, f'{LOCKED} && cd "$1"')
        if program:
            program.wait()
            world.check("Failed to write file Log.txt" in program.text(), f"the reason is told\n{program.text()}")
        goes_and_ends(world, world.run_folder / "output", FULL, "Error 51: File output/LiveriesScanned.xml not found")
        next_start_works(world)
