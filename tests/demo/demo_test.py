"""The demo's own judges: what the descriptions give, and that the verdict finds what did not end as told."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "demo"))

import airport_plan  # noqa: E402
import sky  # noqa: E402
import verdict  # noqa: E402

STAND = airport_plan.Stand("A1", 51.47, -0.46, 90.0, 20.0)


def story(**changes):
    told = {"callsign": "DLH1", "type": "A320", "end": "parked", "why": "", "at": 0.0, "last": 100.0, "from": "A1",
            "left": None, "pushed": "", "stand": "A1", "first": "", "still": False, "touched": False, "around": False,
            "halfSpan": 17.0, "holds": [], "landed": None, "lifted": None, "text": ""}
    return {**told, **changes}


def pose(t, ahead=0.0, aside=0.0, feet=10.0, heading=90.0):
    lat, lon = STAND.ahead(ahead, aside)
    return {"op": "pose", "utc": t, "lat": lat, "lon": lon, "alt": 83 + feet, "hdg": heading}


def faults(told, poses, removed=None, end=200.0, log=()):
    """Of a run with one aircraft."""
    lines = [{**poses[0], "op": "create", "title": "AI A320"}, *poses]
    lines += [{"op": "remove", "utc": removed}] if removed else []
    other = {"op": "pose", "utc": end, "oid": 2, "tail": "B", "lat": 0, "lon": 0, "alt": 0, "hdg": 0}
    with tempfile.NamedTemporaryFile("w", suffix=".jsonl") as trace:
        for line in [{"oid": 1, "tail": "DLH1", **line} for line in lines] + [{**other, "op": "create", "title": ""}, other]:
            trace.write(json.dumps(line) + "\n")
        trace.flush()
        seen = sky.Sky(trace.name, {"DLH1"})
    judge = verdict.Judge({"stands": {"A1": [STAND.lat, STAND.lon, STAND.heading]}}, seen, list(log), 0.0, 1.0, 83)
    return judge.faults(told)


class VerdictTest(unittest.TestCase):
    def test_parked(self):
        stood = [pose(t) for t in range(10, 200)]
        self.assertEqual(faults(story(), stood), [])
        self.assertEqual(faults(story(), stood, removed=198), [], "the end of the run")
        cases = {
            "m and": stood + [pose(200, ahead=2.5)], "degrees off": stood + [pose(200, heading=94.0)],
            "began": [pose(9, aside=3.0)] + stood,
        }
        for text, poses in cases.items():
            self.assertIn(text, " ".join(faults(story(), poses)))
        self.assertIn("was removed", faults(story(), stood, removed=150)[0])
        self.assertIn("moved", faults(story(still=True), stood + [pose(200, ahead=0.2)])[0])

    def test_away(self):
        told = story(end="away", pushed="left", stand="")
        back = [pose(t, ahead=-0.5 * t, heading=90.0 - t) for t in range(0, 60)]
        flown = [pose(t, ahead=t * 10, feet=2000) for t in range(100, 200)]
        self.assertEqual(faults(told, back + flown), [])
        self.assertIn("backwards", faults(told, [pose(1), *flown])[0])
        self.assertIn("was pushed left", faults({**told, "pushed": "right"}, back + flown)[0])
        self.assertIn("ended at", faults(told, back)[0])
        self.assertIn("before its last report", faults(story(end="away", last=180.0, **{"from": ""}), flown[:20],
                                                       removed=121)[0])

    def test_low_flights(self):
        down = [pose(t, feet=max(8.0, abs(60 - t) * 20)) for t in range(0, 120)]
        low = [pose(t, feet=max(100.0, abs(60 - t) * 20)) for t in range(0, 120)]
        told = {"end": "away", "from": "", "last": 60.0}
        self.assertEqual(faults(story(touched=True, **told), down), [])
        self.assertEqual(faults(story(around=True, **told), low), [])
        self.assertTrue(faults(story(touched=True, **told), low))
        self.assertTrue(faults(story(around=True, **told), down))

    def test_stops_and_tows(self):
        lat, lon = STAND.ahead(-100)
        told = story(holds=[[10, 40, lat, lon]])
        waits = [pose(t, ahead=-100) for t in range(10, 60)] + [pose(199)]
        rolls = [pose(t, ahead=-100 + t) for t in range(0, 60)] + [pose(199)]
        self.assertEqual(faults({**told, "from": ""}, waits), [])
        self.assertIn("where it had to wait", faults({**told, "from": ""}, rolls)[0])
        towed = story(first="B2")
        log = ["B2      : DLH1     arrived at stand", "          towed aircraft DLH1 A320 parks"]
        self.assertEqual(len(faults(towed, [pose(9), pose(99)])), 2)
        self.assertEqual(faults(towed, [pose(9), pose(99)], log=log), [])


class GeneratorTest(unittest.TestCase):
    def test_the_recording_holds_the_turnarounds_and_nobody_touches(self):
        with tempfile.TemporaryDirectory() as folder:
            out = pathlib.Path(folder) / "r.txt"
            runs = []
            for _ in range(2):
                made = subprocess.run([sys.executable, str(ROOT / "demo" / "make_recording.py"), str(out)], check=True,
                                      capture_output=True, text=True)
                self.assertEqual(made.stderr, "")
                runs.append(out.read_bytes())
            self.assertEqual(runs[0], runs[1])
            expected = json.loads(out.with_suffix(".expected.json").read_text())
        told = expected["stories"]
        self.assertGreaterEqual(sum(s["end"] == "parked" and s["landed"] is not None for s in told), 12)
        self.assertGreaterEqual(sum(bool(s["pushed"]) and s["end"] == "away" for s in told), 12)
        for key in ("touched", "around", "first", "still"):
            self.assertTrue(any(s[key] for s in told), key)
        self.assertTrue(any(s["end"] == "removed" for s in told))


if __name__ == "__main__":
    unittest.main()
