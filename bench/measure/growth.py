"""Whether memory grows: the whole program over a real hour, the core over a day of virtual time."""

import sys
import time

from .processes import Failure
from .report import megabytes, table
from .room import Room

DEVICES, RATE = 300, 1000
RENEWAL = 1  # devices a second that come back under another address


def soak(programs, seconds):
    """One row for each part of the time, so that growth that ends can be told from growth."""
    settle = min(60, seconds / 4)
    rows = []
    with Room(programs, DEVICES) as room:
        room.radio.tell(f"rate {RATE}")
        room.radio.tell(f"renewal {RENEWAL}")
        wegslot = room.start_wegslot()
        begin = time.monotonic()
        for part in range(5):
            due = begin + settle + (seconds - settle) * part / 4
            time.sleep(max(0, due - time.monotonic()))
            memory = wegslot.memory()
            used = wegslot.reading()
            rows.append([f"{(time.monotonic() - begin) / 60:.1f}",
                         f"{room.radio.tell('sent'):,}", megabytes(memory.resident),
                         megabytes(memory.proportional), megabytes(memory.unique),
                         f"{used.seconds:.1f}"])
            print(f"tools/bench: after {rows[-1][0]} min: {rows[-1][2]} MB resident",
                  file=sys.stderr)
        if (phase := room.phase()) != "present":
            raise Failure(f"wegslot does not watch at the end: {phase}")
    return table(["minutes", "reports", "resident, MB", "proportional, MB", "unique, MB",
                  "processor, s"], rows)


def day(programs, quick=False):
    hours = 2 if quick else 24
    rows = []
    with Room(programs) as room:
        for newcomers, text in ((0, "the same 300 devices"), (1200, "1,200 new addresses an hour")):
            lines = room.run(programs / "virtual_day", hours, newcomers, patience=600).splitlines()
            first, last = ([int(word) for word in line.split()] for line in (lines[0], lines[-1]))
            rows.append([text, last[0], last[3], f"{first[1] / 1000:,.0f}",
                         f"{last[1] / 1000:,.0f}", megabytes(first[2]), megabytes(last[2])])
    return table(["room", "hours", "locked", "in use after one, kB", "at the end, kB",
                  "resident after one, MB", "at the end, MB"], rows)
