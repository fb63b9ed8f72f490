"""Tables in Markdown, what they were measured on, and their places in a document."""

import datetime
import os
import pathlib
import re
import subprocess

from .processes import Failure, fields


def megabytes(size):
    return f"{size / 1e6:.1f}"


def spread(values, digits=1):
    return f"{min(values):,.{digits}f}–{max(values):,.{digits}f}"


def table(heads, rows):
    """The first column is text, the others are numbers or short."""
    rule = ["---", *("--:" for _ in heads[1:])]
    return "\n".join("| " + " | ".join(str(cell) for cell in row) + " |"
                     for row in (heads, rule, *rows))


def first_line(*words):
    try:
        done = subprocess.run(words, capture_output=True, text=True, timeout=20)
    except (OSError, subprocess.TimeoutExpired):
        return "unknown"
    lines = done.stdout.splitlines()
    return lines[0].strip() if done.returncode == 0 and lines else "unknown"


def cached(build, name):
    """A variable that the build folder remembers."""
    found = re.search(rf"^{name}:\w+=(.*)$", (build / "CMakeCache.txt").read_text(), re.MULTILINE)
    return found.group(1) if found else "unknown"


def package(name):
    return first_line("dpkg-query", "-W", "-f", "${Version}", name)


def head(root, build):
    """What the figures below it belong to."""
    processor = fields(pathlib.Path("/proc/cpuinfo")).get("model name\t", " unknown").strip()
    memory = int(fields(pathlib.Path("/proc/meminfo"))["MemTotal"].split()[0]) * 1024
    system = fields_of_release().get("PRETTY_NAME", "unknown")
    kind = cached(build, "CMAKE_BUILD_TYPE")
    flags = cached(build, f"CMAKE_CXX_FLAGS_{kind.upper()}")
    load = os.getloadavg()[0]
    commit = first_line("git", "-C", str(root), "rev-parse", "--short", "HEAD")
    return "\n".join([
        f"{datetime.date.today()}, commit {commit}, load before it {load:.1f}.",
        f"{os.cpu_count()} × {processor}, {memory / 1e9:.1f} GB, {system}, "
        f"Linux {os.uname().release}.",
        f"{first_line(cached(build, 'CMAKE_CXX_COMPILER'), '--version')}, {kind} (`{flags}`); "
        f"Qt {package('libqt6core6')}, libsystemd {package('libsystemd0')}, "
        f"dbus {package('dbus-daemon')}, python3-dbus {package('python3-dbus')}.",
    ])


def fields_of_release():
    text = pathlib.Path("/etc/os-release").read_text()
    return {name: value.strip('"') for name, _, value in
            (line.partition("=") for line in text.splitlines())}


def marks(name):
    return f"<!-- tools/bench: {name} -->", f"<!-- end of {name} -->"


def insert(document, sections):
    """Replaces what stands between the marks of each section; nothing unless all have them."""
    text = document.read_text(encoding="utf-8")
    for name, content in sections.items():
        begin, end = marks(name)
        if text.count(begin) != 1 or text.count(end) != 1 or text.index(begin) > text.index(end):
            raise Failure(f"{document.name}: no place marked for {name}")
        before, rest = text.split(begin)
        text = f"{before}{begin}\n{content}\n{end}{rest.split(end)[1]}"
    document.write_text(text, encoding="utf-8")
