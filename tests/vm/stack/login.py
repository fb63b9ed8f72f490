"""A stand-in for logind, from python-dbusmock's template: one session, and a count of what it was
asked to lock."""

import pathlib

import dbus

from .daemon import Daemon
from .waiting import ONLY_A_HANG, wait_for

NAME = "org.freedesktop.login1"
MANAGER_PATH = "/org/freedesktop/login1"
MOCK = "org.freedesktop.DBus.Mock"


class Login:
    """Starts on construction; usable after `wait_until_up`, as Python starts slowly here."""

    # The template answers GetSession("auto") with the path of a session of that name.
    SESSION = "auto"

    def __init__(self, logs: pathlib.Path):
        self.daemon = Daemon(
            "logind-stand-in", ["python3", "-m", "dbusmock", "--system", "-t", "logind"], logs
        )
        self.session_path = f"{MANAGER_PATH}/session/{self.SESSION}"

    def wait_until_up(self, bus: dbus.Bus, user_id: int = 0, user: str = "root") -> None:
        self.bus = bus
        wait_for(
            lambda: bus.name_has_owner(NAME) or self.daemon.check_running(),
            ONLY_A_HANG,
            "the stand-in for logind is on the bus",
        )
        self._object(MANAGER_PATH, MOCK).AddSession(
            self.SESSION, "seat0", dbus.UInt32(user_id), user, True
        )

    def lock_calls(self) -> int:
        """How often somebody asked to lock, by whichever of the three ways."""
        calls = len(self._object(self.session_path, MOCK).GetMethodCalls("Lock"))
        for method in ("LockSession", "LockSessions"):
            calls += len(self._object(MANAGER_PATH, MOCK).GetMethodCalls(method))
        return calls

    def set_locked(self, locked: bool) -> None:
        """What a desktop does when its screen is locked or unlocked."""
        session = self._object(self.session_path, "org.freedesktop.login1.Session")
        session.SetLockedHint(dbus.Boolean(locked))

    def prepare_for_sleep(self, sleeping: bool) -> None:
        """What logind tells everybody before the computer sleeps, and once it is awake."""
        self._object(MANAGER_PATH, MOCK).EmitSignal(
            "org.freedesktop.login1.Manager", "PrepareForSleep", "b", [dbus.Boolean(sleeping)]
        )

    def end(self) -> None:
        self.daemon.end()

    def _object(self, path: str, interface: str) -> dbus.Interface:
        return dbus.Interface(self.bus.get_object(NAME, path, introspect=False), interface)
