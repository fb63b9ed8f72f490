"""A story of steps that follow from one another: told until one of them fails."""

import pathlib
import sys
import time

from .system import System
from .waiting import ONLY_A_HANG
from .wegslot import Wegslot

SOON = ONLY_A_HANG


def expect(condition: bool, seen: str) -> None:
    if not condition:
        raise AssertionError(seen)


class Story:
    """The steps are methods called step_..., in the order in which they stand; each returns what
    is worth telling."""

    def __init__(self, system: System, programs: pathlib.Path):
        self.system = system
        self.radio = system.radio
        self.wegslot = Wegslot(programs / "wegslot", system.logs)

    def steps(self) -> list[str]:
        return [name for name in vars(type(self)) if name.startswith("step_")]


def tell(story_type: type[Story], programs: pathlib.Path, **options) -> int:
    """Brings the stack up and runs the steps; the exit status."""
    began = time.monotonic()
    with System(programs) as system:
        print(f"ok     {time.monotonic() - began:6.1f} s  the stack is up", flush=True)
        story = story_type(system, programs, **options)
        for name in story.steps():
            began = time.monotonic()
            title = name.removeprefix("step_").replace("_", " ")
            try:
                seen = getattr(story, name)()
            except Exception as error:  # pylint: disable=broad-except
                took = time.monotonic() - began
                print(f"FAILED {took:6.1f} s  {title}: {error}", flush=True)
                print("\n".join(story.wegslot.messages()[-25:]), flush=True)
                return 1
            print(f"ok     {time.monotonic() - began:6.1f} s  {title}: {seen}", flush=True)
    return 0


def programs_folder(name: str) -> pathlib.Path | None:
    """The one argument: the folder with wegslot and the test's programs."""
    if len(sys.argv) != 2:
        print(f"usage: {name} PROGRAMS (the folder with wegslot)", file=sys.stderr)
        return None
    return pathlib.Path(sys.argv[1]).resolve()
