"""A room to measure in: a bus of its own that is the system's and the session's at once, a user of
its own with three keys, and a crowd of devices around them."""

import contextlib
import json
import os
import pathlib
import subprocess
import tempfile
import time
import uuid

from .processes import Failure, Program

# The namespace of src/scanner/bluez/device_id.cpp, and the keys of bench/crowd_radio.cpp.
NAMESPACE = uuid.UUID("5e8f1b63-2ad4-4c0e-9b27-71c5e03d96fa")
KEYS = [f"AA:BB:CC:00:00:{number:02X}" for number in (1, 2, 3)]
PATIENCE = 20  # seconds

BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>{address}</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
    <allow user="*"/>
  </policy>
</busconfig>
"""


def wait_for(condition, what):
    deadline = time.monotonic() + PATIENCE
    while not (found := condition()):
        if time.monotonic() > deadline:
            raise Failure(f"{what}: not within {PATIENCE} s")
        time.sleep(0.02)
    return found


class Radio(Program):
    """bench/radio_crowd.cpp, told what to do."""

    def __init__(self, program, devices, environment):
        super().__init__("radio_crowd", [program, devices], environment, stdin=subprocess.PIPE,
                         stdout=subprocess.PIPE, stderr=None, text=True)
        self.answer()

    def tell(self, command):
        """The reports sent so far."""
        self.check()
        self.process.stdin.write(command + "\n")
        self.process.stdin.flush()
        return self.answer()

    def answer(self):
        line = self.process.stdout.readline()
        if not line:
            raise Failure("radio_crowd ended")
        return int(line)

    def end(self):
        super().end()
        self.process.stdin.close()
        self.process.stdout.close()


class Room:
    """Ends whatever was started in it, the last first."""

    def __init__(self, programs, devices=None, display=None):
        self.programs = programs
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="wegslot-bench-"))
        self.started = []
        address = f"unix:path={self.folder / 'socket'}"
        self.environment = self.own_environment(address, display)
        self.write_preferences()
        try:
            self.start_bus(address)
            self.radio = devices and self.add(
                Radio(programs / "radio_crowd", devices, self.environment))
        except BaseException:
            self.end()
            raise

    def own_environment(self, address, display):
        foreign = {"XDG_SESSION_TYPE", "XDG_SESSION_ID", "PULSE_SERVER", "WAYLAND_DISPLAY",
                   "DISPLAY", "XAUTHORITY"}
        environment = {name: value for name, value in os.environ.items() if name not in foreign}
        if display is not None:
            environment["DISPLAY"] = display
        return environment | {
            "HOME": str(self.folder),
            "XDG_CONFIG_HOME": str(self.folder / "config"),
            "XDG_CONFIG_DIRS": str(self.folder / "shared"),
            "XDG_RUNTIME_DIR": str(self.folder),
            "DBUS_SYSTEM_BUS_ADDRESS": address,
            "DBUS_SESSION_BUS_ADDRESS": address,
        }

    def write_preferences(self):
        keys = [{"id": str(uuid.uuid5(NAMESPACE, f"bdaddr/public/{address}")).upper(),
                 "name": f"Sleutel {address[-2:]}", "isApple": False, "threshold": -80}
                for address in KEYS]
        path = self.folder / "config/wegslot/preferences.json"
        path.parent.mkdir(parents=True)
        path.write_text(json.dumps({"keys": keys}))

    def start_bus(self, address):
        configuration = self.folder / "bus.conf"
        configuration.write_text(BUS.format(address=address))
        self.add(Program("dbus-daemon", ["dbus-daemon", "--nofork", "--nosyslog",
                                         f"--config-file={configuration}"], self.environment))
        wait_for((self.folder / "socket").exists, "dbus-daemon listens")

    def add(self, program):
        self.started.append(program)
        return program

    def start_wegslot(self):
        program = self.add(Program("wegslot", [self.programs / "wegslot"], self.environment))
        log = self.folder / "Library/Logs/Wegslot.log"
        wait_for(lambda: program.check() or log.exists() and "Bluetooth" in log.read_text(),
                 "wegslot finds the radio")
        return program

    def run(self, *words, patience=PATIENCE):
        """What a program says that ends by itself."""
        name = pathlib.Path(words[0]).name
        program = self.add(Program(name, words, self.environment, stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True))
        try:
            said, complaint = program.process.communicate(timeout=patience)
        except subprocess.TimeoutExpired:
            raise Failure(f"{name}: no end within {patience} s") from None
        self.started.remove(program)
        if program.process.returncode != 0:
            lines = (complaint or said).strip().splitlines() or ["ended without a word"]
            raise Failure(f"{name}: {lines[-1]}")
        return said

    def phase(self):
        return json.loads(self.run(self.programs / "wegslot", "status", "--json"))["phase"]

    def end(self):
        while self.started:
            self.started.pop().end()
        for path in sorted(self.folder.rglob("*"), reverse=True):
            with contextlib.suppress(OSError):
                path.rmdir() if path.is_dir() and not path.is_symlink() else path.unlink()
        with contextlib.suppress(OSError):
            self.folder.rmdir()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()
