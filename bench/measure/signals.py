"""What one report of the radio costs whoever receives it. All receive the same ones at once, so
that each is measured under the same load; each is counted, so that nobody gains by losing some."""

import statistics
import subprocess
import sys
import time

from .processes import CountingProgram, Failure, PrintingProgram, Program
from .report import spread, table
from .room import Room, wait_for

DEVICES = 300
MICROSECONDS = 1e6
MATCH = ("type='signal',interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',"
         "arg0='org.bluez.Device1'")
FLOOR, OURS = "sd-bus, decodes and forgets (the floor)", "wegslot, whole"
REST = 100  # milliseconds for which Wegslot lets reports wait on a busy bus


def receivers(room, sources):
    """Those that count for themselves."""
    environment, address = room.environment, room.environment["DBUS_SYSTEM_BUS_ADDRESS"]
    return [room.add(program) for program in (
        CountingProgram(FLOOR, [room.programs / "signal_floor"], environment,
                        room.folder / "floor.count"),
        CountingProgram("the floor, but read as seldom as wegslot does",
                        [room.programs / "signal_floor"], environment,
                        room.folder / "seldom.count", REST),
        CountingProgram("python3-dbus, decodes and forgets",
                        ["/usr/bin/python3", sources / "signal_receiver.py"], environment,
                        room.folder / "python.count"),
        PrintingProgram("dbus-monitor", ["dbus-monitor", "--address", address, MATCH],
                        environment, b"member=PropertiesChanged"),
        PrintingProgram("busctl monitor", ["busctl", f"--address={address}", "monitor",
                                           f"--match={MATCH}"],
                        environment, b"Member=PropertiesChanged"),
    )]


def still(room, programs):
    """What has been sent and counted, once nothing is under way any more."""
    sent = room.radio.tell("rate 0")
    before = None
    while before != (before := [program.count() for program in programs]):
        time.sleep(0.5)
    return sent, before


def start(room, sources, rate):
    wegslot = room.start_wegslot()
    counting = receivers(room, sources)
    room.radio.tell("rate 50")
    wait_for(lambda: all(program.check() or program.count() > 0 for program in counting),
             "every receiver receives")
    sent, counts = still(room, counting)
    room.radio.tell(f"rate {rate}")
    return wegslot, counting, sent, counts


def one_window(room, wegslot, counting, seconds):
    """Microseconds of processor time a report, by name."""
    def readings():
        sent = room.radio.tell("sent")
        return {wegslot.name: (wegslot.reading(), sent)} | {
            program.name: (program.reading(), program.count()) for program in counting}

    before = readings()
    time.sleep(seconds)
    costs = {}
    for name, (reading, count) in readings().items():
        used, received = reading - before[name][0], count - before[name][1]
        if received == 0:
            raise Failure(f"{name} received nothing")
        costs[name] = used.seconds / received * MICROSECONDS
    return costs


def count_by_recording(room, rate, seconds):
    """Whether every report reaches Wegslot's core at this rate: what it records is counted."""
    file = room.folder / "recorded.jsonl"
    recorder = room.add(Program("the recording", [room.programs / "wegslot", "--record", file],
                                room.environment, stderr=subprocess.DEVNULL))
    wait_for(lambda: recorder.check() or file.exists() and b'"settings"' in file.read_bytes(),
             "the recording begins")
    before = room.radio.tell("sent")
    room.radio.tell(f"rate {rate}")
    time.sleep(seconds)
    sent = room.radio.tell("rate 0") - before

    def recorded():
        return file.read_bytes().count(b'"advertisement"')

    time.sleep(1)
    found = recorded()
    recorder.end()
    return sent, found


def check_counts(counting, sent, counts, sent_at_end, counts_at_end):
    for program, first, last in zip(counting, counts, counts_at_end):
        if last - first != sent_at_end - sent:
            print(f"tools/bench: {program.name} received {last - first} of {sent_at_end - sent}",
                  file=sys.stderr)


def rows_of(rate, windows, counted):
    names = [FLOOR, OURS, *(name for name in windows[0] if name not in (FLOOR, OURS))]
    for name in names:
        costs = [window[name] for window in windows]
        ratios = [window[name] / window[FLOOR] for window in windows]
        yield [f"{rate:,}", name, f"{statistics.median(costs):.1f}",
               spread(costs), f"{statistics.median(ratios):.2f}",
               spread(ratios, 2), counted[name]]


def measured(programs, sources, rate, count, seconds):
    with Room(programs, DEVICES) as room:
        wegslot, counting, sent, counts = start(room, sources, rate)
        wegslot.name = OURS
        time.sleep(seconds)  # warm
        windows = [one_window(room, wegslot, counting, seconds) for _ in range(count)]
        sent_at_end, counts_at_end = still(room, counting)
        check_counts(counting, sent, counts, sent_at_end, counts_at_end)
        counted = {program.name: f"{last - first:,} of {sent_at_end - sent:,}"
                   for program, first, last in zip(counting, counts, counts_at_end)}
        recorded_sent, recorded = count_by_recording(room, rate, seconds)
        counted[OURS] = f"{recorded:,} of {recorded_sent:,}"
        if recorded != recorded_sent:
            print(f"tools/bench: wegslot recorded {recorded} of {recorded_sent}", file=sys.stderr)
        return list(rows_of(rate, windows, counted))


def run(programs, sources, quick=False):
    rates, count, seconds = ([1000], 5, 1) if quick else ([50, 500, 1000], 7, 8)
    rows = []
    for rate in rates:
        rows += measured(programs, sources, rate, count, seconds)
    return table(["reports/s", "receiver", "µs a report", "spread", "to the floor", "spread",
                  "received"], rows)
