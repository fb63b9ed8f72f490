"""Waiting for conditions, never for a length of time."""

import time

from gi.repository import GLib

POLL_MILLISECONDS = 20
# Nothing but a hang takes so long, not even in a guest that is emulated on a busy machine.
ONLY_A_HANG = 240


class Timeout(Exception):
    """A condition did not come true in time; the text says which."""


def wait_for(condition, seconds: float, what: str):
    """The first true value of `condition`, which is asked again after every D-Bus message and at
    short intervals. Callbacks of D-Bus clients run meanwhile."""
    context = GLib.MainContext.default()
    ticks = GLib.timeout_add(POLL_MILLISECONDS, lambda: True)
    deadline = time.monotonic() + seconds
    try:
        while True:
            value = condition()
            if value:
                return value
            if time.monotonic() > deadline:
                raise Timeout(f"not within {seconds:g} s: {what}")
            context.iteration(True)
    finally:
        GLib.source_remove(ticks)


def watch_for(seconds: float) -> None:
    """Lets time pass while D-Bus callbacks run, for what can only be shown by its absence."""
    over = []
    GLib.timeout_add(int(seconds * 1000), lambda: over.append(True))
    wait_for(lambda: over, seconds + ONLY_A_HANG, "the passing of time")
