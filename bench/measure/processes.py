"""Programs under measurement: started, read from /proc, ended."""

import contextlib
import dataclasses
import mmap
import os
import pathlib
import struct
import subprocess
import threading
import time

NANOSECONDS = 1e9
SCHEDULED = 2  # a clock of the kernel: what the scheduler gave, to the nanosecond


class Failure(Exception):
    """What went wrong and where, in one line."""


@dataclasses.dataclass
class Reading:
    """What a process has used since its start."""

    at: float  # seconds
    seconds: float  # of processor time
    waits: dict  # by thread: how often it waited

    def __sub__(self, before):
        # A thread that has ended takes its number with it.
        waits = {thread: count - before.waits.get(thread, 0)
                 for thread, count in self.waits.items()}
        return Reading(self.at - before.at, self.seconds - before.seconds, waits)

    @property
    def wakeups(self):
        return sum(self.waits.values())


@dataclasses.dataclass
class Memory:
    """In bytes."""

    resident: int
    proportional: int
    unique: int


def fields(path):
    return dict(line.split(":", 1) for line in path.read_text().splitlines() if ":" in line)


def processor_seconds(process):
    """Of all its threads, also those that ended (as clock_getcpuclockid makes it)."""
    return time.clock_gettime_ns((~process << 3) | SCHEDULED) / NANOSECONDS


def reading(process):
    at, seconds, waits = time.monotonic(), processor_seconds(process), {}
    for task in pathlib.Path(f"/proc/{process}/task").iterdir():
        with contextlib.suppress(FileNotFoundError, ProcessLookupError):
            waits[task.name] = int(fields(task / "status")["voluntary_ctxt_switches"])
    return Reading(at, seconds, waits)


def memory(process):
    folder = pathlib.Path(f"/proc/{process}")

    def size(table, name):
        return int(table[name].split()[0]) * 1024

    rollup = fields(folder / "smaps_rollup")
    return Memory(size(fields(folder / "status"), "VmRSS"), size(rollup, "Pss"),
                  size(rollup, "Private_Clean") + size(rollup, "Private_Dirty"))


class Program:
    """A program that runs until it is ended."""

    def __init__(self, name, words, environment, **streams):
        self.name = name
        streams = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL,
                   "stderr": subprocess.DEVNULL} | streams
        try:
            self.process = subprocess.Popen([str(word) for word in words], env=environment,
                                            **streams)
        except OSError as error:
            raise Failure(f"{words[0]}: {error.strerror}") from None

    def check(self):
        if self.process.poll() is not None:
            raise Failure(f"{self.name} ended with {self.process.returncode}")

    def reading(self):
        self.check()
        return reading(self.process.pid)

    def memory(self):
        self.check()
        return memory(self.process.pid)

    def end(self):
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(3)
            except subprocess.TimeoutExpired:
                self.process.kill()
        self.process.wait()


class CountingProgram(Program):
    """Counts what it receives in a file that both map, which costs it nothing to speak of."""

    def __init__(self, name, words, environment, path, *more):
        path.write_bytes(bytes(8))
        super().__init__(name, [*words, path, *more], environment)
        with open(path, "r+b") as file:
            self.shared = mmap.mmap(file.fileno(), 8, prot=mmap.PROT_READ)

    def count(self):
        return struct.unpack_from("=Q", self.shared)[0]


class PrintingProgram(Program):
    """Is counted by how often `word` stands in what it prints."""

    def __init__(self, name, words, environment, word):
        super().__init__(name, words, environment, stdout=subprocess.PIPE)
        self.word = word
        self.found = 0
        self.reader = threading.Thread(target=self.read, daemon=True)
        self.reader.start()

    def read(self):
        rest = b""
        pipe = self.process.stdout.fileno()
        while block := os.read(pipe, 1 << 16):
            text = rest + block
            self.found += text.count(self.word)
            # A word that the block's end cut in two; a whole one is longer than this.
            rest = text[-(len(self.word) - 1):]

    def count(self):
        return self.found

    def end(self):
        super().end()
        self.reader.join(3)
        self.process.stdout.close()
