"""What Wegslot costs while nothing happens to it but the radio."""

import contextlib
import dataclasses
import os
import time

from .processes import Failure, Program
from .report import megabytes, table
from .room import Room

HOUR = 3600
ITEM = "/StatusNotifierItem"


@dataclasses.dataclass
class Case:
    devices: int
    rate: int  # advertisements a second
    gated: bool = False  # BlueZ tells of them only during Wegslot's own scans


CASES = [
    Case(30, 0),
    *(Case(devices, rate, True) for devices, rate in ((30, 50), (300, 500), (3000, 1000))),
    *(Case(devices, rate) for devices in (30, 300, 3000) for rate in (50, 500, 1000)),
]
SHOWN = Case(300, 500)
QUICK = [Case(30, 0), Case(300, 500, True), Case(3000, 1000)]


def name_of(case):
    if case.rate == 0:
        return "a silent radio"
    scans = "own scans only" if case.gated else "all reported"
    return f"{case.devices:,} devices, {case.rate:,} a second, {scans}"


class Window:
    """The cost between its beginning and `end`."""

    def __init__(self, room, wegslot):
        self.room, self.wegslot = room, wegslot
        self.sent, self.asked = room.radio.tell("sent"), time.monotonic()
        self.before = wegslot.reading()

    def end(self):
        used = self.wegslot.reading() - self.before
        sent, asked = self.room.radio.tell("sent"), time.monotonic()
        return used, (sent - self.sent) / (asked - self.asked), self.wegslot.memory()


def row(name, window):
    used, reports, memory = window
    return [name, f"{reports:,.0f}", f"{used.seconds / used.at * HOUR:.1f}",
            f"{used.wakeups / used.at:.1f}", megabytes(memory.resident),
            megabytes(memory.proportional), megabytes(memory.unique)]


def toggle_panel(room):
    """As a click on the icon."""
    owner = room.run("busctl", "--user", "call", "org.freedesktop.DBus", "/org/freedesktop/DBus",
                     "org.freedesktop.DBus", "GetNameOwner", "s", "nl.wegslot.Wegslot")
    room.run("busctl", "--user", "call", owner.split('"')[1], ITEM,
             "org.kde.StatusNotifierItem", "Activate", "ii", "0", "0")


def until_all_are_known(case, settle):
    """The first sight of a device costs more than the next: it is kept, and perhaps logged."""
    return settle if case.rate == 0 else max(settle, 1.2 * case.devices / case.rate)


@contextlib.contextmanager
def bare_display():
    """An X server of its own without a desktop; its name."""
    reading, writing = os.pipe()
    server = Program("Xvfb", ["Xvfb", "-displayfd", writing, "-screen", "0", "1280x800x24",
                              "-nolisten", "tcp"], dict(os.environ), pass_fds=[writing])
    try:
        os.close(writing)
        number = os.read(reading, 8).decode().strip()
        os.close(reading)
        if not number:
            raise Failure("Xvfb did not start")
        yield f":{number}"
    finally:
        server.end()


def measured(programs, case, settle, seconds, display=None):
    with Room(programs, case.devices, display) as room:
        room.radio.tell(f"gate {int(case.gated)}")
        room.radio.tell(f"rate {case.rate}")
        wegslot = room.start_wegslot()

        def window():
            time.sleep(until_all_are_known(case, settle))
            open_window = Window(room, wegslot)
            time.sleep(seconds)
            return open_window.end()

        name = name_of(case)
        rows = [row(f"{name}; on an X server, panel never opened" if display else name, window())]
        if case.rate > 0 and (phase := room.phase()) != "present":
            raise Failure(f"wegslot does not watch in {name_of(case)}: {phase}")
        if display:
            for what in ("panel open", "panel closed again"):
                toggle_panel(room)
                rows.append(row(f"… {what}", window()))
        return rows


def run(programs, quick=False):
    settle, seconds = (2, 2) if quick else (15, 30)
    rows = []
    for case in QUICK if quick else CASES:
        rows += measured(programs, case, settle, seconds)
    with bare_display() as display:
        rows += measured(programs, SHOWN, settle, seconds, display)
    return table(
        ["3 keys and", "reports/s", "processor, s an hour", "wake-ups/s", "resident, MB",
         "proportional, MB", "unique, MB"], rows)
