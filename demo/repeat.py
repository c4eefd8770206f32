"""Plays a recording several times: repeat.py RECORDING ROUNDS [SECONDS], in place, each round SECONDS (905) after the last."""
import re
import sys
from pathlib import Path

path, rounds = Path(sys.argv[1]), int(sys.argv[2])
length = int(sys.argv[3]) if len(sys.argv) > 3 else 905
lines = path.read_text(encoding="ascii").splitlines(keepends=True)
with open(path, "w", encoding="ascii") as out:
    for number in range(rounds):
        # Stamps are the only fields with ten digits and a fraction; a line whose stamp is broken stays as it is.
        out.writelines(re.sub(r"(?<=,)\d{10}(?=\.\d)", lambda stamp: str(int(stamp[0]) + number * length), line)
                       for line in lines)
