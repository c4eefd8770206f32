#!/usr/bin/env python3
"""Tells what the program has learned in a run folder: known_options.py RUN_FOLDER."""
import re
import sys
import xml.etree.ElementTree
from pathlib import Path


def options(path):
    """(real, soft) options of a learned file."""
    rows = [row for row in xml.etree.ElementTree.parse(path).iter("opt")]
    soft = sum(row.get("soft") == "true" for row in rows)
    return len(rows) - soft, soft


def main():
    folder = Path(sys.argv[1])
    log = (folder / "Log.txt").read_text(encoding="utf-8", errors="replace")
    for path in sorted((folder / "airports" / "learned").rglob("*.xml")):
        real, soft = options(path)
        print(f"  {path.stem}: {real} real and {soft} soft options learned up to now")
    placed = re.search(r"Static aircraft: (.*)", log)
    print(f"  static aircraft: {placed.group(1) if placed else 'none'}")


if __name__ == "__main__":
    main()
