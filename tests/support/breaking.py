"""Breaking one piece of a copy of the tree after another, to see which tests notice: what the
programs that do so share.
"""

import dataclasses
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
TIME_LIMIT = 120  # of one run, in seconds: what is broken may wait for ever


@dataclasses.dataclass(frozen=True)
class Break:
    name: str
    file: str
    old: str
    new: str


def fail(message):
    sys.exit(f"{pathlib.Path(sys.argv[0]).name}: {message}")


class Copy:
    """A copy of the tree and its one build folder, with `targets` built in it."""

    def __init__(self, folder, targets):
        self.tree = pathlib.Path(folder) / "tree"
        self.build = pathlib.Path(folder) / "build"
        kept_out = shutil.ignore_patterns("build", ".git")
        shutil.copytree(ROOT, self.tree, symlinks=True, ignore=kept_out)
        # What a broken rule leaves unused is no reason not to build it.
        self.must(["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja",
                   "-DCMAKE_BUILD_TYPE=Debug", "-DWEGSLOT_BENCH=OFF", "-DCMAKE_CXX_FLAGS=-w"])
        self.make(*targets)

    def make(self, *targets):
        self.must(["ninja", "-C", self.build, "-j", str(os.cpu_count()), *targets])

    def must(self, command):
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        if done.returncode != 0:
            fail(f"{' '.join(map(str, command))}:\n{done.stdout}{done.stderr}")

    def passes(self, command, **variables):
        environment = dict(os.environ, **variables)
        environment.pop("WEGSLOT_SEED", None)
        try:
            done = subprocess.run(command, env=environment, timeout=TIME_LIMIT, check=False,
                                  stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        except subprocess.TimeoutExpired:
            return False
        return done.returncode == 0

    def noticed_when(self, broken, noticed_by):
        path = self.tree / broken.file
        whole = path.read_text(encoding="utf-8")
        path.write_text(whole.replace(broken.old, broken.new), encoding="utf-8")
        try:
            return noticed_by(broken)
        finally:
            path.write_text(whole, encoding="utf-8")


def chosen(breaks, names):
    known = {broken.name: broken for broken in breaks}
    if len(known) != len(breaks):
        fail("two breaks have one name")
    for name in names:
        if name not in known:
            fail(f"no break is called {name}")
    return [known[name] for name in names] if names else breaks


def check_texts(breaks):
    """Every text must be there once: a break that changes nothing would prove nothing."""
    for broken in breaks:
        count = (ROOT / broken.file).read_text(encoding="utf-8").count(broken.old)
        if count != 1:
            fail(f"{broken.name}: the text to replace is {count} times in {broken.file}")
        if broken.old == broken.new:
            fail(f"{broken.name}: replaces a text by itself")


def break_each(breaks, arguments, targets, noticed_by):
    """Breaks those that are named, or all, and prints who notices; the exit status. `noticed_by`
    is asked of a copy, and of what is broken in it (None for nothing)."""
    if arguments == ["--list"]:
        check_texts(breaks)
        print("\n".join(broken.name for broken in breaks))
        return 0
    breaks = chosen(breaks, arguments)
    check_texts(breaks)
    unnoticed = 0
    rows = []
    with tempfile.TemporaryDirectory(prefix="wegslot-break-") as folder:
        copy = Copy(folder, targets)
        if wrong := noticed_by(copy, None):
            fail(f"the tree is not whole to begin with: {', '.join(wrong)}")
        for broken in breaks:
            begun = time.monotonic()
            noticed = copy.noticed_when(broken, lambda it: noticed_by(copy, it))
            unnoticed += not noticed
            rows.append((broken.name, ", ".join(noticed) or "NOBODY"))
            print(f"{rows[-1][0]}: {rows[-1][1]} ({time.monotonic() - begun:.0f} s)", flush=True)

    width = max(len(name) for name, _ in rows)
    print(f"\n{'broken':{width}}  noticed by\n{'-' * width}  ----------")
    for name, noticed in rows:
        print(f"{name:{width}}  {noticed}")
    print(f"\n{len(rows)} broken, {unnoticed} unnoticed")
    return 1 if unnoticed else 0
