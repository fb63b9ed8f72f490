"""How soon Wegslot is there, beside programs that do nothing."""

import statistics

from .processes import Failure
from .report import spread, table
from .room import Room

OURS = "nl.wegslot.Wegslot"
CANDIDATES = {
    OURS: ("wegslot", "wegslot"),
    "nl.wegslot.EmptyWidgets": ("empty Qt Widgets program", "empty_widgets"),
    "nl.wegslot.EmptyBus": ("empty sd-bus program", "empty_bus"),
}


def commands(programs):
    words = []
    for name, (_, program) in CANDIDATES.items():
        if words:
            words.append("--")
        words += [name, programs / program]
        if name != OURS:
            words.append(name)
    return words


def measured(programs, rounds):
    times = {name: [] for name in CANDIDATES}
    # It plays the radio itself.
    with Room(programs) as room:
        for line in room.run(programs / "start_times", rounds,
                             *commands(programs), patience=60 * rounds).splitlines():
            name, named, scanning = line.split()
            times[name].append((float(named), float(scanning)))
    if any(len(found) != rounds for found in times.values()):
        raise Failure("start_times: a start is missing")
    return times


def run(programs, quick=False):
    times = measured(programs, 3 if quick else 20)
    rows = []
    for name, (text, _) in CANDIDATES.items():
        named, scanning = zip(*times[name])
        rows.append([text, f"{statistics.median(named):.1f}", spread(named),
                     f"{statistics.median(scanning):.1f}", spread(scanning)])
    return table(["from its exec until", "its loop runs, ms", "spread", "it scans, ms", "spread"],
                 rows)
