"""What an advertisement and a tick cost against the number of devices and of keys, as a table and
as a plot; and what the replay of a trace costs against its length."""

import os
import pathlib
import statistics
import subprocess
import time
import uuid

from .processes import Failure, fields
from .report import megabytes, spread, table
from .room import Room
from .waits import benchmarks

CURVES = {
    "advertisement": "an advertisement, by devices",
    "tick": "a tick, by devices (3 keys)",
    "tick_of_keys": "a tick, by keys (1,000 devices)",
    "newAddress": "a new private address, by identities",
}
MICROSECONDS = {"ns": 1e-3, "us": 1, "ms": 1e3}

PLOT = """
set terminal svg size 760,480 font "sans,12" background rgb "white"
set output "{output}"
set logscale xy
set xlabel "devices, or keys"
set ylabel "processor time, µs"
set format x "%.0s%c"
set format y "%g"
set key top left
set grid
plot {curves}
"""


def curve_of(name):
    """Of a name as tick/1000/3: the curve, and how many."""
    kind, *numbers = name.split("/")
    if kind == "tick" and numbers[0] == "1000" and numbers[1] != "3":
        return "tick_of_keys", int(numbers[1])
    return kind, int(numbers[0])


def measured(programs, quick):
    """By curve, by how many: microseconds of each repetition."""
    curves = {name: {} for name in CURVES}
    with Room(programs) as room:
        found = benchmarks(room, "wegslot_bench", "--benchmark_filter=^(advertisement|tick|newAddress)/",
                           f"--benchmark_min_time={0.01 if quick else 0.2}",
                           f"--benchmark_repetitions={2 if quick else 7}")
        for one in found:
            if one["run_type"] != "iteration":
                continue
            words = one["name"].split("/repeats:")[0]
            curve, count = curve_of(words)
            value = one["cpu_time"] * MICROSECONDS[one["time_unit"]]
            curves[curve].setdefault(count, []).append(value)
            if words == "tick/1000/3":
                curves["tick_of_keys"].setdefault(3, []).append(value)
    return curves


def plot(curves, output):
    blocks, words = [], []
    for name, points in curves.items():
        lines = "\n".join(f"{count} {statistics.median(values)} {min(values)} {max(values)}"
                          for count, values in sorted(points.items()))
        blocks.append(f"${name} << END\n{lines}\nEND")
        words.append(f'${name} with yerrorlines pt 7 ps 0.6 title "{CURVES[name]}"')
    program = "\n".join(blocks) + PLOT.format(output=output, curves=", ".join(words))
    try:
        done = subprocess.run(["gnuplot"], input=program, capture_output=True, text=True)
    except OSError as error:
        raise Failure(f"gnuplot: {error.strerror}") from None
    if done.returncode != 0:
        raise Failure(f"gnuplot: {done.stderr.strip().splitlines()[0]}")


def figure(value):
    return f"{value:.3f}" if value < 1 else f"{value:.1f}" if value < 100 else f"{value:,.0f}"


def run(programs, output, quick=False):
    curves = measured(programs, quick)
    if output is not None:
        plot(curves, output)
    rows = []
    for name, points in curves.items():
        for count, values in sorted(points.items()):
            rows.append([CURVES[name], f"{count:,}", figure(statistics.median(values)),
                         f"{figure(min(values))}–{figure(max(values))}"])
    return table(["cost of", "how many", "µs", "spread"], rows)


# --- Replay -------------------------------------------------------------------------------------

def write_trace(path, advertisements, devices=200):
    ids = [str(uuid.uuid5(uuid.NAMESPACE_OID, str(number))).upper() for number in range(devices)]
    with path.open("w") as file:
        file.write('{"t":0,"bluetooth":{"state":"poweredOn"}}\n')
        for number in range(advertisements):
            file.write(f'{{"t":{number // 500}.{number % 500 * 2:03d},"advertisement":'
                       f'{{"id":"{ids[number % devices]}","rssi":-{40 + number % 50},'
                       f'"manufacturerData":"4c001005"}}}}\n')


def replayed(program, trace):
    """Seconds of processor time, and the most bytes resident, looked at fifty times a second: what
    the kernel tells of one that ended counts the memory of who started it too."""
    process = subprocess.Popen([program, trace], stdout=subprocess.DEVNULL)
    status_file, most = pathlib.Path(f"/proc/{process.pid}/status"), 0
    while True:
        ended, status, used = os.wait4(process.pid, os.WNOHANG)
        if ended:
            break
        if "VmHWM" in (table_now := fields(status_file)):
            most = int(table_now["VmHWM"].split()[0]) * 1024
        time.sleep(0.02)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise Failure(f"wegslot-replay ended with {process.returncode}")
    return used.ru_utime + used.ru_stime, most


def replay(programs, quick=False):
    rows = []
    with Room(programs) as room:
        for advertisements in (1000, 10_000) if quick else (10_000, 100_000, 1_000_000, 4_000_000):
            trace = pathlib.Path(room.folder) / "trace.jsonl"
            write_trace(trace, advertisements)
            runs = [replayed(programs / "wegslot-replay", trace) for _ in range(3)]
            rates = [advertisements / seconds / 1000 for seconds, _ in runs]
            rows.append([f"{advertisements:,}", megabytes(trace.stat().st_size),
                         f"{statistics.median(rates):,.0f}", spread(rates, 0),
                         megabytes(max(resident for _, resident in runs))])
            trace.unlink()
    return table(["advertisements of 200 devices", "trace, MB",
                  "thousand a second of processor time", "spread", "most resident, MB"], rows)
