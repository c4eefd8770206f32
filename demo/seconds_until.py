#!/usr/bin/env python3
"""Seconds from now to the next time that it is a weekday and time of day (UTC): seconds_until.py "Mon 07:30"."""
import datetime
import sys

DAYS = ("mon", "tue", "wed", "thu", "fri", "sat", "sun")


def seconds_until(text, now):
    try:
        day, clock = text.split()
        weekday = DAYS.index(day[:3].lower())
        hour, minute = (int(part) for part in clock.split(":"))
        wanted = now.replace(hour=hour, minute=minute, second=0, microsecond=0)
    except ValueError:
        sys.exit(f"'{text}' is no weekday and time like \"Mon 07:30\"")
    wanted += datetime.timedelta(days=(weekday - now.weekday()) % 7)
    if wanted < now:
        wanted += datetime.timedelta(days=7)
    return int((wanted - now).total_seconds())


if __name__ == "__main__":
    print(seconds_until(sys.argv[1], datetime.datetime.now(datetime.timezone.utc)))
