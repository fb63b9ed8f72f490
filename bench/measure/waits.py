"""How long a person waits: for a departure to be noticed, for the panel, for its picture."""

import json
import statistics
import time

from .processes import Failure
from .report import spread, table
from .room import Room

MOMENTS = {"leaving": "last packet to `leaving`", "warning": "to the warning", "lock": "to the lock",
           "armed": "unlock to armed, the key on the desk", "present": "return to `present`"}
DEVICES = 30


def notice(programs):
    """Over a thousand departures for each way to follow a key, in virtual time."""
    rows = {}
    with Room(programs) as room:
        for line in room.run(programs / "departure_times", patience=300).splitlines():
            followed, moment, numbers = line.split("\t")
            median, nearly, longest, allowed = (float(number) for number in numbers.split())
            if longest > allowed:
                raise Failure(f"{followed}: {moment} took {longest} s, allowed are {allowed}")
            rows.setdefault(followed, {})[moment] = (
                f"{median:.1f} / {nearly:.1f} / {longest:.1f} (≤ {allowed:.1f})")
    return table(["how it is followed", *MOMENTS.values()],
                 [[followed, *(times[moment] for moment in MOMENTS)]
                  for followed, times in rows.items()])


def benchmarks(room, program, *options):
    """What Google Benchmark tells of each, in its own units."""
    said = room.run(room.programs / program, "--benchmark_format=json", *options, patience=900)
    return json.loads(said)["benchmarks"]


def panel(programs, quick):
    """Wall clock, milliseconds, without a screen."""
    names = {"firstOpening": "the panel, from click to first frame: the first time",
             "laterOpening": "… later"}
    times = {name: [] for name in names}
    repetitions = 2 if quick else 20
    with Room(programs) as room:
        for found in benchmarks(room, "panel_bench", "--benchmark_filter=Opening",
                                "--benchmark_min_time=0.05",
                                f"--benchmark_repetitions={repetitions}"):
            if found["run_type"] == "iteration":
                times[found["name"].split("/")[0]].append(found["real_time"])
    return [[text, f"{statistics.median(times[name]):.1f}", spread(times[name])]
            for name, text in names.items()]


def picture(programs, rounds):
    times = []
    with Room(programs, DEVICES) as room:
        room.radio.tell("rate 50")
        file = room.folder / "panel.png"
        for _ in range(rounds):
            begin = time.monotonic()
            room.run(programs / "wegslot", "--snapshot", file, patience=60)
            times.append((time.monotonic() - begin) * 1000)
            if not file.read_bytes().startswith(b"\x89PNG"):
                raise Failure("--snapshot wrote no picture")
            file.unlink()
    return [["its picture, from `--snapshot` to the file, of which 15 s to listen",
             f"{statistics.median(times):,.0f}", spread(times, 0)]]


def run(programs, quick=False):
    waits = panel(programs, quick) + picture(programs, 1 if quick else 5)
    return notice(programs) + "\n\n" + table(["ms", "median", "spread"], waits)
