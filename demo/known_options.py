#!/usr/bin/env python3
"""Tells what the program has learned in a run folder: known_options.py RUN_FOLDER."""
import re
import sys
from pathlib import Path


def options(path):
    """(real, soft) options of a learned file."""
    rows = re.findall(r"<opt [^>]*>", path.read_text(encoding="utf-8"))
    soft = sum('soft="true"' in row for row in rows)
    return len(rows) - soft, soft


def main():
    folder = Path(sys.argv[1])
    for path in sorted((folder / "airports" / "learned").rglob("*.xml")):
        real, soft = options(path)
        print(f"  {path.stem}: {real} real and {soft} soft options learned up to now")
    log = (folder / "Log.txt").read_text(encoding="utf-8", errors="replace")
    placed = re.search(r"Static aircraft: (.*)", log)
    print(f"  static aircraft: {placed.group(1) if placed else 'none'}")


if __name__ == "__main__":
    main()
