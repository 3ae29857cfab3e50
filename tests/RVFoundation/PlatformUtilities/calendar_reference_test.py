#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Compares calendar periods with Python's datetime and zoneinfo: every day of 1999 to 2032 in six
time zones, at changing times of day; and around every change of the clocks, every day at a time
that is left out or shown twice.

Usage: calendar_reference_test.py PROBE
"""

import subprocess
import sys
from datetime import datetime, timedelta, timezone
from zoneinfo import ZoneInfo

ZONES = ["America/Havana", "Asia/Beirut", "America/New_York", "Asia/Kathmandu", "Pacific/Apia",
         "Etc/UTC"]
FIRST_DAY, END = datetime(1999, 1, 1), datetime(2033, 1, 1)
TIMES = [timedelta(seconds=s) for s in (0, 1800, 5400, 9000, 45296, 84600, 86399)]
WEEK, DAY, HOUR = timedelta(days=7), timedelta(days=1), timedelta(hours=1)
DAYS_AROUND_A_CHANGE = 70


def instant(local, zone, offset=None):
    """The moment when the clock shows a time. One that it leaves out moves on by what is left out.
    Of two it is the one with the offset, where it is given and either has it, else the earlier.
    """
    early, late = local.replace(tzinfo=zone), local.replace(tzinfo=zone, fold=1)
    is_shown_twice = early.utcoffset() > late.utcoffset()
    return late if is_shown_twice and late.utcoffset() == offset else early


def first_of_month(day):
    return day.replace(day=1)


def first_of_next_month(day):
    return first_of_month(first_of_month(day) + 31 * DAY)


def month_days(day):
    """The boundary days of months, each with the steps of days that lead to it."""
    last_of_previous = first_of_month(day) - DAY
    first_of_next = first_of_next_month(day)
    return [
        [first_of_month(day)],
        [first_of_next - DAY],
        [last_of_previous],
        [last_of_previous, first_of_month(last_of_previous)],
        [first_of_next],
        [first_of_next, first_of_next_month(first_of_next) - DAY],
    ]


def week_days(day):
    """The same of weeks. Weeks are added before days."""
    first = day - (day.isoweekday() % 7) * DAY
    next_week = [day + WEEK, first + WEEK]
    return [[first], [day - WEEK, first - WEEK], [first - DAY], next_week,
            [*next_week, first + 2 * WEEK, first + 2 * WEEK - DAY]]


def seconds(moment):
    return int(moment.timestamp())


def walked(steps, start, zone):
    """Where the steps lead. A time of day that was left out on the way is not come back to."""
    moment = start
    shift = timedelta()
    for step in steps:
        moment_offset = moment.utcoffset()
        wanted = step + shift
        moment = datetime.fromtimestamp(instant(wanted, zone, moment_offset).timestamp(), zone)
        shift += moment.replace(tzinfo=None, fold=0) - wanted
    return seconds(moment)


def year_start(year, zone):
    return seconds(instant(datetime(year, 1, 1), zone))


def periods(date, zone):
    start = datetime.fromtimestamp(date, zone)
    day = start.replace(tzinfo=None, fold=0)
    days = [walked(steps, start, zone) for steps in week_days(day) + month_days(day)]
    years = [year_start(day.year, zone), year_start(day.year + 1, zone),
             seconds(instant(datetime(day.year + 1, 12, 31), zone)),
             year_start(day.year - 3, zone)]
    return days + years


def changes(zone):
    """The hours in which the offset of a zone changes."""
    moment = FIRST_DAY.replace(tzinfo=timezone.utc)
    while moment.replace(tzinfo=None) < END:
        after = moment + DAY
        if moment.astimezone(zone).utcoffset() != after.astimezone(zone).utcoffset():
            while moment.astimezone(zone).utcoffset() == (
                    moment + HOUR).astimezone(zone).utcoffset():
                moment += HOUR
            yield moment + HOUR
        moment = after


def dates(zone):
    found = set()
    number = 0
    day = FIRST_DAY
    while day < END:
        local = day + TIMES[number % len(TIMES)]
        found.add(seconds(instant(local, zone)))
        number += 1
        day += DAY
    for change in changes(zone):
        local = (change - timedelta(minutes=30)).astimezone(zone).replace(tzinfo=None, fold=0)
        for time_of_day in (local, local + HOUR):
            for days in range(-DAYS_AROUND_A_CHANGE, DAYS_AROUND_A_CHANGE + 1):
                moment = time_of_day + days * DAY
                found.update(seconds(moment.replace(tzinfo=zone, fold=fold)) for fold in (0, 1))
    return sorted(found)


def main():
    tables = {name: dates(ZoneInfo(name)) for name in ZONES}
    lines = [str(line) for name in ZONES for line in [name, *tables[name]]]
    answers = subprocess.run([sys.argv[1]], input="\n".join(lines) + "\n", capture_output=True,
                             text=True, check=True).stdout.splitlines()
    count = 0
    differences = 0
    for name in ZONES:
        zone = ZoneInfo(name)
        for date in tables[name]:
            expected = periods(date, zone)
            actual = [int(word) for word in answers[count].split()]
            count += 1
            if actual != expected:
                differences += 1
                if differences <= 20:
                    wrong = [(i, datetime.fromtimestamp(a, zone).isoformat(),
                              datetime.fromtimestamp(e, zone).isoformat())
                             for i, (a, e) in enumerate(zip(actual, expected)) if a != e]
                    print(name, datetime.fromtimestamp(date, zone).isoformat(), wrong)
    print(f"{count} dates in {len(ZONES)} zones, {differences} with differences")
    return 0 if count == len(answers) and count > 70_000 and differences == 0 else 1


if __name__ == "__main__":
    sys.exit(main())
