"""Prints the figures of the ground: wheels, touch-downs, sliding, turns with wheels down, overlaps."""


def _place(place, unit, digits=1):
    value = next(place[key] for key in place if key not in ("tail", "t"))
    return f"{value:.{digits}f} {unit} ({place['tail']}, second {place['t']:.0f})"


def _touch_downs(figure, verdicts):
    outside = figure["tooHard"] + figure["tooSoft"]
    print(f"  touch-down    {figure['count']}, p50 {figure['p50']:.0f}, softest {_place(figure['softest'], 'ft/min', 0)}, "
          f"hardest {_place(figure['hardest'], 'ft/min', 0)} (goal 60 to 400: {verdicts.of(outside == 0)})")
    for place in figure["outside"]:
        print(f"    outside     {_place(place, 'ft/min', 0)}")


def _turns(ground, judged, verdicts):
    for name in ("heading", "pitch"):
        figure = ground.get(name, {})
        if not figure.get("poses"):
            continue
        worst = figure["worst"]
        goal = f" (goal none: {verdicts.of(figure['breaches'] == 0)})" if judged else ""
        print(f"  {name:<13} {figure['breaches']} breaches with wheels down; nearest {worst['value']:.2f} of "
              f"{worst['allowed']:.2f} degrees allowed ({worst['tail']}, second {worst['t']:.0f}){goal}")


def tell(motion, judged, verdicts):
    ground = motion.get("onGround")
    print("On the ground" if ground else "On the ground   nothing")
    if ground:
        wheels = ground["wheels"]
        print(f"  wheels        p50 {wheels['p50']:.2f}, p99 {wheels['p99']:.2f}, worst {_place(wheels['worst'], 'm', 2)}; "
              f"{wheels['breaches']} poses beyond (goal within 0.5: {verdicts.of(wheels['breaches'] == 0)})")
        if "touchDown" in ground:
            _touch_downs(ground["touchDown"], verdicts)
        sideways = ground["sideways"]
        worst = f", worst {_place(sideways['worst'], 'degrees', 0)}" if "worst" in sideways else ""
        print(f"  sideways      {sideways['seconds']} s of {ground['seconds']}{worst}; in curves {sideways['inCurves']} s; "
              f"backwards {sideways['backwards']} s")
        for place in sideways.get("places", []):
            print(f"    slides      {_place(place, 'degrees', 0)}")
        _turns(ground, judged, verdicts)
    for name, rates in sorted(motion.get("ground", {}).items(), key=lambda entry: entry[0] != "all"):
        acceleration, yaw = rates["accelerationG"], rates["yawRate"]
        print(f"  {name:<13} p99 and worst: {acceleration['p99']:.2f}, {acceleration['max']:.2f} g ({acceleration['tail']}); "
              f"yaw {yaw['p99']:.1f}, {yaw['max']:.1f} degrees/s ({yaw['tail']})")
    overlaps = motion.get("overlaps", {})
    print(f"  overlaps      {overlaps.get('pairs', 0)} pairs for {overlaps.get('seconds', 0)} s"
          f" (goal none: {verdicts.of(not overlaps.get('pairs'))})")
    for pair in overlaps.get("places", []):
        print(f"    overlap     {' and '.join(pair['tails'])}, {pair['metres']:.0f} m, second {pair['t']:.0f}, "
              f"for {pair['seconds']} s")
