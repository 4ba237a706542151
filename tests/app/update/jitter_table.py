#!/usr/bin/env python3
"""Works out when the next check is due, on its own: jitter_table.py > jitter_table.h

Fifty moments with the days until the next check: the corners of the calendar and of the unit's 32
bits, and others from a seed that is fixed.
"""

import random
from datetime import datetime, timedelta, timezone

EPOCH = datetime(1995, 12, 26, tzinfo=timezone.utc)
DAY = 86400
SPREAD = 3600
CORNERS = [
    ("1995-12-26 00:00:00", 0),
    ("1995-12-26 00:00:01", 0),
    ("1995-12-26 00:00:00", 1),
    ("1995-12-31 23:59:59", 1),
    ("1996-01-01 00:00:00", 1),
    ("1996-02-28 12:00:00", 1),
    ("1996-02-29 12:00:00", 30),
    ("1999-12-31 23:59:59", 7),
    ("2000-02-28 23:59:58", 1),
    ("2000-02-29 00:00:00", 7),
    ("2017-06-15 08:30:00", 1),
    ("2017-06-15 08:30:01", 1),
    ("2017-06-15 08:30:00", 7),
    ("2017-06-15 08:30:00", 30),
    ("2017-06-15 08:30:00", 3650),
    ("2024-02-29 23:59:59", 1),
    ("2038-01-19 03:14:07", 1),
    ("2038-01-19 03:14:08", 7),
    ("2064-01-12 03:14:07", 1),
    ("2122-01-01 00:00:00", 3650),
]
ROWS = 50


def moments():
    for text, days in CORNERS:
        yield datetime.fromisoformat(text).replace(tzinfo=timezone.utc), days
    dice = random.Random(20170615)
    for _ in range(ROWS - len(CORNERS)):
        yield EPOCH + timedelta(seconds=dice.randrange(0, 3_700_000_000)), dice.choice([1, 1, 7, 30, 3650])


def due(moment, days):
    seconds = int((moment - EPOCH).total_seconds()) + days * DAY
    assert 0 <= seconds + SPREAD < 2**32
    state = (seconds * 214013 + 2531011) % 2**32
    return (seconds + state // 2**16 % 2**15 % SPREAD) // 2 * 2


print("// Made by jitter_table.py.")
print("#pragma once")
print("#include <windows.h>")
print()
print("struct JitterRow {")
print("    SYSTEMTIME now; // UTC")
print("    DWORD dwDays;")
print("    DWORD dwNext;")
print("};")
print()
print("// clang-format off")
print("constexpr JitterRow kJitterRows[] = {")
for moment, days in moments():
    weekday = moment.isoweekday() % 7
    time = (moment.year, moment.month, weekday, moment.day, moment.hour, moment.minute, moment.second, 0)
    print(f"    {{{{{', '.join(map(str, time))}}}, {days}, {due(moment, days)}u}},")
print("};")
print("// clang-format on")
