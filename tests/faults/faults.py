"""The program's files when a save fails or is killed: faults.py SAVER [KIND ...]

The saver (saver.cpp) is run under strace, which tells the calls of one save. Then the same save is run again and again:
killed at each of its calls in turn, before the call is made, and with each of its calls failing in turn. Whatever
happens, the file is the old one or the new one, whole, and the save after it works. Exit status 77 where the system
lets no process be traced.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

KINDS = {"parameters": "config/Skylantern/parameters.xml", "liveries": "output/LiveriesScanned.xml",
         "airport": "learned.xml", "generated": "airports/EGLL.xml", "airports": "airports/my_park_airports.txt", "text": "text.txt"}
MARK = "getppid"
# What a full disk, a folder that must not be written to, a worn-out disk and too many open files answer.
ERRORS = {"openat": ["EACCES", "EROFS", "ENOSPC", "EMFILE"], "write": ["ENOSPC", "EIO"], "fsync": ["EIO", "ENOSPC"],
          "close": ["EIO"], "rename": ["EACCES", "ENOSPC", "EROFS"]}


class Folder:
    """A folder to run in, that can be brought back to how it was."""

    def __init__(self, saver):
        self.saver = saver
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="skl-faults-"))
        self.work = self.path / "work"

    def fresh(self):
        shutil.rmtree(self.work, ignore_errors=True)
        for name in ("config/Skylantern", "output", "airports"):
            (self.work / name).mkdir(parents=True)

    def run(self, kind, age, strace=()):
        env = dict(os.environ, XDG_CONFIG_HOME=str(self.work / "config"), XDG_DATA_HOME=str(self.work),
                   HOME=str(self.work), ASAN_OPTIONS="detect_leaks=0")
        command = [*strace, self.saver, kind, age]
        return subprocess.run(command, cwd=self.work, env=env, capture_output=True, text=True, timeout=60)

    def content(self, kind):
        path = self.work / KINDS[kind]
        return path.read_bytes() if path.exists() else None

    def left_beside(self):
        return [p.name for p in self.work.rglob("*.new")]


def calls_of_a_save(folder, kind):
    """The calls of the save as (name, which one of that name since the start)."""
    log = folder.path / "calls"
    folder.run(kind, "new", ("strace", "-o", log))
    seen, calls, inside = {}, [], 0
    for line in log.read_text().splitlines():
        name = re.match(r"(\w+)\(", line)
        if not name:
            continue
        name = name.group(1)
        seen[name] = seen.get(name, 0) + 1
        if name == MARK:
            inside += 1
        elif inside == 1:
            calls.append((name, seen[name]))
    if inside != 2:
        raise SystemExit(f"{kind}: the marks of the save were not seen")
    return calls


def check(kind):
    folder = Folder(SAVER)
    folder.fresh()
    folder.run(kind, "old")
    old = folder.content(kind)
    folder.run(kind, "new")
    new = folder.content(kind)
    assert old and new and old != new, f"{kind}: the saver saves nothing"

    def begin():
        folder.fresh()
        folder.run(kind, "old")
        assert folder.content(kind) == old

    def next_save_works(after):
        folder.run(kind, "new")
        assert folder.content(kind) == new, f"{kind}: the save after {after} does not work"
        assert not folder.left_beside(), f"{kind}: after {after} there is {folder.left_beside()}"

    begin()
    calls = calls_of_a_save(folder, kind)
    ends = {"old": 0, "new": 0}
    for name, which in calls:
        begin()
        what = f"a kill at {name} {which}"
        folder.run(kind, "new", ("strace", "-o", "/dev/null", "-e", f"inject={name}:signal=KILL:when={which}"))
        content = folder.content(kind)
        assert content in (old, new), f"{kind}: {what} leaves {content and len(content)} bytes"
        ends["old" if content == old else "new"] += 1
        next_save_works(what)
    assert ends["old"] and ends["new"], f"{kind}: the kills all fell on one side: {ends}"
    failures = 0
    for name, which in calls:
        for error in ERRORS.get(name, []):
            begin()
            what = f"{error} of {name} {which}"
            ended = folder.run(kind, "new", ("strace", "-o", "/dev/null", "-e", f"inject={name}:error={error}:when={which}"))
            assert ended.returncode == 0, f"{kind}: {what} ends the program with {ended.returncode}: {ended.stderr[-500:]}"
            content = folder.content(kind)
            assert content in (old, new), f"{kind}: {what} leaves {content and len(content)} bytes"
            failures += 1
            next_save_works(what)
    shutil.rmtree(folder.path)
    print(f"{kind}: killed at each of {len(calls)} calls, {ends['old']} times the old file and {ends['new']} times the new one; "
          f"{failures} failing calls", flush=True)


if __name__ == "__main__":
    SAVER = str(pathlib.Path(sys.argv[1]).resolve())
    if not shutil.which("strace") or subprocess.run(["strace", "-o", "/dev/null", "true"], capture_output=True).returncode:
        print("no process can be traced here")
        sys.exit(77)
    try:
        for each in sys.argv[2:] or KINDS:
            check(each)
    except AssertionError as failure:
        sys.exit(str(failure))
