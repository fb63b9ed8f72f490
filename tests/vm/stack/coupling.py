"""`wegslot couple` in a terminal: what it shows, and what somebody types to it."""

import pathlib
import re
import signal
import subprocess

from .phone import Phone
from .waiting import ONLY_A_HANG, wait_for

CHOICE = re.compile(r"^  (\d) (.*?)(?: \(of Enter\))?$")
NAME = re.compile(r"Tik op (Wegslot [0-9A-F]{4})")


class Coupling:
    """Starts on construction; `kind` is the word that says what is coupled."""

    def __init__(self, program: str, logs: pathlib.Path, kind: str = "android"):
        logs.mkdir(parents=True, exist_ok=True)
        self.log = logs / "couple.log"
        self.told = len(self.transcript(whole=True))
        with open(self.log, "a", encoding="utf-8") as log:
            self.process = subprocess.Popen(
                [program, "couple", kind], stdin=subprocess.PIPE, stdout=log, stderr=log
            )

    def transcript(self, whole: bool = False) -> str:
        text = self.log.read_text(encoding="utf-8") if self.log.exists() else ""
        return text if whole else text[self.told :]

    def page(self) -> list[str]:
        """The one that is shown now: its title first."""
        return self.transcript().rstrip("\n").split("\n\n")[-1].strip("\n").split("\n")

    def wait_for_page(self, title: str, seconds: float = ONLY_A_HANG) -> None:
        def is_shown() -> bool:
            if re.fullmatch(title, self.page()[0]):
                return True
            if self.process.poll() is not None:
                raise RuntimeError(f"it has ended: {self.transcript()}")
            return False

        try:
            wait_for(is_shown, seconds, f"it shows {title}")
        except Exception as error:
            raise type(error)(f"{error}; it shows {self.page()}") from error

    def wait_until_visible(self) -> str:
        """The name under which a phone lists the computer."""
        self.wait_for_page(NAME.pattern)
        return NAME.fullmatch(self.page()[0]).group(1)

    def choose(self, label: str) -> None:
        found = [match for match in map(CHOICE.match, self.page()) if match]
        number = next((each.group(1) for each in found if each.group(2) == label), None)
        if number is None:
            raise AssertionError(f"no {label} in {self.page()}")
        self.process.stdin.write(f"{number}\n".encode())
        self.process.stdin.flush()

    def bond(self, phone: Phone) -> str:
        """Both owners say that the codes are the same; the code."""
        phone.find(self.wait_until_visible())
        phone.connect()
        shown = phone.question()
        self.wait_for_page(r"Toont je apparaat dezelfde code\?")
        here = self.page()[2].replace(" ", "")
        if here != shown:
            raise AssertionError(f"{here} here, {shown} on the phone")
        self.choose("Ja, dezelfde")
        phone.answer()
        return shown

    def close(self) -> int:
        """Ends as it does when its terminal is closed; its exit status."""
        if self.process.stdin and not self.process.stdin.closed:
            self.process.stdin.close()
        return self.process.wait(ONLY_A_HANG)

    def kill(self) -> None:
        self.process.send_signal(signal.SIGKILL)
        self.process.wait(ONLY_A_HANG)
