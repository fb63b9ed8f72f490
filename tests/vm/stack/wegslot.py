"""The built wegslot in the guest: its commands, its run, its log."""

import os
import pathlib
import re
import signal
import subprocess

from .daemon import Daemon
from .waiting import ONLY_A_HANG, wait_for

HOME = pathlib.Path("/tmp/home")
LOG = HOME / "Library/Logs/Wegslot.log"
STAMP = re.compile(r"^(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d) (.*)$")


class Wegslot:
    def __init__(self, program: pathlib.Path, logs: pathlib.Path):
        self.program = str(program)
        self.logs = logs
        self.running: Daemon | None = None
        HOME.mkdir(parents=True, exist_ok=True)
        os.environ["HOME"] = str(HOME)
        os.environ["XDG_CONFIG_HOME"] = str(HOME / ".config")
        os.environ.pop("DBUS_SESSION_BUS_ADDRESS", None)

    def command(self, *words: str, seconds: float = ONLY_A_HANG) -> subprocess.CompletedProcess:
        return subprocess.run(
            [self.program, *words], capture_output=True, encoding="utf-8", timeout=seconds
        )

    def find_device(self, name: str, seconds: float = ONLY_A_HANG) -> str:
        """The id under which `--devices --others` lists a device of this name."""
        listing = Daemon("devices", [self.program, "--devices", "--others"], self.logs)
        row = re.compile(r"^([0-9A-F-]{36})  " + re.escape(name) + r" .* -\d+ dBm$", re.MULTILINE)
        try:
            found = wait_for(
                lambda: row.search(listing.log.read_text(encoding="utf-8"))
                or listing.check_running(),
                seconds,
                f"{name} is listed",
            )
        finally:
            listing.end()
        return found.group(1)

    def start(self) -> None:
        self.running = Daemon("wegslot", [self.program], self.logs)

    def end(self, how: signal.Signals = signal.SIGTERM) -> None:
        if self.running:
            self.running.end(how)

    def check_running(self) -> bool:
        return self.running.check_running()

    def lines(self) -> list[tuple[str, str]]:
        """Stamp and message of each line of the log."""
        if not LOG.exists():
            return []
        found = [STAMP.match(line) for line in LOG.read_text(encoding="utf-8").splitlines()]
        return [(match.group(1), match.group(2)) for match in found if match]

    def messages(self, since: int = 0) -> list[str]:
        return [message for _, message in self.lines()[since:]]

    def mark(self) -> int:
        """Where the log ends now, for `wait_for_message`."""
        return len(self.lines())

    def wait_for_message(self, message: str, since: int, seconds: float) -> None:
        def written() -> bool:
            return message in self.messages(since) or self.check_running()

        try:
            wait_for(written, seconds, f"the log says: {message}")
        except Exception as error:
            raise type(error)(f"{error}; it says: {self.messages(since)}") from error
