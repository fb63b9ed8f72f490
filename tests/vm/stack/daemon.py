"""A program in the background, its output in a log file."""

import pathlib
import shutil
import signal
import subprocess

from .waiting import ONLY_A_HANG, wait_for

# Where the system's own daemons live; not all of it is searched for commands.
DAEMON_FOLDERS = "/usr/sbin:/usr/bin:/sbin:/bin:/usr/libexec/bluetooth"


class Daemon:
    """Starts on construction. Its log is NAME.log in the given folder, added to by later runs."""

    def __init__(self, name: str, command: list[str], logs: pathlib.Path):
        self.name = name
        program = shutil.which(command[0], path=DAEMON_FOLDERS)
        if program is None:
            raise FileNotFoundError(f"{command[0]} is missing, see tests/vm/packages")
        logs.mkdir(parents=True, exist_ok=True)
        self.log = logs / f"{name}.log"
        with open(self.log, "a", encoding="utf-8") as log:
            self.process = subprocess.Popen(
                [program, *command[1:]], stdin=subprocess.DEVNULL, stdout=log, stderr=log
            )

    def is_running(self) -> bool:
        return self.process.poll() is None

    def check_running(self) -> bool:
        """Always false, for use in conditions: a dead daemon ends the wait at once."""
        if not self.is_running():
            raise RuntimeError(f"{self.name} has ended, its log ends: {self.last_words()}")
        return False

    def last_words(self) -> str:
        lines = self.log.read_text(encoding="utf-8", errors="replace").strip().splitlines()
        return lines[-1] if lines else "(nothing)"

    def end(self, how: signal.Signals = signal.SIGTERM, seconds: float = ONLY_A_HANG) -> None:
        if not self.is_running():
            return
        self.process.send_signal(how)
        wait_for(lambda: not self.is_running(), seconds, f"{self.name} ends on {how.name}")
