"""A D-Bus call that is on its way while the script does something else."""

import time

import dbus

from .waiting import ONLY_A_HANG, wait_for

# Longer than BlueZ takes for anything, so that it is always BlueZ that answers.


class Failed(Exception):
    """BlueZ answered with an error."""


class Call:
    """Sent on construction; the answer arrives while the script waits for something."""

    def __init__(self, interface: dbus.Interface, method: str, *arguments):
        self.method = method
        self.started = time.monotonic()
        self.ended: float | None = None
        self.value = None
        self.error: dbus.DBusException | None = None
        interface.get_dbus_method(method)(
            *arguments,
            reply_handler=self._answered,
            error_handler=self._refused,
            timeout=ONLY_A_HANG,
        )

    def is_pending(self) -> bool:
        return self.ended is None

    @property
    def seconds(self) -> float:
        """How long it took, or has taken so far."""
        return (time.monotonic() if self.ended is None else self.ended) - self.started

    @property
    def outcome(self) -> str:
        """In a few words."""
        if self.is_pending():
            return "pending"
        if self.error is None:
            return "ok"
        return f"{self.error.get_dbus_name()}: {self.error.get_dbus_message()}"

    def wait(self, seconds: float = ONLY_A_HANG):
        """What the call returned; raises Failed with what BlueZ said instead."""
        wait_for(lambda: not self.is_pending(), seconds, f"{self.method} is answered")
        if self.error is not None:
            raise Failed(f"{self.method}: {self.outcome}")
        return self.value

    def _answered(self, *values) -> None:
        self.ended = time.monotonic()
        self.value = values[0] if len(values) == 1 else values

    def _refused(self, error: dbus.DBusException) -> None:
        self.ended = time.monotonic()
        self.error = error
