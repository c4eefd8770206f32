"""How the story of a flight on the ground must end: written beside the recording, and held against the trace of a run.

A story is a dictionary: `callsign`, `text` for people, `end` ("parked", "away" or "removed"), `at`, the second of the
recording at which it has come to that, and what else has to be seen on the way:
    from      the stand on which it stands from the start        left     when it leaves that
    pushed    "left", "right" or "straight": it goes backwards   stand    where it parks at last
    first     the stand before that, from which it was towed     still    it must not move any more once it is parked
    touched   it touches down and takes off again                around   it comes low and never touches down
    holds     [second, seconds, latitude, longitude] of stops    last     the second of its last report
"""

FLOWN_FEET = 500
FINAL_FEET = 1500
LONG_HOLD = 40      # seconds; shorter stops are not looked at
STILL_METRES = 2.0  # jitter from which a standing aircraft has to be watched
STORY_SECONDS = 30  # that a way has to go on behind a take-off, to be told


def _text(flight, story):
    parts = []
    if story["from"]:
        parts.append(f"stands at {story['from']}")
    if story["pushed"] and story["from"]:
        parts.append(f"is pushed {story['pushed']}")
    if story["touched"]:
        parts.append("touches down and goes")
    if story["around"]:
        parts.append("goes around")
    if story["landed"] is not None:
        parts.append("lands")
    if story["first"]:
        parts.append(f"parks at {story['first']}, is towed")
    if any(hold[1] >= LONG_HOLD for hold in story["holds"]):
        parts.append("waits")
    end = {"parked": f"parks at {story['stand']}", "away": "flies away", "removed": f"is removed: {story['why']}"}
    if not (story["end"] == "parked" and story["from"] == story["stand"]):
        parts.append(end[story["end"]])
    return ", ".join(parts)


def of(scene, flight, states, happened, seconds):
    """The story of a flight, or None when nothing of it happens on the ground or near it."""
    if flight.vehicle or not flight.callsign or not seconds:
        return None
    last = seconds[-1]
    heard = states[:int(round((last - flight.start) * 10)) + 1]
    low = any(state.height - scene.elevation < FINAL_FEET for state in heard[-30:])
    start = flight.start
    story = {
        "callsign": flight.callsign, "type": flight.type, "end": "", "why": "", "at": 0.0, "last": last,
        "from": happened.first_stand, "left": None if happened.left is None else start + happened.left,
        "pushed": happened.pushed, "stand": "", "first": "", "still": flight.jitter > STILL_METRES,
        "touched": happened.touched, "around": happened.went_around, "halfSpan": flight.performance.half_span,
        "holds": [[start + second, length, lat, lon] for second, length, lat, lon in happened.holds],
        "landed": None if happened.landed is None or happened.touched else start + happened.landed,
        "lifted": None if happened.lifted is None else start + happened.lifted,
    }
    if happened.stands:
        story["end"], story["stand"] = "parked", happened.stands[-1][1]
        story["at"] = start + happened.stands[-1][0] if happened.landed is not None else 0.0
        story["first"] = happened.stands[0][1] if happened.towed else ""
    elif happened.lifted is not None or happened.went_around:
        story["end"], story["at"] = "away", min(last, start + (happened.lifted or 0) + 2 * STORY_SECONDS)
        if happened.went_around:
            story["at"] = last
    elif low and not heard[-1].ground and min(flight.heard[1], scene.seconds) < scene.seconds:
        story["end"], story["at"], story["why"] = "removed", last, "its reports end on final"
    else:
        return None
    story["text"] = _text(flight, story)
    return story
