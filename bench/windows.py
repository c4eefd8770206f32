"""Tick and flush of the Windows build against the Linux build: windows.py LINUX_BENCH WINDOWS_BENCH

Both suites run in turns, the Windows one under wine; of each figure the least of all rounds counts. wine stands between
the program and this system as Windows would not, so the ratio tells what the compiler makes of the code (tick), and what
the calls of the system cost there (flush).
"""
import re
import subprocess
import sys

ROUNDS = 3
UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def figures(command):
    """The seconds in the rows of a suite, by the name of the row and the place in it."""
    found = {}
    for word in ("tick", "flush"):
        done = subprocess.run([*command, "--only", word], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        work = ""
        for line in done.stdout.splitlines():
            cells = [cell.strip() for cell in line.strip("|").split("|")]
            if len(cells) < 3 or cells[0] in ("Work",) or cells[0].startswith("-"):
                continue
            work = cells[0] or f"{work}, {cells[1]}"
            for place, (number, unit) in enumerate(re.findall(r"([\d.]+) (ns|us|ms|s)\b", cells[2])):
                found[work, place] = float(number) * UNITS[unit]
    if not found:
        sys.exit(f"{command} tells no figure")
    return found


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    least = [{}, {}]
    for _ in range(ROUNDS):
        for all_rounds, command in zip(least, ([sys.argv[1]], ["wine", sys.argv[2]])):
            for key, seconds in figures(command).items():
                all_rounds[key] = min(seconds, all_rounds.get(key, seconds))
    print(f"{'Work':<100} {'Linux':>10} {'Windows':>10}  ratio")
    for key, seconds in least[0].items():
        windows = least[1].get(key)
        if windows is None:
            sys.exit(f"the Windows suite does not tell '{key[0]}'")
        print(f"{key[0]:<100} {seconds * 1e6:>7.3f} us {windows * 1e6:>7.3f} us  {windows / seconds:.2f}")


if __name__ == "__main__":
    main()
