"""What the groups of checks share: the stack, ways to listen to it, and how their steps are run."""

import pathlib
import time

import dbus

from stack.device import Device
from stack.system import System
from stack.waiting import wait_for

HEAR_SECONDS = 15


class Failed(Exception):
    """What was seen and should not have been, or the other way round."""


def expect(condition: bool, seen: str) -> None:
    if not condition:
        raise Failed(seen)


class Checks:
    """A group of steps: methods called step_..., run in the order in which they stand. Each returns
    what is worth telling."""

    def __init__(self, system: System, programs: pathlib.Path):
        self.system = system
        self.programs = programs
        self.adapter = system.adapter
        self.radio = system.radio
        self.listener = system.listen()

    def end(self) -> None:
        """Leaves the air empty for the next group."""
        self.listener.end()
        self.stop_discovery()

    def steps(self) -> list[str]:
        return [name for name in vars(type(self)) if name.startswith("step_")]

    def discover(self) -> None:
        """Whether there was a discovery before or not, there is one now."""
        self.stop_discovery()
        self.adapter.start_discovery()

    def stop_discovery(self) -> None:
        try:
            self.adapter.stop_discovery()
        except dbus.DBusException:
            pass  # There was none.

    def hear(self, address: str, rssi: int | None = None, seconds: float = HEAR_SECONDS) -> float:
        """Waits until it is told, with this strength if one is given; how long that took."""
        self.listener.forget()
        asked = time.monotonic()

        def is_heard() -> bool:
            last = self.listener.last_rssi(address)
            return last is not None and rssi in (None, last)

        what = f"{address} is heard" + (f" with {rssi} dBm" if rssi is not None else "")
        wait_for(is_heard, seconds, what)
        return time.monotonic() - asked

    def put(self, name: str, address: str, options: str) -> Device:
        """A device on the air that BlueZ has an object for."""
        self.radio.tell(f"device {name} address={address} {options}")
        return Device.find(self.system.bus, self.radio.device(name)["address"])

    def wait_connected(self, name: str, connects: int, seconds: float) -> float:
        """Until the device has been connected that often, and is; how long that took."""
        asked = time.monotonic()
        wait_for(
            lambda: self.radio.connects(name) >= connects and name in self.radio.connected(),
            seconds,
            f"{name} is connected",
        )
        return time.monotonic() - asked


def run(group: Checks) -> int:
    """Runs all its steps and says what each saw; how many failed."""
    failures = 0
    for name in group.steps():
        started = time.monotonic()
        try:
            verdict, seen = "ok", getattr(group, name)()
        except Exception as error:  # pylint: disable=broad-except
            verdict, seen = "FAILED", f"{type(error).__name__}: {error}"
            failures += 1
        title = name.removeprefix("step_").replace("_", " ")
        print(f"{verdict:6} {time.monotonic() - started:6.1f} s  {title}: {seen}", flush=True)
    return failures
