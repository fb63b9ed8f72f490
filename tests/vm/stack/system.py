"""The whole stack in the guest: kernel module, system bus, controller, bluetoothd, a login."""

import json
import os
import pathlib
import signal
import socket
import subprocess

from . import bluez
from .daemon import Daemon
from .login import Login
from .radio import Radio
from .waiting import ONLY_A_HANG, wait_for

BUS_SOCKET = pathlib.Path("/run/dbus/system_bus_socket")
SESSION_SOCKET = pathlib.Path("/run/session-bus")
RADIO_SOCKET = pathlib.Path("/run/radio")
LINK_RSSI = pathlib.Path(__file__).with_name("link_rssi.py")
VIRTUAL_PORT = pathlib.Path("/dev/vhci")
POLICY = pathlib.Path("/etc/dbus-1/system.d/logind-stand-in.conf")
# The kernel drops what does not fit into a socket's buffer. At a thousand reports a second an emulated
# bluetoothd falls behind by more than the usual 208 kB; once what is dropped is the news that a scan
# has ended, it waits for that news for ever and no scan is begun any more. Many times as much as it
# has been seen to need.
DEFAULT_RECEIVE_BUFFER = pathlib.Path("/proc/sys/net/core/rmem_default")
RECEIVE_BUFFER = 8 << 20
# The rest of the policy is the host's own.
POLICY_TEXT = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <policy user="root">
    <allow own="org.freedesktop.login1"/>
    <allow send_destination="org.freedesktop.login1"/>
  </policy>
</busconfig>
"""


class System:
    """Use it in a `with` statement; on leaving, everything is ended."""

    def __init__(self, programs: pathlib.Path, with_login: bool = True):
        self.programs = programs
        self.logs = pathlib.Path(os.environ.get("RESULTS", "/run/logs"))
        self.with_login = with_login
        self.session_bus_daemon: Daemon | None = None

    def __enter__(self) -> "System":
        DEFAULT_RECEIVE_BUFFER.write_text(str(RECEIVE_BUFFER))
        self._load_module()
        self._start_bus()
        if self.with_login:
            self.login = Login(self.logs)
        self.radio = Radio(
            self.programs / "virtual-controller", RADIO_SOCKET, self.logs
        )
        self.bus = bluez.connect()
        self.adapter = bluez.Adapter(self.bus)
        self.start_bluetoothd()
        if self.with_login:
            self.login.wait_until_up(self.bus)
        return self

    def __exit__(self, *_) -> None:
        self.bluetoothd.end()
        self.radio.end()
        if self.with_login:
            self.login.end()
        self.bus.close()
        if self.session_bus_daemon:
            self.session_bus_daemon.end()
        self.bus_daemon.end()

    def start_bluetoothd(self) -> None:
        """Returns when the adapter is powered."""
        self.bluetoothd = Daemon("bluetoothd", ["bluetoothd", "-n"], self.logs)
        wait_for(
            lambda: self.adapter.is_powered() or self.bluetoothd.check_running(),
            ONLY_A_HANG,
            "bluetoothd has powered the adapter",
        )

    def stop_bluetoothd(self, how: signal.Signals = signal.SIGTERM) -> None:
        """Returns when its name has left the bus; SIGKILL leaves the kernel as it was."""
        self.bluetoothd.end(how)
        wait_for(
            lambda: not self.bus.name_has_owner(bluez.NAME), 20, "org.bluez has left the bus"
        )

    def listen(self) -> bluez.Listener:
        return bluez.Listener(self.bus)

    def start_program(self, name: str, command: list[str]) -> Daemon:
        """A program of the test, its output with the other logs."""
        return Daemon(name, command, self.logs)

    def start_session_bus(self) -> None:
        """For the programs that are started from here on."""
        self.session_bus_daemon = Daemon(
            "session-bus",
            ["dbus-daemon", "--session", "--nofork", f"--address=unix:path={SESSION_SOCKET}"],
            self.logs,
        )
        wait_for(
            lambda: _accepts_calls(SESSION_SOCKET) or self.session_bus_daemon.check_running(),
            ONLY_A_HANG,
            "the session bus listens",
        )
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={SESSION_SOCKET}"

    @staticmethod
    def load_modules(*names: str) -> None:
        """Of the guest's kernel, which loads few by itself."""
        subprocess.run(["modprobe", "-a", *names], check=True)

    @staticmethod
    def links_seen_by_nobody() -> list[dict]:
        """Address, handle and strength of each link, as a user without privilege reads them."""
        # Not by its path, for the sources may lie where only root may look.
        told = subprocess.run(
            ["python3", "-"],
            input=LINK_RSSI.read_text(encoding="utf-8"),
            cwd="/",
            user="nobody",
            group="nogroup",
            extra_groups=[],
            check=True,
            capture_output=True,
            encoding="utf-8",
        )
        return json.loads(told.stdout)

    def _load_module(self) -> None:
        self.load_modules("hci_vhci")
        wait_for(VIRTUAL_PORT.exists, ONLY_A_HANG, f"{VIRTUAL_PORT} is there")

    def _start_bus(self) -> None:
        BUS_SOCKET.parent.mkdir(parents=True, exist_ok=True)
        POLICY.write_text(POLICY_TEXT, encoding="utf-8")
        subprocess.run(["dbus-uuidgen", "--ensure"], check=True)
        self.bus_daemon = Daemon(
            "dbus-daemon", ["dbus-daemon", "--system", "--nofork", "--nopidfile"], self.logs
        )
        wait_for(
            lambda: _accepts_calls(BUS_SOCKET) or self.bus_daemon.check_running(),
            ONLY_A_HANG,
            "the system bus listens",
        )


def _accepts_calls(path: pathlib.Path) -> bool:
    with socket.socket(socket.AF_UNIX) as caller:
        try:
            caller.connect(str(path))
        except OSError:
            return False
        return True
